// editing/editor.h: changes of a program by name, each of which is checked before anything changes.
//
// An operation does all that it is asked for or, where it is refused, nothing. Names are texts, so
// that a refused one leaves no trace. Operations throw bad_alloc with nothing changed; only a name
// that was declared twice may then stand in its list once. All are linear in what they change and
// in its mentions; no list of names is walked.
#ifndef EDITING_EDITOR_H
#define EDITING_EDITOR_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "analysis/describe.h"
#include "analysis/users.h"
#include "editing/draft.h"

namespace tamsel {

// Why an operation was refused.
struct Refusal {
  enum Reason {
    none,
    bad_name,      // `name` is no name of the language
    bad_list,      // the names given are none, or one stands there twice
    taken,         // something is declared as `name`
    unknown,       // nothing fitting is declared as `name`
    unknown_type,  // no type is called `name`
    no_equation,   // no equation defines `name`
    no_assertion,  // there is none of that index
    ill_typed,     // `name` has another type than the expression
    ill_asserted,  // an assertion is no boolean
    in_use,        // `who` needs `name`
  };

  Reason reason = none;
  std::string name;
  std::string who;
  std::string message;
};

class Editor {
 public:
  // Borrows the program, which must outlive this.
  explicit Editor(EcPrg* prg) : prg_(prg), numbers_(prg) {}
  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  using Names = std::vector<std::string>;
  struct Parameter {
    std::string name;  // empty: is given one
    std::string type;
  };

  // Each answers false where it is refused, and `refusal` then says why.

  // An input, output, local or constant. `clock` need not be declared; empty: the base clock.
  bool declare(NameKind kind, const std::string& type, const std::string& name,
               const std::string& clock);
  // An abstract type, or an enumeration with its values in order of rank.
  bool declare_type(const std::string& name, const Names& values);
  // At least one of each.
  bool declare_function(const std::string& name, std::vector<Parameter> params,
                        std::vector<Parameter> results);
  // The equation of outputs and locals, in the place of those that they had. It may not take a part
  // of the names of another one.
  bool define(const Names& names, Draft right);
  // Takes the equations of these names away, each with all names of its left side.
  bool undefine(const Names& names);
  // Adds an assertion; `*index` is its place.
  bool assert_that(Draft e, int* index);
  // Takes the assertions at these places away.
  bool retract(const std::vector<int>& indexes);
  // Gives declared names, and the node, other ones, all at once.
  bool rename(const std::vector<std::pair<std::string, std::string>>& names);
  // Takes declarations away, with their equations, that nothing else mentions.
  bool remove(const Names& names);
  // Puts `value` in the place of each mention of a variable or constant: in the equations of
  // `in`, or in all equations and assertions where that is null. `*count` is how many they were.
  bool substitute(const std::string& name, Draft value, const Names* in, int* count);

  // Takes note of a name that was declared in another way.
  void note_declaration(int symbol);
  // Who mentions what, as it is now.
  Users& users();

  Refusal refusal;

 private:
  struct Going;
  bool refuse(Refusal::Reason reason, const std::string& name, const std::string& message,
              const std::string& who = "");
  bool refuse_use(const std::string& name, const std::string& who);
  int known(const std::string& name) const { return prg_->symbols->tape->known(name.c_str()); }
  std::string text(int symbol) const { return prg_->symbols->name(symbol); }
  bool is_taken(int symbol) const;
  std::string called(const User& user);
  bool check_new_name(const std::string& name);
  bool find(const std::string& name, Description* found);
  bool find_type(const std::string& name, EcType** type);
  bool find_variable(const std::string& name, IdentInfo** ident);
  bool check_left_side(const std::vector<IdentInfo*>& left);
  bool fits(const IdentInfo* ident, int type) const;

  bool is_in_step() const { return users_ != nullptr && users_->is_fresh(); }
  // Users that somebody has: none, one, or many. To name them takes no memory.
  class SomeUsers {
   public:
    SomeUsers() = default;
    SomeUsers(const User& one) : first_(&one), count_(1) {}
    SomeUsers(const std::vector<User>& all) : first_(all.data()), count_(all.size()) {}
    const User* begin() const { return first_; }
    const User* end() const { return first_ + count_; }

   private:
    const User* first_ = nullptr;
    size_t count_ = 0;
  };
  void note_change(bool was_in_step, SomeUsers gone, SomeUsers fresh) noexcept;
  void drop_numbers(const std::vector<int>& symbols) noexcept;
  void collect_numbers_of(const IdentInfo* ident, std::vector<int>* symbols) const;

  bool gather(const Names& names, Going* going);
  bool gather_name(const Description& found, Going* going);
  bool check_half_sides(const Going& going);
  bool check_uses(const Going& going);
  bool check_uses_of(int symbol, Role role, const Going& going);

  using Renamed = std::vector<std::pair<int, std::string>>;  // symbols and their new texts
  class TextOwners;
  struct Foreign;
  std::vector<Foreign> foreign_mentions(const Renamed& renamed);
  void point_elsewhere(const Foreign& mention, int symbol) noexcept;
  struct Retyped;
  void retype(int symbol, const TextOwners& owners, std::vector<Retyped>* retyped);
  void take_lone_type(const IntList* pairs, EcType** type) const noexcept;

  EcPrg* const prg_;
  OwnNumbers numbers_;
  std::unique_ptr<Users> users_;  // null until it is asked for
};

}  // namespace tamsel

#endif
