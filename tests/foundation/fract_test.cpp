#include "foundation/fract.h"

#include <climits>
#include <clocale>

#include "tests/support.h"

using namespace tamsel;

static std::string printed(const Fract& x) {
  return stdout_text([&] { x.print(); });
}

TEST(Fract, CalculatesInNormalForm) {
  const Fract half(1, 2), third(1, 3), most(LLONG_MAX), least(LLONG_MIN);
  const struct {
    Fract x;
    const char* form;
  } rows[] = {
      // clang-format off
      {{0, -5}, "0"}, {{4, -6}, "-2/3"}, {{-1, -7}, "1/7"}, {{12, 4}, "3"}, {{5, -1}, "-5"},
      {{LLONG_MIN, 6}, "-4611686018427387904/3"}, {{LLONG_MIN, -6}, "4611686018427387904/3"},
      {{2, LLONG_MIN}, "-1/4611686018427387904"}, {{LLONG_MIN, LLONG_MIN}, "1"},
      {plus(half, third), "5/6"}, {minus(third, half), "-1/6"}, {abs(Fract(-5, 3)), "5/3"},
      {times(Fract(2, 3), Fract(-3, 2)), "-1"}, {slash(half, uminus(third)), "-3/2"},
      // Every overflow wraps.
      {plus(most, 1), "-9223372036854775808"}, {times(most, 2), "-2"},
      {minus(least, 1), "9223372036854775807"}, {uminus(least), "-9223372036854775808"},
      // clang-format on
  };
  for (const auto& row : rows) EXPECT_EQ(row.form, printed(row.x));
}

TEST(Fract, ComparesInEveryForm) {
  const struct {
    Fract x;
    long long n;
    int order;  // of x against n
  } rows[] = {{{1, 2}, 0, 1}, {{1, 2}, 1, -1}, {{-3, 2}, -1, -1}, {{-3, 2}, -2, 1}, {{6, 2}, 3, 0}};
  for (const auto& [x, n, order] : rows) {
    const Fract y(n);
    // clang-format off
    const bool relations[][4] = {
        {order == 0, x == y, x == n, n == x}, {order != 0, x != y, x != n, n != x},
        {order < 0, x < y, x < n, n > x},     {order <= 0, x <= y, x <= n, n >= x},
        {order > 0, x > y, x > n, n < x},     {order >= 0, x >= y, x >= n, n <= x}};
    // clang-format on
    for (const auto& relation : relations) {
      for (const bool answer : relation) EXPECT_EQ(relation[0], answer) << &relation - relations;
    }
  }
}

TEST(Fract, DivisorsAndMultiples) {
  const struct {
    long long a, b, divisor, multiple;
  } rows[] = {{-4, 6, 2, -12}, {-4, -6, 2, 12}, {LLONG_MIN, -1, 1, LLONG_MIN}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.divisor, pgcd(row.a, row.b)) << row.a << " " << row.b;
    EXPECT_EQ(row.multiple, ppcm(row.a, row.b)) << row.a << " " << row.b;
  }
  EXPECT_DEATH(pgcd(5, 0), "");
  EXPECT_DEATH(ppcm(0, 5), "");
}

TEST(Atofract, ReadsExactNumbersUnderEveryLocale) {
  const struct {
    const char *text, *form;
  } rows[] = {
      // clang-format off
      {"0.1", "1/10"}, {"2.50", "5/2"}, {"-1.5e2", "-150"}, {"12e-1", "6/5"}, {"1.500E+1", "15"},
      {"1.0", "1"}, {"10.050", "201/20"}, {".5", "1/2"}, {"1e", "1"}, {"1.5x", "3/2"}, {"", "0"},
      {"abc", "0"}, {"-0", "0"}, {"1\xe9", "1"}, {"9007199254740993", "9007199254740993"},
      {"-9223372036854775808", "-9223372036854775808"}, {"1e18", "1000000000000000000"},
      {"0.000000000000000001", "1/1000000000000000000"}, {"0.50000000000000000000000000", "1/2"},
      {"0.000000000000000000001e15", "1/1000000"},
      // clang-format on
  };
  for (const char* locale : {"de_DE.UTF-8", "C"}) {  // the first, where it exists, has a comma
    setlocale(LC_NUMERIC, locale);
    for (const auto& row : rows) EXPECT_EQ(row.form, printed(atofract(row.text))) << row.text;
  }
}

TEST(Atofract, RefusesWhatItCannotHold) {
  // clang-format off
  const char* texts[] = {
      "1.", "1.e5", " 5", "0x10", "inf", "99999999999999999999", "9223372036854775808", "1e19",
      "0e19", "1e-19", "0.0000000000000000001", "1e99999999999999999999",
      "1e-99999999999999999999"};
  // clang-format on
  for (const std::string text : texts) {
    EXPECT_EXIT(
        atofract(text.c_str()), testing::ExitedWithCode(1),
        "^Fract::operator=\\(char\\*\\) : arithmetic overflow while parsing '" + text + "'\n$");
  }
}

TEST(Fract, DividingByZeroExits) {
  const char* message = "^Fract::Fract: division by zero\n$";
  EXPECT_EXIT(Fract(0, 0), testing::ExitedWithCode(1), message);
  EXPECT_EXIT(slash(3, 0), testing::ExitedWithCode(1), message);
  Fract made_by_hand;
  made_by_hand.den = 0;
  EXPECT_EXIT(made_by_hand.todouble(), testing::ExitedWithCode(1),
              "^Fract::todouble\\(\\) : division by zero\n$");
}
