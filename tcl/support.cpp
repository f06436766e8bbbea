#include "tcl/support.h"

#include <cerrno>
#include <climits>
#include <cstring>

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

// Tcl does not say what is behind a hidden name. So each is shown under another one while it is
// asked for, in which no script runs.
std::vector<void*> hidden_commands(Tcl_Interp* interp) {
  static const char shown_name[] = " hidden command";
  const std::string list = evaluate_aside(interp, Tcl_NewStringObj("interp hidden {}", -1));
  std::vector<void*> found;
  Tcl_Obj* names = Tcl_NewStringObj(list.c_str(), -1);
  Tcl_IncrRefCount(names);
  const Tcl_InterpState before = Tcl_SaveInterpState(interp, TCL_OK);
  Tcl_Obj* name;
  for (int i = 0; Tcl_ListObjIndex(nullptr, names, i, &name) == TCL_OK && name != nullptr; ++i) {
    if (Tcl_ExposeCommand(interp, Tcl_GetString(name), shown_name) != TCL_OK) continue;
    Tcl_CmdInfo info;
    if (Tcl_GetCommandInfo(interp, shown_name, &info) != 0) found.push_back(info.clientData);
    Tcl_HideCommand(interp, shown_name, Tcl_GetString(name));
  }
  Tcl_RestoreInterpState(interp, before);
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

FILE* open_by_name(const char* word, const char* mode) {
  std::string path;
  // The system would cut the name at a NUL, and open another file.
  if (encode(word, &path) && path.find('\0') == std::string::npos)
    return std::fopen(path.c_str(), mode);
  errno = ENOENT;
  return nullptr;
}
