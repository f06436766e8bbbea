// analysis/users.h: who mentions a name, and what is reached from names in steps.
#ifndef ANALYSIS_USERS_H
#define ANALYSIS_USERS_H

#include <climits>
#include <unordered_map>

#include "analysis/equations.h"

namespace tamsel {

// What a symbol is where it is mentioned.
enum class Role {
  variable,   // or a constant: in an expression, or as the clock of a declaration
  function,   // that is called
  type,       // of a declared name, of a parameter or result
  parameter,  // the name of a parameter or result: it mentions nothing but has the same text
};

// What mentions others.
struct User {
  enum Kind {
    equation,     // whose left side begins with `symbol`
    assertion,    // of that name
    declaration,  // of that name
  };

  int symbol;
  Kind kind;
};

// The user that the equation of an output or local is.
inline User equation_of(const IdentInfo* ident) {
  const IntList* names = ident->tuple_names;
  return {names != nullptr ? names->value : ident->name, User::equation};
}

// Who mentions a name: an index of all mentions of a program, some 8 bytes each. Whoever changes
// the program may keep it in step, which costs no more than the change.
class Users {
 public:
  // Borrows the program, which must outlive the index.
  explicit Users(EcPrg* prg);

  // The names whose equations mention a name, in the order outputs, locals. `now`: only where it is
  // mentioned outside of every `pre`.
  std::vector<int> of(int symbol, bool now);
  // Calls `take` with each equation that mentions it.
  template <class Take>
  void each_equation(int symbol, bool now, Take take);
  // Calls `take` with each user that mentions the symbol in a role.
  template <class Take>
  void each_user(int symbol, Role role, Take take) {
    each_use(symbol, [&](const Use& use) {
      if (static_cast<Role>(use.role) == role) take(users_[use.user].user);
    });
  }

  // Whether it still holds.
  bool is_fresh() const { return is_fresh_but_for(0); }
  // Whether it holds but for the last changes, so many.
  bool is_fresh_but_for(unsigned changes) const { return revision_ + changes == prg_->revision; }
  // Takes note of users that change; after all of a change `accept`. Where memory runs out the
  // index holds no more.
  void forget(const User& user) noexcept;
  void add(const User& user);
  void accept() { revision_ = prg_->revision; }
  // Whether the notes have become as large as the rest, so that a fresh index is better.
  bool is_worn() const {
    return added_count_ > uses_.size() + 1024 || users_.size() > 2 * alive_ + 1024;
  }

 private:
  struct Use {
    unsigned user : 29;  // in users_
    unsigned role : 2;
    unsigned now : 1;
  };
  static constexpr unsigned nobody = (1u << 29) - 1;  // ends a list that has lost some
  struct Entry {
    User user;
    bool is_there;
  };

  // Calls `take` with each use that is there.
  template <class Take>
  void each_use(int symbol, Take take);
  void drop_gone(Use* begin, Use* end) const noexcept;
  unsigned& place_of(const User& user);
  template <class Take>
  void each_mention_of(const User& user, Take take);
  template <class Take>
  void each_user_of_program(Take take);

  EcPrg* prg_;
  unsigned revision_;
  std::vector<Entry> users_;
  size_t alive_ = 0;
  std::vector<unsigned> of_definition_;               // the last user, by symbol; nobody: none
  std::unordered_map<int, unsigned> of_declaration_;  // the same
  std::vector<size_t> first_;  // of each symbol's uses, by symbol; one more at the end
  std::vector<Use> uses_;
  std::unordered_map<int, std::vector<Use>> added_;  // since
  size_t added_count_ = 0;
  Mentions mentions_;
};

template <class Take>
void Users::each_use(int symbol, Take take) {
  const size_t place = static_cast<size_t>(symbol);
  if (place + 1 < first_.size()) {
    Use* const end = uses_.data() + first_[place + 1];
    drop_gone(uses_.data() + first_[place], end);
    for (const Use* use = uses_.data() + first_[place]; use != end && use->user != nobody; ++use)
      take(*use);
  }
  const auto added = added_.find(symbol);
  if (added == added_.end()) return;
  std::vector<Use>& uses = added->second;
  drop_gone(uses.data(), uses.data() + uses.size());
  while (!uses.empty() && uses.back().user == nobody) uses.pop_back();
  for (const Use& use : uses) take(use);
}

template <class Take>
void Users::each_equation(int symbol, bool now, Take take) {
  const bool is_function = prg_->function(symbol) != nullptr;
  each_use(symbol, [&](const Use& use) {
    const User& user = users_[use.user].user;
    if (user.kind != User::equation || (now && !use.now)) return;
    if (static_cast<Role>(use.role) != (is_function ? Role::function : Role::variable)) return;
    const IdentInfo* first = prg_->ident(user.symbol);
    take(Equation{first, right_side(first)});
  });
}

// What is reached from some names, and in how many steps.
struct Reached {
  int symbol;
  int distance;
};

struct ConeOptions {
  Users* users = nullptr;  // null: to what the names need, else to who uses them
  int depth = INT_MAX;     // steps at most, from 0
  bool now = false;        // only mentions outside of every `pre`
};

// The nearest first; `names` come first, at distance 0, each once. Functions are not reached.
std::vector<Reached> cone_of(EcPrg* prg, const std::vector<int>& names, const ConeOptions& options);

}  // namespace tamsel

#endif
