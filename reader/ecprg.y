/* The grammar of EC text: whole files and stand-alone expressions.

   The actions are those of the thread's Reader (reader/actions.h). An expression that could not be built is null, and so is what
   encloses it. Names and numbers are interned by a rule that has the token alone on its right side:
   such a rule is reduced without a look at the next token, while the reader still has the token at hand. */

%define api.prefix {ecprg_}
%define api.value.type {tamsel::RuleValue}
%define api.pure full
%param {tamsel::Reader& reader}
%locations
%define api.location.type {tamsel::EcPosition}

%code requires {
#include "reader/actions.h"
}

%code top {
/* The stacks start with 200 entries and grow to 10,000; what nests deeper is refused. */
#define YYINITDEPTH 200
#define YYMAXDEPTH 10000
}

%code {
#include <algorithm>

using namespace tamsel;

/* The parse has variables of its own. */
#undef yynerrs

/* When the stacks grow, values move by assignment. */
#define YYCOPY(to, from, count) std::copy_n(from, count, to)

/* Bison asks before it lets the stack of places grow. */
#define ECPRG_LTYPE_IS_TRIVIAL 1
/* What a rule makes stands where its first token does. */
#define YYLLOC_DEFAULT(current, right, count) ((current) = (right)[(count) > 0 ? 1 : 0])

/* The token's value stays with the reader: see RuleValue. */
static int ecprg_lex(RuleValue*, EcPosition* place, Reader& reader) {
  const int token = reader.next_token(place);
  if (token == -1) reader.token_place = *place;
  return token;
}

static void ecprg_error(const EcPosition* place, Reader& reader, const char* message) {
  reader.token_place = *place;
  reader.report_syntax_error(message);
}
}

%initial-action { yylval.params = {}; }

%token START_EC 258
%token START_EXP 259
%token TK_AND 260 "and"
%token TK_ARROW 261 "->"
%token TK_ASSERT 262 "assert"
%token TK_BOOL 263 "bool"
%token TK_CONST 264 "const"
%token TK_CURRENT 265 "current"
%token TK_DIV 266 "div"
%token TK_ELSE 267 "else"
%token TK_FUNCTION 268 "function"
%token TK_FALSE 269 "false"
%token TK_GTE 270 ">="
%token INTCONST 271
%token IDENT 272
%token TK_IF 273 "if"
%token TK_INT 274 "int"
%token TK_IMPL 275 "=>"
%token TK_LTE 276 "<="
%token TK_LET 277 "let"
%token TK_MOD 278 "mod"
%token TK_NEQ 279 "<>"
%token TK_NODE 280 "node"
%token TK_NOR 281 "nor"
%token TK_NOT 282 "not"
%token TK_OR 283 "or"
%token TK_PRE 284 "pre"
%token REALCONST 285
%token TK_REAL 286 "real"
%token TK_RETURNS 287 "returns"
%token TK_TEL 288 "tel"
%token TK_TYPE 289 "type"
%token TK_THEN 290 "then"
%token TK_TRUE 291 "true"
%token TK_VAR 292 "var"
%token TK_WHEN 293 "when"
%token TK_XOR 294 "xor"
%token TK_POWER 295 "**"
%token UNARY_MINUS 296 /* a precedence only */

/* From the loosest to the tightest. */
%nonassoc "if" "then" "else"
%left "->"
%left "or" "xor"
%left "and"
%nonassoc '=' "<>" '<' "<=" '>' ">=" "=>"
%nonassoc "not"
%left '+' '-'
%left '*' '/' '%' "div" "mod"
%left "**"
%left "when"
%nonassoc "pre" "current" "int" "real" UNARY_MINUS

%type <symbol> type_ref base_type named_type clock ident
%type <list> ident_list
%type <params> param_list param
%type <exp> exp call constant
%type <exps> exp_list exp_list_elt

%destructor { delete $$; } <list> <exps>
%destructor { delete $$.names; delete $$.types; } <params>

%%

input
  : START_EC ec_file
  | START_EXP exp { reader.ecexp = $2; }
  ;

ec_file
  : %empty
  | decl_list node_decl
  | node_decl
  ;

decl_list
  : decl
  | decl_list decl
  ;

decl
  : const_decl
  | type_decl
  | func_decl
  ;

const_decl
  : "const" const_list '.'
  | "const" const_list ';'
  ;

const_list
  : const_item
  | const_list ';' const_item
  ;

const_item
  : '(' ident_list ':' type_ref ')' "when" clock { AddUserConsts($2, $4, $7, @4); }
  | ident_list ':' type_ref { AddUserConsts($1, $3, reader.base_clock(), @3); }
  ;

type_ref
  : base_type
  | named_type
  ;

base_type
  : "bool" { $$ = reader.token_symbol(); }
  | "int" { $$ = reader.token_symbol(); }
  | "real" { $$ = reader.token_symbol(); }
  ;

named_type
  : ident
  ;

clock
  : ident
  | "true" { $$ = reader.token_symbol(); }
  ;

type_decl
  : "type" type_list ';'
  | "type" type_list '.'
  ;

type_list
  : type_item
  | type_list ',' type_item
  ;

type_item
  : abstract_type
  | enum_type
  ;

abstract_type
  : ident { reader.add_abstract_type($1, @1); }
  ;

enum_type
  : ident '=' '(' ident_list ')' { reader.add_enum_type($1, $4, @1); }
  ;

ident
  : IDENT { $$ = reader.token_symbol(); }
  ;

func_decl
  : "function" ident '(' param_list ')' "returns" '(' param_list ')' opt_end
    { reader.add_function($2, $4, $8, @2); }
  ;

param_list
  : param
  | param_list ';' param
    { $$.names = append($1.names, $3.names); $$.types = append($1.types, $3.types); }
  ;

