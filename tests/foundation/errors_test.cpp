#include "foundation/errors.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <functional>
#include <string>

class Messages : public testing::Test {
 protected:
  ~Messages() override {
    set_verbose_mode(0);
    PIPE = 0;
    nb_global_error = 0;
    set_errors_tool_name(" ");
  }
};

static std::string printed(const std::function<void()>& report) {
  testing::internal::CaptureStderr();
  report();
  return testing::internal::GetCapturedStderr();
}

TEST_F(Messages, ProgressFollowsTheLevel) {
  for (const int level : {0, 1, 2, -1}) {
    set_verbose_mode(level);
    EXPECT_EQ(level != 0 ? "n7" : "", printed([&] { EXPECT_EQ(level, Verbose("n%d", 7)); }));
    EXPECT_EQ(level >= 2 ? "n7" : "", printed([&] { EXPECT_EQ(level, Verbose(2, "n%d", 7)); }));
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
    EXPECT_EQ(row.plain, printed([&] { Verbose(row.format, 7); }));
    set_pipe_mode();
    EXPECT_EQ(row.piped, printed([&] { Verbose(row.format, 7); }));
    EXPECT_EQ(row.piped, printed([&] { Verbose(1, row.format, 7); }));
  }
}

TEST_F(Messages, ReportsCarryTheToolName) {
  EXPECT_EQ("  Warning :\nx7\n", printed([] { Warning("x%d", 7); }));
  EXPECT_EXIT(Error("x%d", 7), testing::ExitedWithCode(1), "^  Error :\nx7\n$");
  EXPECT_EXIT(IError("x%d", 7), testing::ExitedWithCode(1), "^Sorry, Internal Error :\nx7\n$");
  set_errors_tool_name("tool");
  EXPECT_EQ("tool Warning :\n%s\n", printed([] { Warning("%s", "%s"); }));
}

TEST_F(Messages, CountedErrorsStopAtTheRecovery) {
  GErrorRecover();
  EXPECT_EQ("a7b", printed([] {
              GError("a%d", 7);
              GError("b");
            }));
  EXPECT_EQ(2, GErrors());
  EXPECT_EXIT(GErrorRecover(), testing::ExitedWithCode(1), "^\\*\\*\\* 2 Errors stop\n$");
}

// What `calls` calls of the wheel with period 2 write on a terminal.
static std::string wheel_on_terminal(int calls) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) return "no terminal";
  const int end = open(ptsname(terminal), O_RDWR | O_NOCTTY), saved = dup(2);
  dup2(end, 2);
  for (int i = 0; i < calls; ++i) VerboseWheel(2);
  dup2(saved, 2);
  char text[100];
  const ssize_t size = read(terminal, text, sizeof text);
  for (const int fd : {end, saved, terminal}) close(fd);
  return std::string(text, size > 0 ? static_cast<size_t>(size) : 0);
}

TEST_F(Messages, WheelTurnsOnATerminalOnly) {
  EXPECT_EQ("", printed([] { EXPECT_EQ(0, VerboseWheel(0)); }));
  set_verbose_mode();
  EXPECT_EQ("", printed([] { EXPECT_EQ(1, VerboseWheel(0)); }));
  // Calls 2, 5, 8, 11 and 14 turn it.
  const std::string turns = wheel_on_terminal(13);
  if (turns == "no terminal") GTEST_SKIP() << turns;
  EXPECT_EQ("|\b/\b-\b\\\b", turns);
  EXPECT_EQ("|\b", wheel_on_terminal(1));
}
