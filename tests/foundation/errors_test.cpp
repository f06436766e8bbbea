#include "foundation/errors.h"

#include <fcntl.h>
#include <unistd.h>

#include "tests/support.h"

class Messages : public testing::Test {
 protected:
  ~Messages() override {
    set_verbose_mode(0);
    PIPE = 0;
    nb_global_error = 0;
    set_errors_tool_name(" ");
  }
};

TEST_F(Messages, ProgressFollowsTheLevel) {
  for (const int level : {0, 1, 2, -1}) {
    set_verbose_mode(level);
    EXPECT_EQ(level != 0 ? "n7" : "", stderr_of([&] { EXPECT_EQ(level, Verbose("n%d", 7)); }));
    EXPECT_EQ(level >= 2 ? "n7" : "", stderr_of([&] { EXPECT_EQ(level, Verbose(2, "n%d", 7)); }));
  }
}

TEST_F(Messages, PipeModeMarksCursorMovements) {
  const struct {
    const char *format, *plain, *piped;
  } rows[] = {
      {"\r%d%%\r", "\r7%\r", " \n^R7%\r"}, {"\b%d", "\b7", "\n^B7"}, {"x\r%d", "x\r7", "x\r7"}};
  set_verbose_mode();
  for (const auto& row : rows) {
    PIPE = 0;
    EXPECT_EQ(row.plain, stderr_of([&] { Verbose(row.format, 7); }));
    set_pipe_mode();
    EXPECT_EQ(row.piped, stderr_of([&] { Verbose(row.format, 7); }));
    EXPECT_EQ(row.piped, stderr_of([&] { Verbose(1, row.format, 7); }));
  }
}

TEST_F(Messages, ReportsCarryTheToolName) {
  EXPECT_EQ("  Warning :\nx7\n", stderr_of([] { Warning("x%d", 7); }));
  EXPECT_EXIT(Error("x%d", 7), testing::ExitedWithCode(1), "^  Error :\nx7\n$");
  EXPECT_EXIT(IError("x%d", 7), testing::ExitedWithCode(1), "^Sorry, Internal Error :\nx7\n$");
  set_errors_tool_name("tool");
  EXPECT_EQ("tool Warning :\n%s\n", stderr_of([] { Warning("%s", "%s"); }));
}

TEST_F(Messages, CountedErrorsStopAtTheRecovery) {
  GErrorRecover();
  EXPECT_EQ("a7b", stderr_of([] {
              GError("a%d", 7);
              GError("b");
            }));
  EXPECT_EQ(2, GErrors());
  EXPECT_EXIT(GErrorRecover(), testing::ExitedWithCode(1), "^\\*\\*\\* 2 Errors stop\n$");
}

TEST_F(Messages, TheWheelTurnsOnATerminalOnly) {
  set_verbose_mode(1);
  EXPECT_EQ("", stderr_of([] { VerboseWheel(0); }));
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  const bool usable = terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0;
  const int end = usable ? open(ptsname(terminal), O_RDWR | O_NOCTTY) : -1;
  if (end < 0) GTEST_SKIP() << "this machine lends no terminal";
  const int kept = dup(STDERR_FILENO);
  dup2(end, STDERR_FILENO);
  for (const int period : {1, 1, 1, 1, 1, 2, 2, 2}) VerboseWheel(period);  // calls left out
  EXPECT_EQ(0, WHEEL_STEP);
  dup2(kept, STDERR_FILENO);
  std::string text;
  for (char turn[2]; text.size() < 8 && read(terminal, turn, 2) == 2;) text.append(turn, 2);
  EXPECT_EQ("|\b/\b-\b\\\b", text);
  for (const int descriptor : {terminal, end, kept}) close(descriptor);
}