param
  : ident ':' type_ref { $$.names = reader.new_list($1); $$.types = reader.new_type_list($3, @3); }
  ;

opt_end
  : %empty
  | ';'
  | '.'
  | ','
  ;

node_decl
  : "node" node_header opt_locals body opt_end
  ;

node_header
  : ident '(' input_list ')' "returns" '(' output_list ')' ';' { reader.YY_ecprg->name = $1; }
  ;

input_list
  : input_item
  | input_list ';' input_item
  ;

input_item
  : '(' ident_list ':' type_ref ')' "when" clock { AddInputs($2, $4, $7, @4); }
  | ident_list ':' type_ref { AddInputs($1, $3, reader.base_clock(), @3); }
  ;

output_list
  : output_item
  | output_list ';' output_item
  ;

output_item
  : '(' ident_list ':' type_ref ')' "when" clock { AddOutputs($2, $4, $7, @4); }
  | ident_list ':' type_ref { AddOutputs($1, $3, reader.base_clock(), @3); }
  ;

opt_locals
  : %empty
  | "var" local_list ';'
  ;

local_list
  : local_item
  | local_list ';' local_item
  ;

local_item
  : '(' ident_list ':' type_ref ')' "when" clock { AddLocals($2, $4, $7, @4); }
  | ident_list ':' type_ref { AddLocals($1, $3, reader.base_clock(), @3); }
  ;

body
  : "let" "tel"
  | "let" stmt_list "tel"
  ;

stmt_list
  : stmt
  | stmt_list stmt
  ;

stmt
  : "assert" exp ';' { reader.add_assertion($2, @1); }
  | ident '=' exp ';' { reader.add_equation($1, $3, @1); }
  | '(' ident_list ')' '=' exp ';' { reader.add_tuple_equation($2, $5, @1); }
  ;

ident_list
  : ident { $$ = reader.new_name_list($1, @1); }
  | ident_list ',' ident { $$ = reader.and_name($1, $3, @3); }
  ;

exp
  : '(' exp ')' { $$ = $2; }
  | constant
  | ident { $$ = reader.reference($1, @1); }
  | "not" exp { $$ = reader.unary(NOT_n, $2); }
  | "int" exp { $$ = reader.unary(REAL2INT_n, $2); }
  | "real" exp { $$ = reader.unary(INT2REAL_n, $2); }
  | '-' exp %prec UNARY_MINUS { $$ = reader.unary(UMINUS_n, $2); }
  | "pre" exp { $$ = reader.unary(PRE_n, $2); }
  | "current" exp { $$ = reader.unary(CURRENT_n, $2); }
  | exp "->" exp { $$ = reader.binary(ARROW_n, $1, $3); }
  | exp "when" exp { $$ = reader.binary(WHEN_n, $1, $3); }
  | "if" exp "then" exp "else" exp { $$ = reader.conditional($2, $4, $6); }
  | exp "xor" exp { $$ = reader.binary(XOR_n, $1, $3); }
  | exp "or" exp { $$ = reader.binary(OR_n, $1, $3); }
  | exp "and" exp { $$ = reader.binary(AND_n, $1, $3); }
  | exp "=>" exp { $$ = reader.binary(IMPL_n, $1, $3); }
  | exp '=' exp { $$ = reader.binary(EQUAL_n, $1, $3); }
  | exp "<>" exp { $$ = reader.binary(NEQ_n, $1, $3); }
  | exp '<' exp { $$ = reader.binary(LT_n, $1, $3); }
  | exp "<=" exp { $$ = reader.binary(LTE_n, $1, $3); }
  | exp ">=" exp { $$ = reader.binary(GTE_n, $1, $3); }
  | exp '>' exp { $$ = reader.binary(GT_n, $1, $3); }
  | exp '*' exp { $$ = reader.binary(TIMES_n, $1, $3); }
  | exp '/' exp { $$ = reader.binary(SLASH_n, $1, $3); }
  | exp '%' exp { $$ = reader.binary(MOD_n, $1, $3); }
  | exp "mod" exp { $$ = reader.binary(MOD_n, $1, $3); }
  | exp "div" exp { $$ = reader.binary(DIV_n, $1, $3); }
  | exp '+' exp { $$ = reader.binary(PLUS_n, $1, $3); }
  | exp '-' exp { $$ = reader.binary(MINUS_n, $1, $3); }
  | exp "**" exp { $$ = reader.binary(POWER_n, $1, $3); }
  | call
  | '#' '(' exp_list ')' { $$ = reader.list_operator(DIESE_n, $3); }
  | "nor" '(' exp_list_elt ')' { $$ = reader.list_operator(NOR_n, $3); }
  | '(' exp_list ')' { $$ = reader.list_operator(TUPLE_n, $2); }
  ;

call
  : ident '(' exp ')' { $$ = reader.call($1, $3); }
  | ident '(' exp_list ')' { $$ = reader.call($1, reader.list_operator(TUPLE_n, $3)); }
  ;

exp_list
  : exp_list_elt ',' exp { $$ = reader.and_then($1, $3); }
  ;

exp_list_elt
  : exp { $$ = reader.new_exp_list($1); }
  | exp_list
  ;

constant
  : "true" { $$ = reader.bool_constant(); }
  | "false" { $$ = reader.bool_constant(); }
  | INTCONST { $$ = reader.int_constant(); }
  | REALCONST { $$ = reader.real_constant(); }
  ;

%%

/* The tables are part of what this reader promises: the same texts, the same errors, at the same tokens. */
static_assert(YYNRULES == 110 && YYNSTATES == 238 && YYNTOKENS == 57 && YYNNTS == 40,
              "the grammar has changed its tables");
