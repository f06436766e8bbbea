// editing/draft.h: expressions on their way into a program.
#ifndef EDITING_DRAFT_H
#define EDITING_DRAFT_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "model/ecprg.h"

namespace tamsel {

// The numbers that equations and assertions have of their own, each a leaf that is theirs alone. A
// symbol goes to another number when nothing is left of the one before, so that a program takes no
// more memory however often its equations change.
class OwnNumbers {
 public:
  // Borrows the program, which must outlive this.
  explicit OwnNumbers(EcPrg* prg) : prg_(prg) {}
  OwnNumbers(const OwnNumbers&) = delete;
  OwnNumbers& operator=(const OwnNumbers&) = delete;

  // The symbol for one leaf more that is the number `text`. Throws bad_alloc with nothing changed.
  int take(const char* text);
  // Of the symbol of a leaf that goes. Any symbol may be given.
  void drop(int symbol) noexcept;

 private:
  struct Uses {
    int count;
    bool is_free;  // it is among the free ones
  };
  int new_symbol(const char* text);

  EcPrg* prg_;
  std::unordered_map<int, Uses> uses_;  // of the symbols that were made here
  std::vector<int> free_;               // with room for all of them
};

// A copy of an expression that is no part of the program yet, and needs nothing of the text that
// the expression was read from: that can be taken back.
class Draft {
 public:
  // Copies `e`, which is typed. `extra_names`: how many names of a left side have room.
  Draft(EcPrg* prg, Exp* e, size_t extra_names = 0);
  // Copies `e` with a copy of `value` in the place of each `leaf`.
  Draft(EcPrg* prg, Exp* e, const Exp* leaf, Exp* value, size_t extra_names);

  Exp* root() const { return root_; }
  // The name of its type, or of the types of a tuple's members; none where it has no type.
  const std::vector<int>& types() const { return types_; }
  // How often the leaf was met.
  int replaced() const { return replaced_; }

  // Gives its numbers their symbols; throws bad_alloc with none given. `give_back` undoes it.
  void settle(OwnNumbers* numbers);
  void give_back(OwnNumbers* numbers) noexcept;
  // Hands over the nodes.
  std::unique_ptr<ExpHeap> take_nodes() { return std::move(nodes_); }

 private:
  class NodeCopier;

  std::unique_ptr<ExpHeap> nodes_;
  Exp* root_ = nullptr;
  std::vector<int> types_;
  int replaced_ = 0;
  struct Number {
    Exp* leaf;
    std::string text;
    int symbol;  // once it is settled
  };
  std::vector<Number> numbers_;
  size_t settled_ = 0;  // how many of them
};

// Adds the symbols of all leaves in `e` that may be numbers.
void collect_numbers(Exp* e, std::vector<int>* symbols);

}  // namespace tamsel

#endif
