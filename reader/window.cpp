#include "reader/window.h"

namespace tamsel {

void Window::begin(Scanner* scanner, SymbolTable* symbols, const EcPrg* prg) {
  scanner_ = scanner;
  symbols_ = symbols;
  prg_ = prg;
  cutter_.emplace(scanner->source(), scanner->place());
}

void Window::end() {
  settle();
  next_ = end_ = entries_;
}

// What is cut ahead has to be in memory: more of a text may be long in coming.
int Window::fill() {
  if (const int boot = scanner_->take_boot()) return boot;
  end();
  while (end_ == entries_) {
    while (end_ != entries_ + size && cutter_->cut(&end_->token))
      if ((end_++)->token.number == -1) break;
    if (end_ == entries_) cutter_->read_on();
  }
  look_up();
  return 0;
}

void Window::look_up() {
  Entry* names[size];
  Entry** end = names;
  for (Entry* entry = entries_; entry != end_; ++entry) {
    if (!entry->token.carries_text) continue;
    *end++ = entry;
    entry->key = symbols_->tape->key(entry->token.text());
    symbols_->tape->fetch(entry->key);
  }
  for (Entry** name = names; name != end; ++name) {
    (*name)->symbol = symbols_->tape->known((*name)->token.text(), (*name)->key);
    if ((*name)->symbol != 0) prg_->fetch_place((*name)->symbol);
  }
  for (Entry** name = names; name != end; ++name)
    if ((*name)->symbol != 0) prg_->fetch_record((*name)->symbol);
}

int Window::symbol() {
  const Entry& entry = next_[-1];
  return entry.symbol != 0 ? entry.symbol : symbols_->add_text(entry.token.text(), entry.key);
}

// The last token was none: the text is at its end, or cannot be read on.
void Window::end_text() {
  settle();
  scanner_->report_flaw(next_[-1].token);
}

void Window::settle() {
  if (next_ == entries_) return;
  const Entry* last = next_;
  while (last != entries_ && !last[-1].token.is_shown()) --last;
  if (last != entries_) scanner_->set_lexeme(last[-1].token);
  while (last != entries_ && !last[-1].token.carries_text) --last;
  if (last != entries_) scanner_->set_value(last[-1].token);
  scanner_->set_end(next_[-1].token);
}

}  // namespace tamsel
