#include "tcl/support.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

ErrorCode io_error(const char* name) { return {{"IO", Tcl_ErrnoId(), name, Tcl_ErrnoMsg(errno)}}; }

int deliver_error(Tcl_Interp* interp, const ErrorCode& code, const std::string& text) {
  Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
  Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj("TAMSEL", -1));
  for (const char* word : code.words) {
    if (word == nullptr) break;
    Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj(word, -1));
  }
  Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
  Tcl_SetObjErrorCode(interp, list);
  return TCL_ERROR;
}

namespace {

// A global variable, to be put back as it was.
class SavedVariable {
 public:
  SavedVariable(Tcl_Interp* interp, const char* name)
      : interp_(interp), name_(name), value_(read()) {
    if (value_ != nullptr) Tcl_IncrRefCount(value_);
  }
  ~SavedVariable() {
    if (value_ != nullptr) Tcl_DecrRefCount(value_);
  }
  SavedVariable(const SavedVariable&) = delete;
  SavedVariable& operator=(const SavedVariable&) = delete;

  void restore() {
    if (value_ == nullptr)
      Tcl_UnsetVar2(interp_, name_, nullptr, TCL_GLOBAL_ONLY);
    else if (read() != value_)
      Tcl_SetVar2Ex(interp_, name_, nullptr, value_, TCL_GLOBAL_ONLY);
  }

 private:
  Tcl_Obj* read() const { return Tcl_GetVar2Ex(interp_, name_, nullptr, TCL_GLOBAL_ONLY); }

  Tcl_Interp* interp_;
  const char* name_;
  Tcl_Obj* value_;  // one reference is ours; null where the variable does not exist
};

}  // namespace

std::string evaluate_aside(Tcl_Interp* interp, Tcl_Obj* script) {
  if (Tcl_InterpDeleted(interp)) return "";
  Tcl_Preserve(interp);
  Tcl_IncrRefCount(script);
  const Tcl_InterpState before = Tcl_SaveInterpState(interp, TCL_OK);
  // No part of that state, once a script has caught an error of its own.
  SavedVariable info(interp, "errorInfo");
  SavedVariable code(interp, "errorCode");
  const bool good = Tcl_EvalObjEx(interp, script, 0) == TCL_OK;
  const std::string result = good ? Tcl_GetStringResult(interp) : "";
  info.restore();
  code.restore();
  Tcl_RestoreInterpState(interp, before);
  Tcl_DecrRefCount(script);
  Tcl_Release(interp);
  return result;
}

// Tcl does not say what is behind a hidden name, and takes it nowhere. No script runs meanwhile.
void show_hidden(Tcl_Interp* interp, const char* name,
                 const std::function<void(const char* shown_name)>& work) {
  static const char shown_name[] = " hidden command";
  const Tcl_InterpState before = Tcl_SaveInterpState(interp, TCL_OK);
  if (Tcl_ExposeCommand(interp, name, shown_name) == TCL_OK) {
    work(shown_name);
    Tcl_HideCommand(interp, shown_name, name);
  }
  Tcl_RestoreInterpState(interp, before);
}

std::vector<void*> hidden_commands(Tcl_Interp* interp) {
  const std::string list = evaluate_aside(interp, Tcl_NewStringObj("interp hidden {}", -1));
  std::vector<void*> found;
  Tcl_Obj* names = Tcl_NewStringObj(list.c_str(), -1);
  Tcl_IncrRefCount(names);
  Tcl_Obj* name;
  for (int i = 0; Tcl_ListObjIndex(nullptr, names, i, &name) == TCL_OK && name != nullptr; ++i) {
    show_hidden(interp, Tcl_GetString(name), [&](const char* shown_name) {
      Tcl_CmdInfo info;
      if (Tcl_GetCommandInfo(interp, shown_name, &info) != 0) found.push_back(info.clientData);
    });
  }
  Tcl_DecrRefCount(names);
  return found;
}

