// The commands of the ensemble that ask.

#include <iterator>

#include "analysis/check.h"
#include "analysis/clocks.h"
#include "analysis/equations.h"
#include "analysis/json.h"
#include "reader/reader.h"
#include "tcl/ensemble.h"
#include "tcl/syntax_error.h"

namespace tamsel {

// --- Names.

namespace {

// Which names `names` answers.
struct NameFilter {
  int kind = -1;        // place in name_kinds; -1: any
  int type = any;       // symbol of the type's name; none: has no type
  int clock = any;      // symbol
  int is_defined = -1;  // 0 or 1; -1: either
  const char* pattern = nullptr;

  static constexpr int any = -1;
  static constexpr int none = 0;
};

bool is_variable(NameKind kind) { return kind < NameKind::constant; }

}  // namespace

int Question::names() {
  static const Option options[] = {
      {"-kind", true}, {"-type", true}, {"-clock", true}, {"-defined", true}, {nullptr, false}};
  NameFilter filter;
  bool fits_nothing = false;
  const auto find_symbol = [&](Tcl_Obj* value) {
    const int symbol = prg_->symbols->known(Tcl_GetString(value));
    fits_nothing |= symbol == 0;
    return symbol;
  };
  Tcl_Obj* pattern = nullptr;
  if (read_options(
          0, options,
          [&](int option, Tcl_Obj* value) {
            switch (option) {
              case 0:
                return read_word(value, name_kind_words, "kind", &filter.kind);
              case 1:
                filter.type =
                    Tcl_GetString(value)[0] == '\0' ? NameFilter::none : find_symbol(value);
                return TCL_OK;
              case 2:
                filter.clock = find_symbol(value);
                return TCL_OK;
              default:
                if (Tcl_GetBooleanFromObj(nullptr, value, &filter.is_defined) == TCL_OK)
                  return TCL_OK;
                return value_error("value", value, "a boolean");
            }
          },
          &pattern) != TCL_OK)
    return TCL_ERROR;
  if (pattern != nullptr) filter.pattern = Tcl_GetString(pattern);

  ListValue found;
  for (const NameKind kind : name_kinds) {
    if (fits_nothing || (filter.kind >= 0 && kind != name_kinds[filter.kind])) continue;
    if (filter.is_defined >= 0 && kind != NameKind::output && kind != NameKind::local) continue;
    const bool has_ident = is_variable(kind) || kind == NameKind::constant;
    if (!has_ident && (filter.type >= 0 || filter.clock >= 0)) continue;
    for (const int symbol : prg_->declared_names(kind)) {
      const IdentInfo* ident = has_ident ? prg_->ident(symbol) : nullptr;
      if (filter.type >= 0 && (ident->type != nullptr ? ident->type->name : 0) != filter.type)
        continue;
      if (filter.clock >= 0 && ident->clock != filter.clock) continue;
      if (filter.is_defined >= 0 && (right_side(ident) != nullptr) != (filter.is_defined != 0))
        continue;
      if (filter.pattern == nullptr || Tcl_StringMatch(name(symbol), filter.pattern))
        found.add(name(symbol));
    }
  }
  return give(found.get());
}

int Question::describe_name() {
  Description described;
  if (find_name(word(0), &described) != TCL_OK) return TCL_ERROR;
  const std::vector<int> with = described.defined_with();
  const SharedValues& shared = ensemble_->shared;
  ListValue dict;
  dict.add(shared.kind).add(shared.kinds[static_cast<int>(described.kind)]);
  if (const IdentInfo* ident = described.ident) {
    dict.add(shared.type).add(prg_->type_name(ident->type, ""));
    dict.add(shared.clock);
    if (ident->clock == prg_->true_clock)
      dict.add(shared.base_clock);
    else
      dict.add(name(ident->clock));
  }
  dict.add(shared.index).add(number(described.index(prg_)));
  dict.add(shared.equation).add(number(described.has_equation()));
  dict.add(shared.with).add(list_of(with));
  dict.add(shared.line).add(number(described.line()));
  dict.add(shared.equation_line).add(number(described.equation_line()));
  if (described.rank() >= 0) dict.add(shared.rank).add(number(described.rank()));
  if (described.type != nullptr)
    dict.add(shared.constants).add(list_of(constants_of(prg_, described.type)));
  if (described.function != nullptr) {
    dict.add(shared.params).add(list_of(parameters_of(described.function)));
    dict.add(shared.results).add(list_of(results_of(described.function)));
  }
  return give(dict.get());
}

// --- Expressions.

int Question::definition() {
  Description described;
  ExpressionForm form;
  if (find_name(word(0), &described) != TCL_OK || read_form(1, &form) != TCL_OK) return TCL_ERROR;
  if (Exp* right = right_side(described.ident)) return give_expression(right, form);
  const char* text = Tcl_GetString(word(0));
  return fail({{"LOOKUP", "DEFINITION", text}}, std::string("no equation defines '") + text + "'");
}

int Question::format() {
  Exp* e;
  ExpressionForm form;
  if (read_form(1, &form) != TCL_OK || find_expression(word(0), &e) != TCL_OK) return TCL_ERROR;
  return give_expression(e, form);
}

int Question::type() {
  Exp* e;
  if (find_expression(word(0), &e) != TCL_OK) return TCL_ERROR;
  const EcType* type = prg_->type(e);
  if (type == nullptr) {
    prg_->exp_refusal = ExpRefusal::type;
    return refuse_expression();
  }
  if (!type->is_tuple) return give(Tcl_NewStringObj(name(type->name), -1));
  ListValue members;
  for (const int member : values_of(type->members)) members.add(name(member));
  return give(members.get());
}

int Question::clock() {
  Exp* e;
  if (find_expression(word(0), &e) != TCL_OK) return TCL_ERROR;
  int clock;
  std::string message;
  if (!find_clock(prg_, e, &clock, &message))
    return fail({{"CLOCK", "EXPRESSION", message.c_str()}}, message);
  return give(Tcl_NewStringObj(clock_name(prg_, clock), -1));
}

// --- Who needs whom.

int Question::needs() {
  Description described;
  bool now;
  if (find_name(word(0), &described) != TCL_OK || read_now(1, &now) != TCL_OK) return TCL_ERROR;
  return give_names(needs_of(prg_, right_side(described.ident), now));
}

int Question::users() {
  Description described;
  bool now;
  if (find_name(word(0), &described) != TCL_OK || read_now(1, &now) != TCL_OK) return TCL_ERROR;
  return give_names(users_of_names().of(described.symbol, now));
}

int Question::cone() {
  static const Option options[] = {
      {"-direction", true}, {"-depth", true}, {"-now", false}, {nullptr, false}};
  static const char* const directions[] = {"needs", "users", nullptr};
  ConeOptions asked;
  int direction = 0;
  if (read_options(1, options, [&](int option, Tcl_Obj* value) {
        if (option == 0) return read_word(value, directions, "direction", &direction);
        if (option == 2) {
          asked.now = true;
        } else if (Tcl_GetIntFromObj(nullptr, value, &asked.depth) != TCL_OK || asked.depth < 0) {
          return value_error("depth", value, "an integer from 0");
        }
        return TCL_OK;
      }) != TCL_OK)
    return TCL_ERROR;
  std::vector<int> names;
  if (read_names(word(0), &names) != TCL_OK) return TCL_ERROR;
  if (direction == 1) asked.users = &users_of_names();
  ListValue dict;
  for (const Reached& reached : cone_of(prg_, names, asked))
    dict.add(name(reached.symbol)).add(number(reached.distance));
  return give(dict.get());
}

// --- The whole program.

int Question::assertions() {
  const SharedValues& shared = ensemble_->shared;
  ExpressionText written;
  ListValue list;
  for (const int symbol : values_of(prg_->assertions)) {
    const IdentInfo* assertion = prg_->ident(symbol);
    if (assertion == nullptr || assertion->definition == nullptr) continue;
    Exp* e = assertion->definition;
    const std::vector<int> needed = needs_of(prg_, e, false);
    ListValue dict;
    dict.add(shared.text).add(written.brief(prg_, e).c_str());
    dict.add(shared.clock).add(clock_name_of(prg_, e));
    dict.add(shared.line).add(number(assertion->line));
    dict.add(shared.needs).add(list_of(needed));
    list.add(dict);
  }
  return give(list.get());
}

int Question::read_program_text(int first, const std::function<void(std::string_view)>& take) {
  static const Option options[] = {{"-format", true}, {nullptr, false}};
  static const char* const formats[] = {"quarel", "ec", "json", nullptr};
  int format = 0;
  if (read_options(first, options, [&](int, Tcl_Obj* value) {
        return read_word(value, formats, "format", &format);
      }) != TCL_OK)
    return TCL_ERROR;
  if (format == 2) {
    write_json(prg_, take);
    return TCL_OK;
  }
  std::string text;
  PtyStream out(&text, 80, nullptr);
  if (format == 0)
    prg_->print_quarel(&out);
  else
    prg_->print_source(&out);
  out.close();
  take(text);
  return TCL_OK;
}

int Question::text() {
  TextValue text;
  if (read_program_text(0, [&](std::string_view part) { text.add(part); }) != TCL_OK)
    return TCL_ERROR;
  return text.is_whole() ? give(text.get()) : refuse_long_text();
}

int Question::messages() {
  const SharedValues& shared = ensemble_->shared;
  ListValue list;
  for (const EcPrg::Message& message : prg_->messages) {
    ListValue dict;
    dict.add(shared.severity).add(shared.error);
    dict.add(shared.line).add(number(message.line));
    dict.add(shared.name).add(message.name != 0 ? name(message.name) : "");
    dict.add(shared.message).add(message.text.c_str());
    list.add(dict);
  }
  return give(list.get());
}

int Question::check_program() {
  static const Option options[] = {{"-only", true}, {nullptr, false}};
  std::vector<FindingKind> asked(std::begin(finding_kinds), std::end(finding_kinds));
  if (read_options(0, options, [&](int, Tcl_Obj* value) {
        asked.clear();
        return each_word(value, "kinds", [&](Tcl_Obj* kind) {
          int place;
          if (read_word(kind, finding_kind_words, "kind", &place) != TCL_OK) return TCL_ERROR;
          asked.push_back(finding_kinds[place]);
          return TCL_OK;
        });
      }) != TCL_OK)
    return TCL_ERROR;
  const SharedValues& shared = ensemble_->shared;
  ListValue list;
  for (const Finding& finding : check(prg_, asked)) {
    ListValue dict;
    dict.add(shared.kind).add(kind_word(finding.kind));
    dict.add(shared.severity).add(severity_word(finding.kind));
    dict.add(shared.names).add(list_of(finding.names));
    dict.add(shared.line).add(number(finding.line));
    dict.add(shared.message).add(finding.message.c_str());
    list.add(dict);
  }
  return give(list.get());
}

int Question::read() {
  if (reader_is_busy()) return fail({{"STATE", "BUSY"}}, busy_message);
  EcPrgVar::Program fresh;
  fresh.prg->silent = true;
  const int refused = EcParseString(fresh.prg.get(), fresh.symbols.get(), Tcl_GetString(word(0)));
  if (refused || fresh.prg->name == 0) {
    const std::string message =
        fresh.prg->error_message[0] != '\0' ? fresh.prg->error_message : "no node";
    return fail(SyntaxError(message.c_str()).code(), message);
  }
  fresh.prg->silent = false;
  prg_ = nullptr;
  object_->install(std::move(fresh));
  Tcl_ResetResult(interp_);
  return TCL_OK;
}

}  // namespace tamsel
