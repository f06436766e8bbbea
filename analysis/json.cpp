#include "analysis/json.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "analysis/clocks.h"
#include "analysis/describe.h"
#include "analysis/equations.h"
#include "analysis/expression_text.h"

namespace tamsel {

namespace {

// How many bytes the character of UTF-8 has that `text` begins with; 0 where it begins with none.
size_t character_length(std::string_view text) {
  const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  const size_t length = first < 0x80                    ? 1
                        : first >= 0xC2 && first < 0xE0 ? 2
                        : first >= 0xE0 && first < 0xF0 ? 3
                        : first >= 0xF0 && first < 0xF5 ? 4
                                                        : 0;
  if (length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  // Longer forms of shorter characters, and what lies after the last.
  if (first == 0xE0 && byte(1) < 0xA0) return 0;
  if (first == 0xED && byte(1) > 0x9F) return 0;  // half a character, as UTF-16 has them
  if (first == 0xF0 && byte(1) < 0x90) return 0;
  return first == 0xF4 && byte(1) > 0x8F ? 0 : length;
}

// Whether a character of a string stands for itself, whatever stands around it.
bool is_plain(char c) { return c >= ' ' && c != '"' && c != '\\'; }

// Whether the eight characters at `text` all do.
bool are_plain(const char* text) {
  constexpr uint64_t each = 0x0101010101010101;
  uint64_t word;
  std::memcpy(&word, text, sizeof word);
  // The high bits of the bytes that are none, and maybe of others beside them.
  const uint64_t others =
      word | (word - each * ' ') | ((word ^ each * '"') - each) | ((word ^ each * '\\') - each);
  return (others & each * 0x80) == 0;
}

// How many such characters `text` begins with.
size_t plain_length(std::string_view text) {
  size_t length = 0;
  while (length + 8 <= text.size() && are_plain(text.data() + length)) length += 8;
  while (length < text.size() && is_plain(text[length])) ++length;
  return length;
}

class JsonWriter {
 public:
  JsonWriter(EcPrg* prg, const std::function<void(std::string_view)>& take)
      : prg_(prg), take_(take) {}

  void write() {
    begin_members("{\n");
    put_member("node", prg_->symbols->name(prg_->name));
    begin_members(",\n");
    put_list("names", [this] {
      for (const NameKind kind : name_kinds)
        for (const int symbol : prg_->declared_names(kind)) put_name(symbol, kind);
    });
    begin_members(",\n");
    put_list("assertions", [this] {
      for (const int symbol : values_of(prg_->assertions)) put_assertion(prg_->ident(symbol));
    });
    begin_members(",\n");
    put_list("messages", [this] {
      for (const EcPrg::Message& message : prg_->messages) put_message(message);
    });
    put("\n}\n");
    give_block();
  }

 private:
  // Inline: most pieces are literals, whose copies are a few stores.
  void put(std::string_view text) {
    if (text.size() > static_cast<size_t>(std::end(block_) - cursor_)) return put_through(text);
    std::memcpy(cursor_, text.data(), text.size());
    cursor_ += text.size();
  }
  void put_through(std::string_view text);
  void give_block() {
    take_({block_, static_cast<size_t>(cursor_ - block_)});
    cursor_ = block_;
  }
  void put_string(std::string_view text);
  // What stands before members, of which the next is the first on its line.
  void begin_members(std::string_view opening) {
    put(opening);
    is_first_member_ = true;
  }
  void put_key(std::string_view key) {
    put(is_first_member_ ? "\"" : ", \"");
    put(key);
    put("\": ");
    is_first_member_ = false;
  }
  void put_member(std::string_view key, const char* value) {
    put_key(key);
    put_string(value);
  }
  void put_member(std::string_view key, int value) {
    put_key(key);
    put(std::to_string(value));
  }
  // An array of what `put_items` opens by begin_object.
  template <class PutItems>
  void put_list(std::string_view key, PutItems put_items) {
    put_key(key);
    put("[\n");
    is_first_ = true;
    put_items();
    put(is_first_ ? "]" : "\n]");
  }
  void begin_object() {
    begin_members(is_first_ ? "{" : ",\n{");
    is_first_ = false;
  }
  void put_names(std::string_view key, const std::vector<int>& names) {
    put_key(key);
    put("[");
    for (const int& name : names) {
      if (&name != names.data()) put(", ");
      put_string(prg_->symbols->name(name));
    }
    put("]");
  }
  void put_expression(std::string_view key, Exp* e) {
    put_key(key);
    put_string(text_.brief(prg_, e));
  }
  void put_parameters(std::string_view key, const std::vector<Parameter>& parameters);
  void put_name(int symbol, NameKind kind);
  void put_equation(const Description& described);
  void put_assertion(const IdentInfo* assertion);
  void put_message(const EcPrg::Message& message);

  EcPrg* prg_;
  const std::function<void(std::string_view)>& take_;
  ExpressionText text_;
  bool is_first_ = true;         // of the items of a list
  bool is_first_member_ = true;  // of those of an object, or of a line
  char block_[4096];             // what was not given yet, up to the cursor
  char* cursor_ = block_;
};

// The bytes that `text` (not empty) begins with and that are no character, as a number of 16 bits:
// a byte alone, the character 0 as Tcl writes it, or half a character.
unsigned take_escaped(std::string_view* text) {
  const auto byte = [text](size_t i) { return static_cast<unsigned char>((*text)[i]); };
  unsigned number = byte(0);
  size_t length = 1;
  if (text->substr(0, 2) == "\xC0\x80") {
    number = 0;
    length = 2;
  } else if (number == 0xED && text->size() > 2 && (byte(1) & 0xE0) == 0xA0 &&
             (byte(2) & 0xC0) == 0x80) {
    number = 0xD000u | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu);
    length = 3;
  }
  text->remove_prefix(length);
  return number;
}

void JsonWriter::put_through(std::string_view text) {
  give_block();
  if (text.size() > sizeof block_) return take_(text);
  put(text);
}

void JsonWriter::put_string(std::string_view text) {
  put("\"");
  while (!text.empty()) {
    const size_t plain = plain_length(text);
    put(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const size_t length = character_length(text);
    const unsigned first = static_cast<unsigned char>(text[0]);
    if (length == 0 || first < ' ') {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", take_escaped(&text));
      put(escape);
      continue;
    }
    if (first == '"' || first == '\\') put("\\");
    put(text.substr(0, length));
    text.remove_prefix(length);
  }
  put("\"");
}

void JsonWriter::put_parameters(std::string_view key, const std::vector<Parameter>& parameters) {
  put_key(key);
  put("[");
  for (const Parameter& parameter : parameters) {
    begin_members(&parameter != parameters.data() ? ", {" : "{");
    put_member("name", parameter.name != 0 ? prg_->symbols->name(parameter.name) : "");
    put_member("type", prg_->symbols->name(parameter.type));
    put("}");
  }
  put("]");
}

void JsonWriter::put_equation(const Description& described) {
  const IdentInfo* ident = described.ident;
  const bool is_defined = described.has_equation();
  put_key("equation");
  put(is_defined ? "true" : "false");
  if (is_defined && ident->tuple_names != nullptr && ident->tuple_names->value != ident->name)
    return put_member("equation-of", prg_->symbols->name(ident->tuple_names->value));
  put_names("with", described.defined_with());
  if (is_defined) return put_expression("definition", right_side(ident));
  put_key("definition");
  put("null");
}

void JsonWriter::put_name(int symbol, NameKind kind) {
  const Description described = describe_as(prg_, symbol, kind);
  begin_object();
  put_member("name", prg_->symbols->name(symbol));
  put_member("kind", kind_word(kind));
  if (const IdentInfo* ident = described.ident) {
    put_member("type", prg_->type_name(ident->type, ""));
    put_member("clock", prg_->symbols->name(ident->clock));
  }
  put_member("index", described.index(prg_));
  put_equation(described);
  put_member("line", described.line());
  put_member("equation-line", described.equation_line());
  if (described.rank() >= 0) put_member("rank", described.rank());
  if (described.type != nullptr) put_names("constants", constants_of(prg_, described.type));
  if (described.function != nullptr) {
    put_parameters("params", parameters_of(described.function));
    put_parameters("results", results_of(described.function));
  }
  put("}");
}

void JsonWriter::put_assertion(const IdentInfo* assertion) {
  if (assertion == nullptr || assertion->definition == nullptr) return;
  begin_object();
  put_expression("text", assertion->definition);
  put_member("clock", clock_name_of(prg_, assertion->definition));
  put_member("line", assertion->line);
  put_names("needs", needs_of(prg_, assertion->definition, false));
  put("}");
}

void JsonWriter::put_message(const EcPrg::Message& message) {
  begin_object();
  put_member("severity", "error");
  put_member("line", message.line);
  put_member("name", message.name != 0 ? prg_->symbols->name(message.name) : "");
  put_member("message", message.text.c_str());
  put("}");
}

}  // namespace

void write_json(EcPrg* prg, const std::function<void(std::string_view)>& take) {
  JsonWriter(prg, take).write();
}

void write_json(EcPrg* prg, std::string* out) {
  write_json(prg, [out](std::string_view block) { *out += block; });
}

}  // namespace tamsel
