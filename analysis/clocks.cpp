#include "analysis/clocks.h"

#include "model/walk.h"

namespace tamsel {

// Finds clocks from the leaves up, and stops at the first node that the rules refuse.
class ClockVisitor : public ExpVisitor {
 public:
  ClockVisitor(ClockFinder* finder, std::string* message)
      : prg_(finder->prg_), message_(message), found_(finder->found_), first_(finder->first_) {
    found_.clear();
    first_.clear();
  }

  bool enter(Exp* exp, Exp*, int) {
    if (failed_) return false;
    if (exp->nb_args == 0) {
      found_.push_back(exp->nature == CONST_n ? any_clock : exp->clock);
      return false;
    }
    first_.push_back(found_.size());
    return true;
  }
  void leave(Exp* exp, Exp* parent) {
    if (failed_) return;
    const size_t first = first_.back();
    first_.pop_back();
    // The members of a tuple that a call takes are its arguments.
    const bool is_arguments =
        exp->nature == TUPLE_n && parent != nullptr && parent->nature == CALL_n;
    const int clock = clock_of(is_arguments ? parent : exp, first);
    found_.resize(first);
    found_.push_back(clock);
  }

  // False where the walk was refused.
  bool result(int* clock) const {
    if (failed_) return false;
    *clock = found_.empty() ? any_clock : found_[0];
    return true;
  }

 private:
  std::string quoted(int clock) const {
    return "'" + std::string(prg_->symbols->name(clock)) + "'";
  }
  std::string called(const Exp* exp) const {
    if (exp->nature == CALL_n) return quoted(exp->order());
    if (exp->nature == IF_n) return "'if'";
    if (exp->nature == TUPLE_n) return "a tuple";
    return "'" + std::string(opkey(exp->nature)) + "'";
  }
  int refuse(const std::string& message) {
    *message_ = "clock error: " + message;
    failed_ = true;
    return any_clock;
  }

  // The clock of a node; those of its operands are found_ from `first` on.
  int clock_of(const Exp* exp, size_t first) {
    if (exp->nature == WHEN_n && exp->nb_args == 2) return sampled(exp, first);
    if (exp->nature == CURRENT_n) return held(first);
    int shared = any_clock;
    for (size_t i = first; i < found_.size() && !failed_; ++i)
      shared = both(exp, shared, found_[i]);
    return shared;
  }
  int both(const Exp* exp, int a, int b) {
    if (a == any_clock || a == b) return b;
    if (b == any_clock) return a;
    return refuse("operands of " + called(exp) + " run on " + quoted(a) + " and on " + quoted(b));
  }
  int sampled(const Exp* exp, size_t first) {
    const Exp* clock = exp->args()[1];
    if (clock == nullptr || clock->nb_args > 0 || clock->ident == 0)
      return refuse("what follows 'when' is no name");
    if (clock->nature == CONST_n)
      return refuse("the clock " + quoted(clock->ident) + " is a constant");
    if (found_[first] != any_clock && found_[first] != clock->clock)
      return refuse("what is sampled by " + quoted(clock->ident) + " runs on " +
                    quoted(found_[first]) + ", and " + quoted(clock->ident) + " on " +
                    quoted(clock->clock));
    return clock->ident;
  }
  int held(size_t first) {
    const int clock = first < found_.size() ? found_[first] : any_clock;
    if (clock == any_clock) return any_clock;
    if (clock == prg_->true_clock) return refuse("'current' of what runs on the base clock");
    const IdentInfo* record = prg_->ident(clock);
    return record != nullptr ? record->clock : any_clock;
  }

  EcPrg* prg_;
  std::string* message_;
  std::vector<int>& found_;  // see ClockFinder
  std::vector<size_t>& first_;
  bool failed_ = false;
};

bool ClockFinder::find(Exp* e, int* clock, std::string* message) {
  ClockVisitor visitor(this, message);
  walk(e, visitor);
  return visitor.result(clock);
}

bool find_clock(EcPrg* prg, Exp* e, int* clock, std::string* message) {
  return ClockFinder(prg).find(e, clock, message);
}

const char* clock_name(const EcPrg* prg, int clock) {
  return prg->symbols->name(clock == any_clock ? prg->true_clock : clock);
}

const char* clock_name_of(EcPrg* prg, Exp* e) {
  int clock;
  std::string message;
  return find_clock(prg, e, &clock, &message) ? clock_name(prg, clock) : "";
}

}  // namespace tamsel
