// Commands of Tcl, driven through a real interpreter. Each line of the input is a list of words;
// the word $N stands for the result of the Nth command, $c for a channel.
//
// The interpreter knows nothing but this library's commands, `rename`, `trace` and `catch`, of
// `interp` what hides commands and shows them again, and
//   run N     runs line N again: what timers, traces and Ctrl-C can do besides the free text
//   wait      lets timers fire
//   ctrl-c    raises SIGINT
//   gone      deletes the interpreter
// No word can name a file outside the scratch folder, which is the current folder: "/" and "\" are
// blanked out.

#include <tcl.h>
#undef Tcl_InitStubs

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "foundation/errors.h"
#include "fuzz/fuzz.h"
#include "tcl/dorvik.h"
#include "tcl/tcl_timer.h"

extern "C" const char* Tcl_InitStubs(Tcl_Interp* interp, const char* version, int exact);

namespace {

constexpr int most_commands = 100;  // of one input, those of `run` included
constexpr int most_waits = 2;

const char sample[] =
    "type color = (red, green); const k : int; function f (a : int) returns (r : int);"
    "node n (a : int; (b : bool) when c; c : bool) returns (o : int);"
    "var l : bool; let o = a -> pre o + 1; assert b; l = c; tel";

// Leaves no command but those that cannot loop or reach out.
void strip(Tcl_Interp* interp) {
  Tcl_Eval(interp, "rename trace {tcl trace}; rename interp {tcl interp}; info commands");
  int count;
  const char** names;
  require(Tcl_SplitList(nullptr, Tcl_GetStringResult(interp), &count, &names) == TCL_OK, "a list");
  for (int i = 0; i < count; ++i) {
    const std::string name = names[i];
    if (name != "rename" && name != "catch" && name != "tcl trace" && name != "tcl interp")
      Tcl_DeleteCommand(interp, names[i]);
  }
  Tcl_Free(reinterpret_cast<char*>(names));
  for (const char* name : {"::tcl", "::oo"})
    Tcl_DeleteNamespace(Tcl_FindNamespace(interp, name, nullptr, 0));
}

class Session {
 public:
  explicit Session(const std::string& text) : interp_(Tcl_CreateInterp()) {
    for (size_t start = 0; start <= text.size();) {
      const size_t end = std::min(text.find('\n', start), text.size());
      lines_.push_back(text.substr(start, end - start));
      start = end + 1;
    }
    Tcl_Preserve(interp_);
    Tcl_InitStubs(interp_, REQUIRED_TCL, 0);
    channel_ = Tcl_OpenFileChannel(interp_, "sample.ec", "r", 0);
    Tcl_RegisterChannel(interp_, channel_);
    channel_name_ = Tcl_GetChannelName(channel_);
    strip(interp_);
    const struct {
      const char* name;
      Tcl_ObjCmdProc* procedure;
    } own[] = {{"run", run},     {"wait", wait},     {"ctrl-c", ctrl_c}, {"gone", gone},
               {"trace", trace}, {"traced", traced}, {"interp", hiding}};
    for (const auto& command : own)
      Tcl_CreateObjCommand(interp_, command.name, command.procedure, this, nullptr);
    TimeHandler_Init(interp_);
    run_dorvik_Init(interp_);
  }
  ~Session() {
    delete_interp();
    Tcl_Release(interp_);
    std::raise(SIGINT);
    // These live until the process ends, which for a million sessions is too long.
    Dorvik* done = last_dorvik;
    last_dorvik = done->previous;
    Tcl_DecrRefCount(done->sigint_script);
    delete done;
    set_verbose_mode(0);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void play() {
    for (const std::string& line : lines_) {
      const int code = evaluate(line);
      if (gone_) return;
      const std::string result = Tcl_GetStringResult(interp_);
      require(code == TCL_OK || code == TCL_ERROR, "no other code comes out of commands");
      results_.push_back(result);
    }
  }

 private:
  int evaluate(const std::string& line) {
    if (++commands_ > most_commands) return TCL_OK;
    int count;
    const char** words;
    if (Tcl_SplitList(nullptr, line.c_str(), &count, &words) != TCL_OK) return TCL_OK;
    std::vector<Tcl_Obj*> command;
    for (int i = 0; i < count; ++i) {
      command.push_back(Tcl_NewStringObj(meant_by(words[i]).c_str(), -1));
      Tcl_IncrRefCount(command.back());
    }
    Tcl_Free(reinterpret_cast<char*>(words));
    const int code = count == 0 ? TCL_OK : Tcl_EvalObjv(interp_, count, command.data(), 0);
    for (Tcl_Obj* word : command) Tcl_DecrRefCount(word);
    return code;
  }
  std::string meant_by(const char* word) const {
    if (word[0] == '$' && word[1] == 'c' && word[2] == '\0') return channel_name_;
    if (word[0] == '$' && word[1] >= '0' && word[1] <= '9') {
      const size_t index = static_cast<size_t>(std::atoi(word + 1));
      return index < results_.size() ? results_[index] : "";
    }
    return word;
  }

  static int run(ClientData data, Tcl_Interp*, int count, Tcl_Obj* const words[]) {
    Session* session = static_cast<Session*>(data);
    int line = 0;
    if (count > 1) Tcl_GetIntFromObj(nullptr, words[1], &line);
    if (session->gone_) return TCL_OK;
    return session->evaluate(session->lines_[static_cast<unsigned>(line) % session->lines_.size()]);
  }
  static int wait(ClientData data, Tcl_Interp*, int, Tcl_Obj* const[]) {
    if (++static_cast<Session*>(data)->waits_ > most_waits) return TCL_OK;
    Tcl_Sleep(1);
    for (int i = 0; i < 10 && Tcl_DoOneEvent(TCL_TIMER_EVENTS | TCL_DONT_WAIT); ++i) continue;
    return TCL_OK;
  }
  static int ctrl_c(ClientData data, Tcl_Interp*, int, Tcl_Obj* const[]) {
    if (++static_cast<Session*>(data)->commands_ <= most_commands) std::raise(SIGINT);
    return TCL_OK;
  }
  static int gone(ClientData data, Tcl_Interp*, int, Tcl_Obj* const[]) {
    Session* session = static_cast<Session*>(data);
    if (session->open_traces_ == 0) session->delete_interp();
    return TCL_OK;
  }
  // Tcl itself panics when an execution trace deletes the interpreter. So those run their scripts
  // through `traced`, under which `gone` does nothing.
  static int trace(ClientData, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
    std::vector<Tcl_Obj*> command(words, words + count);
    command[0] = Tcl_NewStringObj("tcl trace", -1);
    if (count == 6 && Tcl_GetString(words[2])[0] == 'e') {
      Tcl_Obj* const script[] = {Tcl_NewStringObj("traced", -1), words[5]};
      command[5] = Tcl_NewListObj(2, script);
    }
    for (Tcl_Obj* word : command) Tcl_IncrRefCount(word);
    const int code = Tcl_EvalObjv(interp, count, command.data(), 0);
    for (Tcl_Obj* word : command) Tcl_DecrRefCount(word);
    return code;
  }
  static int traced(ClientData data, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
    Session* session = static_cast<Session*>(data);
    if (++session->commands_ > most_commands) return TCL_OK;
    ++session->open_traces_;
    const int code = Tcl_EvalObjEx(interp, Tcl_ConcatObj(count - 1, words + 1), 0);
    --session->open_traces_;
    return code;
  }
  // What `interp` does to this interpreter itself.
  static int hiding(ClientData, Tcl_Interp* interp, int count, Tcl_Obj* const words[]) {
    if (count < 3 || Tcl_GetString(words[2])[0] != '\0') return TCL_ERROR;
    for (const std::string word : {"hide", "expose", "hidden", "invokehidden"}) {
      if (word != Tcl_GetString(words[1])) continue;
      std::vector<Tcl_Obj*> command(words, words + count);
      command[0] = Tcl_NewStringObj("tcl interp", -1);
      Tcl_IncrRefCount(command[0]);
      const int code = Tcl_EvalObjv(interp, count, command.data(), 0);
      Tcl_DecrRefCount(command[0]);
      return code;
    }
    return TCL_ERROR;
  }
  void delete_interp() {
    if (!gone_) Tcl_DeleteInterp(interp_);
    gone_ = true;
  }

  Tcl_Interp* interp_;
  Tcl_Channel channel_;
  std::string channel_name_;
  std::vector<std::string> lines_;
  std::vector<std::string> results_;
  int commands_ = 0;
  int waits_ = 0;
  int open_traces_ = 0;
  bool gone_ = false;
};

// Leaves the sample alone in the current folder.
void prepare_folder() {
  for (const auto& entry : std::filesystem::directory_iterator("."))
    std::filesystem::remove_all(entry.path());
  FILE* file = std::fopen("sample.ec", "w");
  require(file != nullptr, "the scratch folder takes files");
  std::fwrite(sample, 1, sizeof sample - 1, file);
  std::fclose(file);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** argv) {
  Tcl_FindExecutable((*argv)[0]);
  static std::string folder =
      (std::filesystem::temp_directory_path() / "tamsel-fuzz-XXXXXX").string();
  require(mkdtemp(folder.data()) != nullptr, "there is room for a scratch folder");
  std::filesystem::current_path(folder);
  std::atexit([] { std::filesystem::remove_all(folder); });
  return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text = text_of(data, size);
  for (char& c : text)
    if (c == '/' || c == '\\' || c == '\0') c = ' ';
  prepare_folder();
  Session(text).play();
  return 0;
}
