// What a refused expression leaves behind: nothing.

#include <sstream>
#include <vector>

#include "tests/support.h"

namespace {

// Every token that is an operand or an operator may be made wrong in turn. "N" stands for an
// integer and "R" for a real literal that no other text has.
const char* const good_texts[] = {
    "i + N * ( j - N )",
    "if i < N then x else R -> pre R + x",
    "nor ( b , i = N , x > R )",
    "f ( N ) > real N",
    "g ( i , N ) and ( N , R , b ) = ( i , x , true )",
    "( N , b , R ) <> ( N , b , x ) xor # ( b , i >= N )",
    "int ( R / x ) mod N + - i when b",
    "not ( ( N , N , N , i ) = ( N , i , j , N ) or b )",
};

// A text, or one that was made wrong, with what refuses it.
struct Case {
  std::vector<std::string> tokens;
  ExpRefusal refusal;
};

std::vector<std::string> split(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> tokens;
  for (std::string token; stream >> token;) tokens.push_back(token);
  return tokens;
}

std::vector<Case> cases() {
  std::vector<Case> all;
  for (const char* text : good_texts) {
    const std::vector<std::string> tokens = split(text);
    all.push_back({tokens, ExpRefusal::none});
    for (size_t place = 0; place <= tokens.size(); ++place) {
      const auto put = [&](const char* wrong, ExpRefusal refusal, bool instead) {
        all.push_back({tokens, refusal});
        if (instead) all.back().tokens[place] = wrong;
        if (!instead) all.back().tokens.insert(all.back().tokens.begin() + long(place), wrong);
      };
      for (const char* wrong : {"let", "$", "1e"}) put(wrong, ExpRefusal::syntax, false);
      if (place == tokens.size()) break;
      const bool is_call = place + 1 < tokens.size() && tokens[place + 1] == "(";
      const bool is_operand = std::string("i j x b N R").find(tokens[place]) != std::string::npos;
      if (!is_operand || is_call) continue;
      put("nosuch", ExpRefusal::name, true);
      for (const char* wrong : {"t", "h ( N , R )"}) put(wrong, ExpRefusal::type, true);
    }
  }
  return all;
}

}  // namespace

TEST(RefusedExpressions, LeaveNothing) {
  Program program(
      "type token; function f(n : int) returns (r : real)"
      "function g(n : int; m : int) returns (b : bool)"
      "node n(b : bool; i, j : int; x : real; t : token) returns (o : int); let tel");
  EcPrg& prg = program.prg;
  Exp* kept = prg.exp_parse("(i, 1) = (j, 2)");
  int literals = 0, refused = 0;
  for (const Case& tried : cases()) {
    std::string text;
    std::vector<std::string> fresh;
    for (const std::string& token : tried.tokens) {
      for (const std::string& word : split(token)) {
        if (word == "N") fresh.push_back(std::to_string(++literals + 1000));
        if (word == "R") fresh.push_back(std::to_string(++literals + 1000) + ".5");
        text += (word == "N" || word == "R" ? fresh.back() : word) + " ";
      }
    }
    // A function may be called like a number; a literal hides it while it stands.
    const int number = program.symbol(fresh.front().c_str());
    prg.add_usr_func(number, prg.int_type, prg.int_type, nullptr, nullptr);
    const FuncInfo* function = prg.function(number);

    const size_t nodes = prg.exp_heap.size(), records = prg.info_heap.size();
    EcType* const types = prg.types;
    prg.error_message[0] = '\0';
    Exp* e = prg.exp_parse(text.c_str());
    ASSERT_EQ(tried.refusal, prg.exp_refusal) << text << program.message();
    EXPECT_EQ(tried.refusal == ExpRefusal::none, e != nullptr) << text;
    if (e == nullptr) {
      ++refused;
      EXPECT_EQ(nodes, prg.exp_heap.size()) << text;
      EXPECT_EQ(records, prg.info_heap.size()) << text;
      EXPECT_EQ(types, prg.types) << text;
      EXPECT_EQ(function, prg.function(number)) << text;
    }
    for (const std::string& literal : fresh) {
      Exp* again = prg.exp_parse((literal + " = " + literal).c_str());
      ASSERT_NE(nullptr, again) << literal << " after " << text << program.message();
      EXPECT_EQ(again->args[0], program.leaf(literal.c_str())) << text;
    }
  }
  EXPECT_EQ("((i, 1))=((j, 2))", stdout_text([&] { prg.print_exp(kept); }));
  EXPECT_LT(500, refused);
}

// Also those that are made in the text that is then refused.
TEST(RefusedExpressions, TakeTheirTupleTypesBack) {
  Program program;
  EcPrg& prg = program.prg;
  for (std::string tuple = "1, true"; tuple.size() < 100; tuple += ", true") {
    EcType* const newest = prg.types;
    EXPECT_EQ(nullptr, prg.exp_parse(("(" + tuple + ") = (" + tuple + ") and not 1").c_str()));
    EXPECT_EQ("type error: bad 'NOT_n' operands", program.message());
    EXPECT_EQ(newest, prg.types) << tuple;
    Exp* again = prg.exp_parse(("(" + tuple + ")").c_str());
    ASSERT_NE(nullptr, again) << tuple;
    EXPECT_EQ(prg.types, again->type) << tuple;
    EXPECT_EQ(newest, prg.types->next) << tuple;
  }
}
