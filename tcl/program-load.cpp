// Operations that make, read, write and sum up the program of an object.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/errors.h"
#include "reader/reader.h"
#include "tcl/program.h"
#include "tcl/syntax_error.h"

using namespace tamsel;

void EcPrgVar::install(Program program) {
  if (calls > 1) {
    *program.place = {std::move(exp_names), std::move(symbols), std::move(prg), std::move(editor),
                      std::move(replaced)};
    replaced = std::move(program.place);
  }
  editor.reset();
  prg = std::move(program.prg);
  symbols = std::move(program.symbols);
  exp_names.reset();
  handled_exps.clear();
  sound_handles.clear();
  grown_texts.clear();
  new_ident_count = 0;
}

void EcPrgVar::report_program(const char* what, const char* done) {
  if (Verbose() <= 1) return;
  Verbose(2, "%s %s\n", what, done);
  Verbose(2, "=> node %s\n", symbols->name(prg->name));
  Verbose(2, "=> %d inputs\n", prg->nb_inputs);
  Verbose(2, "=> %d outputs\n", prg->nb_outputs);
  Verbose(2, "=> %d locals\n", prg->nb_locals);
  Verbose(2, "=> %d assertions\n", prg->nb_assertions);
}

void EcPrgVar::make_node(const char* name) {
  Program fresh;
  fresh.prg->name = fresh.symbols->add_text(formatted_name(name).c_str());
  install(std::move(fresh));
}

int EcPrgVar::init(const Operation&, int nparams, const char* params[]) {
  make_node(nparams == 1 ? params[0] : command_name());
  report_program(command_name(), "initialized");
  return TCL_OK;
}

FILE* EcPrgVar::open_file(const Operation& operation, const char* name) {
  FILE* file = open_by_name(name, "r");
  if (file == nullptr) call_error(io_error(name), "%s: can't open file '%s'", operation.word, name);
  return file;
}

// Reads beside the channel, through a descriptor of its own: the channel stays open and is told
// nothing.
FILE* EcPrgVar::open_channel(const Operation& operation, const char* name) {
  int mode;
  Tcl_Channel channel = Tcl_GetChannel(owner->interp, name, &mode);
  if (channel == nullptr) {
    call_error({{"LOOKUP", "CHANNEL", name}}, "%s: invalid channel '%s'", operation.word, name);
    return nullptr;
  }
  void* handle;
  if ((mode & TCL_READABLE) == 0 ||
      Tcl_GetChannelHandle(channel, TCL_READABLE, &handle) != TCL_OK) {
    // What Tcl says of a channel without a descriptor would fail the next operation on it.
    Tcl_SetChannelError(channel, nullptr);
    call_error({{"STATE", "CHANNEL", name}}, "%s: channel '%s' is unreadable", operation.word,
               name);
    return nullptr;
  }
  const int own = fcntl(static_cast<int>(reinterpret_cast<intptr_t>(handle)), F_DUPFD_CLOEXEC, 0);
  FILE* file = own >= 0 ? fdopen(own, "r") : nullptr;
  if (file == nullptr) {
    const ErrorCode code = io_error(name);
    if (own >= 0) close(own);
    call_error(code, "%s: can't open file des. of channel '%s'", operation.word, name);
  }
  return file;
}

int EcPrgVar::load(const Operation& operation, int, const char* params[]) {
  const char* name = params[0];
  if (reader_is_busy())
    return call_error({{"STATE", "BUSY"}}, "%s: %s", operation.word, busy_message);
  Program fresh;
  std::unique_ptr<FILE, int (*)(FILE*)> file((this->*operation.open)(operation, name), std::fclose);
  if (file == nullptr) return TCL_ERROR;
  Verbose("loading %s ....\n", name);

  const int refused = EcParseFile(fresh.prg.get(), fresh.symbols.get(), file.get());
  if (std::ferror(file.get()))
    return call_error(io_error(name), "%s: can't read file '%s'", operation.word, name);
  const char* message = fresh.prg->error_message;
  if (message[0] != '\0') Verbose("%s\n", message);
  const SyntaxError syntax(message[0] != '\0' ? message : "no node");
  if (refused)
    return call_error(syntax.code(), "%s: syntax errors while parsing '%s'", operation.word, name);
  if (fresh.prg->name == 0)
    return call_error(syntax.code(), "%s: can't load node ('%s' is empty)", operation.word, name);
  install(std::move(fresh));
  report_program(name, "loaded");
  return TCL_OK;
}

int EcPrgVar::dump(const Operation& operation, int nparams, const char* params[]) {
  const char* name = nparams == 1 ? params[0] : "stdout";
  FILE* file = nparams == 1 ? open_by_name(name, "w") : stdout;
  if (file == nullptr)
    return call_error(io_error(name), "%s: can't open file '%s'", operation.word, name);
  Verbose("--dumping in %s ....\n", name);
  PtyStream out(file, 80, nullptr);
  // A file is looked at when the text is whole; a terminal or a pipe gets each line as it is done.
  struct stat kind;
  if (file != stdout && fstat(fileno(file), &kind) == 0 && S_ISREG(kind.st_mode))
    out.write_in_blocks();
  prg->print_quarel(&out);
  errno = out.close();
  if (errno != 0)
    return call_error(io_error(name), "%s: can't write file '%s'", operation.word, name);
  return TCL_OK;
}

int EcPrgVar::profile(const Operation& operation, int, const char*[]) {
  InternedText text(symbols.get(), &grown_texts, symbols->name(prg->name));
  const auto append_types = [&](const IntList* names) {
    for (const int name : values_of(names)) {
      const IdentInfo* ident = prg->ident(name);
      text.append(" ", prg->type_name(ident != nullptr ? ident->type : nullptr, "?"));
    }
  };
  append_types(prg->inputs);
  text.append(" :", "");
  append_types(prg->outputs);
  return query_result(operation, "(null)", text.intern());
}
