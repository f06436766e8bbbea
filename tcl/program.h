// tcl/program.h: program objects, and the table of their operations.
#ifndef TCL_PROGRAM_H
#define TCL_PROGRAM_H

#include <memory>
#include <vector>

#include "editing/editor.h"
#include "foundation/text.h"
#include "model/ecprg.h"
#include "tcl/dorvik.h"
#include "tcl/interned_text.h"
#include "tcl/support.h"

struct Operation;

// A program object: a program, and the handles that scripts have on its expressions. Held by its
// command and by each call that runs in it; the last release deletes it.
class EcPrgVar {
 public:
  explicit EcPrgVar(Dorvik* dorvik) : owner(dorvik) {}
  ~EcPrgVar();
  EcPrgVar(const EcPrgVar&) = delete;
  EcPrgVar& operator=(const EcPrgVar&) = delete;

  // Around a call: the object stays, and so do the programs that a script of Ctrl-C replaces while
  // it runs.
  void begin_call() {
    ++reference_count;
    ++calls;
  }
  void end_call() {
    if (--calls == 0 && replaced != nullptr) drop_replaced();
    release();
  }
  void release() {
    if (--reference_count == 0) delete this;
  }

  // Replaces the program by an empty node called `name`.
  void make_node(const char* name);
  // Says at verbosity level 2 that the program is `done`, and what is in it.
  void report_program(const char* what, const char* done);
  // Finds operation `word`, checks the count of its parameters and runs it.
  int call(const char* word, int nparams, const char* params[]);

  // Error results of operations. All return TCL_ERROR; see deliver_error.
  int call_error(const ErrorCode& code, const char* format, ...) PRINTF_LIKE(3, 4);
  int usage_error(const Operation& operation);
  // Delivers a copy of `text` as result; it outlives the program. Returns TCL_OK.
  int text_result(const char* text) {
    // Into the empty result that stands ready, which saves making another and throwing it away.
    if (Tcl_IsShared(Tcl_GetObjResult(owner->interp))) Tcl_ResetResult(owner->interp);
    Tcl_SetStringObj(Tcl_GetObjResult(owner->interp), text, -1);
    return TCL_OK;
  }

  // The list with `object`, which is in none, at its head; `list` may be null.
  static EcPrgVar* add(EcPrgVar* list, EcPrgVar* object);
  // The list without `object`, in constant time.
  static EcPrgVar* remove(EcPrgVar* list, EcPrgVar* object);

  // Takes the command that was made for this object, and notes from now on how it is called.
  void set_command(Tcl_Command token);
  void note_name();
  // A name under which Tcl finds the command from where it is now; null where it finds none, or
  // that of another. Valid until the next note_name.
  const char* found_name() const;
  bool is_found_as(const char* name) const;
  // Notes no more how the command is called, which goes; nothing where `name` is not it.
  void stop_following(const char* name);
  // Whether the command is there, under its name or among the `hidden` ones (see hidden_commands).
  // Tcl may throw away a command that a trace has made, without telling its object, and `command`
  // then leads nowhere.
  bool has_command(const std::vector<void*>& hidden) const;
  // The object's current command name; empty where it has none (yet, or any more).
  const char* command_name() const;

  // The handle of an expression: "_exp" and hexadecimal digits, valid until the program is
  // replaced.
  const char* exp2string(Exp* e);
  // The expression of a handle that this object has issued for its present program; null for any
  // other text.
  Exp* string2exp(const char* handle);
  // Whether what a handle of this object stands for mentions a name that was removed. Looks at it
  // once after each removal.
  bool is_stale(const char* handle);

  // The operations, each for the rows of the table that name it. `params` are the words after the
  // operation's; their number has been checked, and that there is a program where one is needed.
  int init(const Operation& operation, int nparams, const char* params[]);
  int load(const Operation& operation, int nparams, const char* params[]);
  int dump(const Operation& operation, int nparams, const char* params[]);
  int profile(const Operation& operation, int nparams, const char* params[]);
  int nbelts(const Operation& operation, int nparams, const char* params[]);
  int varname(const Operation& operation, int nparams, const char* params[]);
  int vartype(const Operation& operation, int nparams, const char* params[]);
  int funcdecl(const Operation& operation, int nparams, const char* params[]);
  int addvar(const Operation& operation, int nparams, const char* params[]);
  int addfunc(const Operation& operation, int nparams, const char* params[]);
  int build_exp(const Operation& operation, int nparams, const char* params[]);
  int equation(const Operation& operation, int nparams, const char* params[]);
  int exp_type(const Operation& operation, int nparams, const char* params[]);

