#include "foundation/pty.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <stdexcept>

#include "tests/support.h"

using namespace tamsel;

TEST(PtyStream, BreaksAndIndentsLines) {
  const std::string b20(20, 'b');
  const struct {
    int depth, column;  // before the text
    std::string text, expected;
    int column_after;
  } rows[] = {
      // clang-format off
      {0, 77, "abc", "\nabc", 3}, {0, 76, "abc", "abc", 79},
      {2, 70, b20, "\n" + b20, 20},  // no indentation after an automatic break
      {1, 80, "\nx", "\n\n   x", 4},  // an empty piece meets the width as well
      {0, 5, "100%s%n", "100%s%n", 12}, {0, INT_MAX, "a", "\na", 1},
      // clang-format on
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.expected, written([&](PtyStream* stream) {
                stream->tab_depth = row.depth;
                stream->column = row.column;
                stream->put_text(row.text.c_str());
                EXPECT_EQ(row.column_after, stream->column) << row.text;
              }));
  }
}

TEST(PtyStream, WarnsOfOneUntabTooMany) {
  EXPECT_EQ("PtyStream::untab : unbalanced untab\n", stderr_of([] {
              EXPECT_EQ("\nx", written([](PtyStream* stream) {
                          stream->tab();
                          stream->untab();
                          stream->untab();
                          stream->put_text("\nx");
                        }));
            }));
}

TEST(TmpPtyStream, IsCopiedAtTheDepthOfTheOther) {
  const std::string copy = "x\n   y\n      \xff\n   z";  // its form feed was a line end by then
  EXPECT_EQ("a" + copy + "!\n   >" + copy + "2", written([](PtyStream* stream) {
              TmpPtyStream text(80, nullptr);
              text.put_text("x\ny");
              text.tab();
              text.put_text("\n\xff\fz");
              stream->tab();
              stream->put_text("a");
              stream->put(&text);
              EXPECT_EQ(3, stream->column);  // copied characters are not counted
              stream->put_text("!\n>");
              text.put(2);  // goes on after what was copied
              stream->put(&text);
            }));
}

TEST(PtyStream, ReportsTheFirstLostWriteOnce) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no full device here";
  for (const std::string& text : {std::string("short"), std::string(100000, 'x')}) {
    PtyStream stream("/dev/full", 80, nullptr);
    stream.put_text(text.c_str());  // the short one is lost when the file is closed
    EXPECT_EQ(ENOSPC, stream.close());
  }
  PtyStream stream("/dev/full", 80, nullptr);
  setvbuf(stream.file, nullptr, _IONBF, 0);
  fputs("written directly", stream.file);  // fails at once, so that no later flush does
  EXPECT_EQ(EIO, stream.close());
}

TEST(TmpPtyStream, LostTextIsMissingInTheCopy) {
  PtyStream copy("/dev/null", 80, nullptr);
  TmpPtyStream text(80, nullptr);
  const int read_only = open("/dev/null", O_RDONLY);
  dup2(read_only, fileno(text.file));
  close(read_only);
  text.put_text("lost");
  copy.put(&text);
  EXPECT_EQ(EBADF, copy.close());
}

TEST(PtyStream, AFullStandardStreamSpoilsNothingLater) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no full device here";
  for (const char* name : {"stdout", "stderr"}) {
    FILE* const file = *(name + 3) == 'o' ? stdout : stderr;
    fflush(file);
    const int saved = dup(fileno(file)), full = open("/dev/full", O_WRONLY);
    dup2(full, fileno(file));
    PtyStream stream(name, 80, nullptr);
    fputs("written directly", stream.file);
    const int error = stream.close();
    TmpPtyStream elsewhere(80, nullptr);
    dup2(fileno(elsewhere.file), fileno(file));
    PtyStream next(file, 80, nullptr);
    next.put("%s%d", "still open", 1);
    EXPECT_EQ(0, next.close());
    dup2(saved, fileno(file));
    close(full);
    close(saved);
    EXPECT_EQ(file == stdout ? ENOSPC : EIO, error);
    EXPECT_EQ("still open1", written([&](PtyStream* out) { out->put(&elsewhere); }));
  }
}

TEST(PieceRun, HoldsFourPiecesOfSixteenCharactersTogether) {
  EXPECT_EQ("1234567890123456", written([](PtyStream* out) {
              out->put(PieceRun({"123456789", "012345", "", "6"}));
            }));
  EXPECT_THROW(PieceRun({"1234567890", "1234567"}), std::length_error);
  EXPECT_THROW(PieceRun({"1", "2", "3", "4", "5"}), std::length_error);
}

TEST(PtyStream, UnopenableFileExits) {
  EXPECT_EXIT(PtyStream("/nowhere/at/all", 80, nullptr), testing::ExitedWithCode(1),
              "^can't open file '/nowhere/at/all'\n$");
}