int report_out_of_memory(Tcl_Interp* interp) {
  Tcl_SetObjResult(interp, Tcl_NewStringObj("Dorvik: out of memory", -1));
  Tcl_SetErrorCode(interp, "TAMSEL", "STATE", "MEMORY", nullptr);
  return TCL_ERROR;
}

// The bytes of `word` in the encoding of the system; false where that cannot hold it. Tcl's simpler
// operation would write "?" for such a character, which may well be the name of another file.
static bool encode(const char* word, std::string* bytes) {
  const int flags = TCL_ENCODING_START | TCL_ENCODING_END | TCL_ENCODING_STOPONERROR;
  const size_t size = std::strlen(word);
  // What Tcl converts is counted in int in one series. No system has names so long.
  if (size > INT_MAX / 8) return false;
  // The encodings of systems write no more than 4 bytes for one, and shifts between character sets.
  bytes->resize(4 * size + 64);
  int written = 0;
  const int outcome =
      Tcl_UtfToExternal(nullptr, nullptr, word, static_cast<int>(size), flags, nullptr,
                        &(*bytes)[0], static_cast<int>(bytes->size()), nullptr, &written, nullptr);
  bytes->resize(static_cast<size_t>(written));
  return outcome == TCL_OK;
}

// The name that a file has in the system; false, with errno, where it can have none.
static bool system_name(const char* word, std::string* path) {
  // The system would cut the name at a NUL, and open another file.
  if (encode(word, path) && path->find('\0') == std::string::npos) return true;
  errno = ENOENT;
  return false;
}

FILE* open_by_name(const char* word, const char* mode) {
  std::string path;
  return system_name(word, &path) ? std::fopen(path.c_str(), mode) : nullptr;
}

// Closes the file. Answers 0 or an errno.
static int write_and_close(FILE* file, const std::string& text) {
  errno = 0;
  const bool good = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  const int error = good ? 0 : errno;
  if (std::fclose(file) != 0 && good) return errno;
  return error;
}

// What a name leads to through links, each of which may lead nowhere yet.
static int follow_links(fs::path* path) {
  std::error_code error;
  for (int links = 0; fs::is_symlink(fs::symlink_status(*path, error)); ++links) {
    if (links == 40) return ELOOP;
    const fs::path target = fs::read_symlink(*path, error);
    if (error) return error.value();
    *path = path->parent_path() / target;
  }
  return 0;
}

int write_by_name(const char* word, const std::string& text) {
  std::string name;
  if (!system_name(word, &name)) return errno;
  struct stat old;
  const bool is_there = stat(name.c_str(), &old) == 0;
  if (is_there && !S_ISREG(old.st_mode)) {
    FILE* file = std::fopen(name.c_str(), "w");
    return file != nullptr ? write_and_close(file, text) : errno;
  }
  if (!is_there && errno != ENOENT) return errno;
  if (is_there && access(name.c_str(), W_OK) != 0) return errno;
  fs::path path = name;
  if (const int error = follow_links(&path)) return error;

  // Beside it, since only there a file can take its place.
  static std::atomic<unsigned> made;
  std::string beside;
  int descriptor;
  do {
    const std::string number = std::to_string(getpid()) + "-" + std::to_string(++made);
    beside = (path.parent_path() / (".tamsel-" + number)).string();
    descriptor = open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  } while (descriptor < 0 && errno == EEXIST);
  if (descriptor < 0) return errno;
  int error = is_there && fchmod(descriptor, old.st_mode & 07777) != 0 ? errno : 0;
  FILE* file = error == 0 ? fdopen(descriptor, "w") : nullptr;
  if (file == nullptr) {
    if (error == 0) error = errno;
    close(descriptor);
  } else {
    error = write_and_close(file, text);
  }
  if (error == 0 && std::rename(beside.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) unlink(beside.c_str());
  return error;
}
