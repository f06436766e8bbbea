// tcl/ensemble.h: the ensemble `tamsel`, whose commands ask for every part of a program and change
// it.
//
// They print nothing, and what they make for the question alone (names, nodes) is gone when they
// answer. They answer, or fail with a text and an errorCode, and then nothing has changed.
#ifndef TCL_ENSEMBLE_H
#define TCL_ENSEMBLE_H

#include <cstring>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/describe.h"
#include "analysis/expression_text.h"
#include "tcl/program.h"
#include "tcl/value.h"

namespace tamsel {

class Question;

// What a command asks of the object that it is given.
enum class Wants {
  object,   // with or without a program
  program,  // that is in it
  change,   // one that no other call is working on
};

// One of the commands.
struct Subcommand {
  const char* word;
  int (Question::*handler)();
  int min_words;      // after the object's name
  int max_words;      // -1: any number
  const char* usage;  // of all its words
  Wants wants;
};

// The one table of them.
extern const Subcommand subcommands[];
extern const int subcommand_count;

// Words that answers have in common: made once, and not for each answer.
struct SharedValues {
  SharedValues() {
    for (const NameKind each : name_kinds) kinds[static_cast<int>(each)] = Value(kind_word(each));
  }

  Value kind{"kind"}, type{"type"}, clock{"clock"}, index{"index"}, equation{"equation"},
      with{"with"}, line{"line"}, equation_line{"equation-line"}, rank{"rank"},
      constants{"constants"}, params{"params"}, results{"results"}, text{"text"}, needs{"needs"},
      severity{"severity"}, name{"name"}, names{"names"}, message{"message"}, error{"error"},
      base_clock{"true"}, empty{""};
  Value numbers[3] = {Value(Tcl_NewIntObj(-1)), Value(Tcl_NewIntObj(0)), Value(Tcl_NewIntObj(1))};
  Value kinds[std::size(name_kinds)];
};

// The ensemble of one interpreter. Goes when the interpreter has deleted its commands.
class Ensemble {
 public:
  // Makes a command ::tamsel::WORD for each row of the table, and the ensemble over them.
  explicit Ensemble(Tcl_Interp* interp);
  Ensemble(const Ensemble&) = delete;
  Ensemble& operator=(const Ensemble&) = delete;

  Tcl_Interp* const interp;
  SharedValues shared;

 private:
  struct Command {
    Ensemble* ensemble;
    const Subcommand* row;
  };
  std::vector<Command> commands_;  // the client data of each
  static int run(void* command, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]);
};

// Takes back what a text has made of its own in a program, and in its table. What a script of
// Ctrl-C has added to the program meanwhile stays, and all that is there with it.
class Guest {
 public:
  // Borrows the object, which is held.
  explicit Guest(const EcPrgVar* object)
      : object_(object),
        prg_(object->prg.get()),
        mark_(prg_->mark()),
        names_(prg_->symbols->nb_symbols),
        others_(count_others()) {}
  ~Guest() {
    if (object_->prg.get() != prg_ || count_others() != others_) return;
    prg_->roll_back(mark_);
    prg_->symbols->cut_back(names_);
  }
  Guest(const Guest&) = delete;
  Guest& operator=(const Guest&) = delete;

 private:
  // Handles and declarations, which only grow in number.
  size_t count_others() const {
    return object_->handled_exps.size() + static_cast<size_t>(prg_->nb_inputs + prg_->nb_outputs +
                                                              prg_->nb_locals + prg_->nb_functions);
  }

  const EcPrgVar* object_;
  EcPrg* prg_;
  EcPrg::Mark mark_;
  int names_;
  size_t others_;
};

// How an expression is answered.
enum class ExpressionForm { text, full, tree };

// One call of a command: its words, what they stand for, and its answer.
class Question {
 public:
  Question(Ensemble* ensemble, const Subcommand& row, int objc, Tcl_Obj* const objv[])
      : ensemble_(ensemble), interp_(ensemble->interp), row_(row), objc_(objc), objv_(objv) {}
  ~Question();
  Question(const Question&) = delete;
  Question& operator=(const Question&) = delete;

  // Counts the words, finds the object and runs the handler.
  int answer();

  int names();
  int describe_name();
  int definition();
  int format();
  int type();
  int clock();
  int needs();
  int users();
  int cone();
  int assertions();
  int text();
  int messages();
  int check_program();
  int read();

  int declare();
  int define();
  int undefine();
  int assert_expression();
  int retract();
  int rename();
  int remove();
  int substitute();
  int copy();
  int write();