  // What an operation that loads reads: hand over the stream, or answer null with an error result.
  FILE* open_file(const Operation& operation, const char* name);
  FILE* open_channel(const Operation& operation, const char* name);

  // `prg` uses `symbols`; they are deleted in the order prg, symbols, exp_names.
  std::unique_ptr<SymbolTable> exp_names;  // handles issued; null before the first
  std::unique_ptr<SymbolTable> symbols;    // null where there is no program
  std::unique_ptr<EcPrg> prg;              // null only after an ecprg with too many words
  std::vector<Exp*> handled_exps;          // item n has the handle n + 1 of exp_names
  std::vector<unsigned> sound_handles;     // of these, EcPrg::removals at which they were not stale
  GrownTexts grown_texts;                  // interned in `symbols` by summing up
  EcPrgVar* next = nullptr;                // of the owner's list
  EcPrgVar* previous = nullptr;            // of the same
  Tcl_Command command = nullptr;           // null before it is created and when it is gone
  Tcl_Obj* full_name = nullptr;            // of the command; this object holds one reference
  Dorvik* owner;
  int reference_count = 1;                 // of its command and of each call
  int calls = 0;                           // that are under way, one within the other
  int new_ident_count = 0;                 // of generated names
  std::unique_ptr<tamsel::Editor> editor;  // of the program; made when it is asked for

  // A program that was replaced under a call, with what belongs to it.
  struct Replaced {
    std::unique_ptr<SymbolTable> exp_names;
    std::unique_ptr<SymbolTable> symbols;
    std::unique_ptr<EcPrg> prg;
    std::unique_ptr<tamsel::Editor> editor;
    std::unique_ptr<Replaced> next;
  };
  std::unique_ptr<Replaced> replaced;  // until the outermost call ends

  // A fresh program on a table of its own: what an object is given as a whole.
  struct Program {
    Program() { prg->EcPrgInit(symbols.get()); }

    std::unique_ptr<SymbolTable> symbols = std::make_unique<SymbolTable>();
    std::unique_ptr<EcPrg> prg = std::make_unique<EcPrg>();
    std::unique_ptr<Replaced> place = std::make_unique<Replaced>();  // of the one that goes
  };
  tamsel::Editor& program_editor() {
    if (editor == nullptr) editor = std::make_unique<tamsel::Editor>(prg.get());
    return *editor;
  }
  // Cannot fail: the old program goes and the new one is there.
  void install(Program program);

 private:
  void drop_replaced();
  int add_to_program(const Operation& operation, int nparams, const char* params[]);

  const char* type_name(const EcType* type) const;
  int select(const Operation& operation, const char* index, int* symbol);
  int query_result(const Operation& operation, const char* parameter, const char* result);

  int built_new_ident(const char* prefix);
  bool take_name(const char* word, int* symbol);
  int used_name_error(const Operation& operation, const char* word);
  int find_type(const Operation& operation, const char* word, EcType** type);
  int find_exp(const Operation& operation, const char* word, Exp** e);
  int parse_exp(const Operation& operation, const char* text, Exp** e);
  void show_exp(Exp* e);
};

// The operation procedures of a program object's command.
int ECPRG_call(void* object, Tcl_Interp* interp, int argc, const char* argv[]);
void ECPRG_delete(void* object);

// One of the lists of a program, with the counter of its members, and how a variable is added.
struct Section {
  NameList list;
  int EcPrg::*count;
  void (*add_variable)(EcPrg* prg, int name, EcType* type) = nullptr;  // null: of no variables
};

// Why a stale handle is refused.
constexpr char stale_message[] = "the expression mentions a name that was removed";

// What an operation does to the program of its object.
enum class Effect {
  replaces,  // puts a whole new one there, as its last step; needs none
  asks,      // leaves it as it is
  adds,      // makes names, nodes or declarations, which go again where memory runs out
};

// One operation of program objects.
struct Operation {
  const char* word;
  int (EcPrgVar::*handler)(const Operation& operation, int nparams, const char* params[]);
  int min_params;
  int max_params;     // -1: any number
  const char* usage;  // of the parameters, for the error on a wrong count; null: takes none
  Effect effect;
  const Section* section;  // the list it asks or adds to, or null
  const char* help;        // what help prints after the word
  // How the text is opened; null where none is loaded.
  FILE* (EcPrgVar::*open)(const Operation& operation, const char* name) = nullptr;
};

// The one table of operations. `help` prints them in its order.
extern const Operation operations[];
extern const int operation_count;

#endif
