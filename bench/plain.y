/* plain FILE: reads a program and writes it again as one does with the usual tools: flex and Bison, an unordered map,
   `new`, stdio. Prints the processor times of both, in microseconds, to be compared with the library's. */

%code requires {
#include <string>
#include <vector>

struct Node;
struct Name {
  std::string text;
  Name* type = nullptr;
  Name* clock = nullptr;
  Node* leaf = nullptr;  // null: not declared
  Node* definition = nullptr;
};
struct Node {
  const char* op;
  std::vector<Node*> operands;
  Name* name = nullptr;
};
using Names = std::vector<Name*>;
}

%code {
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <unordered_map>

extern FILE* yyin;
int yylex();
static void yyerror(const char* message) {
  std::fprintf(stderr, "plain: %s\n", message);
  std::exit(1);
}

static std::unordered_map<std::string, Name*> table;
static Name *token_name, *node_name;
static Names constants, inputs, outputs, locals;
struct Equation { Names left; Node* right; };
static std::vector<Equation> equations;
static std::vector<Node*> assertions;

static Name* name_of(const char* text) {
  Name*& name = table[text];
  if (name == nullptr) name = new Name{text};
  return name;
}
void plain_text(const char* text) { token_name = name_of(text); }

static Node* node(const char* op, std::vector<Node*> operands) { return new Node{op, std::move(operands)}; }
static Node* leaf(Name* name) {
  if (name->leaf == nullptr) yyerror(("undeclared " + name->text).c_str());
  return name->leaf;
}
static Node* literal(Name* name) {
  if (name->leaf == nullptr) name->leaf = new Node{"", {}, name};
  return name->leaf;
}
static void declare(Names* section, Names* names, Name* type, Name* clock) {
  for (Name* name : *names) {
    name->type = type;
    name->clock = clock;
    name->leaf = new Node{"", {}, name};
    if (section != nullptr) section->push_back(name);
  }
  delete names;
}
static void define(Names* names, Node* right) {
  for (Name* name : *names) name->definition = right;
  equations.push_back({std::move(*names), right});
  delete names;
}
static Names* one(Name* name) { return new Names{name}; }
}

%union {
  const char* op;
  Name* name;
  Names* names;
  Node* node;
  std::vector<Node*>* nodes;
}

%token AND ASSERT CONST CURRENT DIV ELSE FUNCTION IF LET MOD NODE NOT OR NOR PRE RETURNS TEL TYPE THEN VAR WHEN XOR
%token BOOL INT REAL LITERAL IDENT ARROW GTE IMPL LTE NEQ POWER UNARY_MINUS

%nonassoc IF THEN ELSE
%left ARROW
%left OR XOR
%left AND
%nonassoc '=' NEQ '<' LTE '>' GTE IMPL
%nonassoc NOT
%left '+' '-'
%left '*' '/' '%' DIV MOD
%left POWER
%left WHEN
%nonassoc PRE CURRENT INT REAL UNARY_MINUS

%type <name> ident type clock
%type <names> idents
%type <node> exp
%type <nodes> exps

%%

file : decls NODE ident '(' inputs ')' RETURNS '(' outputs ')' ';' opt_locals LET stmts TEL opt_end { node_name = $3; } ;
decls : %empty | decls decl ;
decl : CONST constants end | TYPE types end | FUNCTION ident '(' params ')' RETURNS '(' params ')' opt_end ;
end : '.' | ';' ; opt_end : %empty | '.' | ';' | ',' ;
ident : IDENT { $$ = token_name; } ;
idents : ident { $$ = one($1); } | idents ',' ident { $$->push_back($3); } ;
type : ident | BOOL { $$ = token_name; } | INT { $$ = token_name; } | REAL { $$ = token_name; } ;
clock : ident | LITERAL { $$ = token_name; } ;
types : named_type | types ',' named_type ;
named_type : ident | ident '=' '(' idents ')' { declare(nullptr, $4, $1, nullptr); } ;
params : param | params ';' param ;
param : ident ':' type ;
constants : constant | constants ';' constant ;
constant : idents ':' type { declare(&constants, $1, $3, nullptr); }
  | '(' idents ':' type ')' WHEN clock { declare(&constants, $2, $4, $7); } ;
inputs : input | inputs ';' input ;
input : idents ':' type { declare(&inputs, $1, $3, nullptr); }
  | '(' idents ':' type ')' WHEN clock { declare(&inputs, $2, $4, $7); } ;
outputs : output | outputs ';' output ;
output : idents ':' type { declare(&outputs, $1, $3, nullptr); }
  | '(' idents ':' type ')' WHEN clock { declare(&outputs, $2, $4, $7); } ;
opt_locals : %empty | VAR locals ';' ;
locals : local | locals ';' local ;
local : idents ':' type { declare(&locals, $1, $3, nullptr); }
  | '(' idents ':' type ')' WHEN clock { declare(&locals, $2, $4, $7); } ;