 private:
  struct Option {
    const char* word;  // null: the end of a table
    bool has_value;
  };
  // Reads the options from word `first` on: calls `take` with the place of each in `options`, which
  // is static, and with its value or null. Where `rest` is not null one more word may follow, which
  // is stored there.
  template <class Take>
  int read_options(int first, const Option options[], Take take, Tcl_Obj** rest = nullptr);
  // Finds the word of `value` in `words`, which is static and ends with null. `what` it is, for the
  // error.
  int read_word(Tcl_Obj* value, const char* const words[], const char* what, int* place);
  // The option -now, if word `first` is there.
  int read_now(int first, bool* now);
  // Calls `take` with each word of a list, until it does not answer TCL_OK. `what` they are.
  template <class Take>
  int each_word(Tcl_Obj* list, const char* what, Take take);
  int read_names(Tcl_Obj* list, std::vector<int>* names);

  // The words after the object, from 0.
  Tcl_Obj* word(int i) const { return objv_[2 + i]; }
  int word_count() const { return objc_ - 2; }

  int fail(const ErrorCode& code, const std::string& text) {
    return deliver_error(interp_, code, text);
  }
  int usage_error();
  int value_error(const char* what, Tcl_Obj* value, const char* expected);
  int find_object();
  int find_name(Tcl_Obj* word, Description* found);
  // The expression that the word is: a handle, or a text, whose traces go with this question.
  int find_expression(Tcl_Obj* word, Exp** e);
  int refuse_expression();
  int read_form(int first, ExpressionForm* form);
  int give(Tcl_Obj* value) {
    Tcl_SetObjResult(interp_, value);
    return TCL_OK;
  }
  int give_expression(Exp* e, ExpressionForm form);
  int refuse_long_text();
  int give_text(const std::string& text);
  int give_names(const std::vector<int>& names);

  const char* name(int symbol) const { return prg_->symbols->name(symbol); }
  Tcl_Obj* number(int value) const;
  Tcl_Obj* list_of(const std::vector<int>& names) const;
  Tcl_Obj* list_of(const std::vector<Parameter>& parameters) const;
  Users& users_of_names() { return object_->program_editor().users(); }
  // Hands the whole program to `take`, part by part, in the format of the options from word `first`
  // on.
  int read_program_text(int first, const std::function<void(std::string_view)>& take);

  // Of words that need not be names yet.
  int read_texts(Tcl_Obj* list, const char* what, std::vector<std::string>* texts);
  int declare_variable(NameKind kind);
  int declare_type();
  int declare_function();
  int read_parameters(Tcl_Obj* list, std::vector<Editor::Parameter>* parameters);
  // The expression that a word is, ready to go into the program; the text is taken back.
  int read_draft(Tcl_Obj* word, size_t names, std::optional<Draft>* draft);
  // Empty, or the error of an edit that was refused.
  int outcome(bool is_done);

  std::optional<CtrlCWaits> waits_;  // first, and so until the object is given back
  Ensemble* const ensemble_;
  Tcl_Interp* const interp_;
  const Subcommand& row_;
  const int objc_;
  Tcl_Obj* const* const objv_;
  EcPrgVar* object_ = nullptr;  // held
  EcPrg* prg_ = nullptr;        // null where there is none
  bool was_silent_ = false;
  std::optional<Guest> guest_;
};

template <class Take>
int Question::read_options(int first, const Option options[], Take take, Tcl_Obj** rest) {
  int i = first;
  for (; i < word_count(); ++i) {
    const char* text = Tcl_GetString(word(i));
    if (rest != nullptr && text[0] != '-') break;
    if (rest != nullptr && std::strcmp(text, "--") == 0) {
      ++i;
      break;
    }
    int option;
    if (Tcl_GetIndexFromObjStruct(interp_, word(i), options, sizeof *options, "option", 0,
                                  &option) != TCL_OK)
      return fail({{"USAGE", "OPTION", text}}, std::string(Tcl_GetStringResult(interp_)));
    if (options[option].has_value && ++i == word_count()) return usage_error();
    if (take(option, options[option].has_value ? word(i) : nullptr) != TCL_OK) return TCL_ERROR;
  }
  if (i == word_count()) return TCL_OK;
  if (i + 1 < word_count()) return usage_error();
  *rest = word(i);
  return TCL_OK;
}

template <class Take>
int Question::each_word(Tcl_Obj* list, const char* what, Take take) {
  ListSize count;
  Tcl_Obj** words;
  if (Tcl_ListObjGetElements(nullptr, list, &count, &words) != TCL_OK)
    return value_error(what, list, "a list");
  // The list may lose its form as one when its words are looked at.
  std::vector<Value> held;
  for (ListSize i = 0; i < count; ++i) held.emplace_back(words[i]);
  for (const Value& item : held)
    if (take(item.get()) != TCL_OK) return TCL_ERROR;
  return TCL_OK;
}

}  // namespace tamsel

#endif
