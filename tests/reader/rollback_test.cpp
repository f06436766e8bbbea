// What a refused expression leaves behind: nothing.

#include <algorithm>
#include <cstring>
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
  std::string text;
  ExpRefusal refusal;
};

std::vector<Case> cases() {
  std::vector<Case> all;
  for (std::string text : good_texts) {
    all.push_back({text, ExpRefusal::none});
    text += ' ';  // the last token is empty, so that words come after all others as well
    for (size_t at = 0, end; at <= text.size(); at = end + 1) {
      end = std::min(text.find(' ', at), text.size());
      const std::string before = text.substr(0, at), after = text.substr(end);
      for (const std::string wrong : {"let ", "$ ", "1e "})
        all.push_back({before + wrong + text.substr(at), ExpRefusal::syntax});
      const bool is_operand = end == at + 1 && std::strchr("ijxbNR", text[at]) != nullptr;
      if (!is_operand) continue;
      all.push_back({before + "nosuch" + after, ExpRefusal::name});
      for (const std::string wrong : {"t", "h ( N , R )"})
        all.push_back({before + wrong + after, ExpRefusal::type});
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
    std::istringstream words(tried.text);
    for (std::string word; words >> word; text += word + " ") {
      if (word != "N" && word != "R") continue;
      word = std::to_string(++literals + 1000) + (word == "R" ? ".5" : "");
      fresh.push_back(word);
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