stmts : %empty | stmts stmt ;
stmt : ASSERT exp ';' { assertions.push_back($2); }
  | ident '=' exp ';' { define(one($1), $3); }
  | '(' idents ')' '=' exp ';' { define($2, $5); } ;
exp : '(' exp ')' { $$ = $2; }
  | LITERAL { $$ = literal(token_name); }
  | ident { $$ = leaf($1); }
  | NOT exp { $$ = node("not", {$2}); }
  | INT exp { $$ = node("int", {$2}); }
  | REAL exp { $$ = node("real", {$2}); }
  | '-' exp %prec UNARY_MINUS { $$ = node("-", {$2}); }
  | PRE exp { $$ = node("pre", {$2}); }
  | CURRENT exp { $$ = node("current", {$2}); }
  | exp ARROW exp { $$ = node("->", {$1, $3}); }
  | exp WHEN exp { $$ = node("when", {$1, $3}); }
  | IF exp THEN exp ELSE exp { $$ = node("if", {$2, $4, $6}); }
  | exp XOR exp { $$ = node("xor", {$1, $3}); }
  | exp OR exp { $$ = node("or", {$1, $3}); }
  | exp AND exp { $$ = node("and", {$1, $3}); }
  | exp IMPL exp { $$ = node("=>", {$1, $3}); }
  | exp '=' exp { $$ = node("=", {$1, $3}); }
  | exp NEQ exp { $$ = node("<>", {$1, $3}); }
  | exp '<' exp { $$ = node("<", {$1, $3}); }
  | exp LTE exp { $$ = node("<=", {$1, $3}); }
  | exp GTE exp { $$ = node(">=", {$1, $3}); }
  | exp '>' exp { $$ = node(">", {$1, $3}); }
  | exp '*' exp { $$ = node("*", {$1, $3}); }
  | exp '/' exp { $$ = node("/", {$1, $3}); }
  | exp '%' exp { $$ = node("mod", {$1, $3}); }
  | exp MOD exp { $$ = node("mod", {$1, $3}); }
  | exp DIV exp { $$ = node("div", {$1, $3}); }
  | exp '+' exp { $$ = node("+", {$1, $3}); }
  | exp '-' exp { $$ = node("-", {$1, $3}); }
  | exp POWER exp { $$ = node("**", {$1, $3}); }
  | '#' '(' exps ')' { $$ = node("#", *$3); delete $3; }
  | NOR '(' exps ')' { $$ = node("nor", *$3); delete $3; }
  | '(' exps ',' exp ')' { $$ = node("", *$2); $$->operands.push_back($4); delete $2; }
  | ident '(' exps ')' { $$ = node("", *$3); $$->name = $1; delete $3; } ;
exps : exp { $$ = new std::vector<Node*>{$1}; } | exps ',' exp { $$->push_back($3); } ;

%%

static FILE* out;
static size_t column;
static void put(const std::string& text) {
  column += text.size();
  if (column >= 80) {
    std::fputc('\n', out);
    column = text.size();
  }
  std::fputs(text.c_str(), out);
}
static void put_line() {
  std::fputs("\n   ", out);
  column = 3;
}

static void put(const Node* e) {
  const std::vector<Node*>& operands = e->operands;
  if (operands.empty()) return put(e->name->text);
  const bool is_infix = operands.size() == 2 && e->name == nullptr && *e->op != '\0' && *e->op != '#';
  if (e->name != nullptr) put(e->name->text);
  if (!is_infix) put(e->op);
  put("(");
  for (size_t i = 0; i < operands.size(); ++i) {
    if (i > 0 && is_infix) put(")"), put(e->op), put("(");
    if (i > 0 && !is_infix) put(", ");
    put(operands[i]);
  }
  put(")");
}

static void put(const char* title, const Names& section) {
  put(title);
  for (const Name* name : section) {
    put_line();
    put(name->text);
    put(" : "), put(name->type->text);
    if (name->clock != nullptr) put(" when "), put(name->clock->text);
    put(";");
  }
}

static void dump(const char* path) {
  out = std::fopen(path, "w");
  put("const", constants);
  put("node " + node_name->text);
  put("(", inputs);
  put(") returns (", outputs);
  put("); var", locals);
  put("let");
  for (const Node* assertion : assertions) put_line(), put("assert "), put(assertion), put(";");
  for (const Equation& equation : equations) {
    put_line();
    for (const Name* name : equation.left) put(name->text), put(name == equation.left.back() ? " = " : ", ");
    put(equation.right), put(";");
  }
  put("tel");
  std::fclose(out);
}

static double processor_time() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

int main(int, char* argv[]) {
  const std::string path = argv[1];
  const double start = processor_time();
  yyin = std::fopen(path.c_str(), "r");
  if (yyin == nullptr) return 1;
  yyparse();
  std::fclose(yyin);
  const double loaded = processor_time();
  std::printf("plain_load,%.1f\n", loaded - start);
  std::fflush(stdout);
  dump((path + ".out").c_str());
  std::printf("plain_dump,%.1f\n", processor_time() - loaded);
  std::remove((path + ".out").c_str());
}
