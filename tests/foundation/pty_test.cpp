#include "foundation/pty.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "tests/support.h"

using namespace tamsel;

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

TEST(PtyStream, WritesANameAsAnyText) {
  const std::string room(8, '\xFF');  // behind a name, where nothing may be taken for its end
  for (const std::string name : {"", "x", "1234567", "12345678", "\xC3\xA9t\xC3\xA9", "a\nb", "\f",
                                 "a\tb", "1234567\n", "\n1234567"}) {
    const std::string padded = name + '\0' + room;
    for (int width = 1; width < 12; ++width) {
      std::string as_text, as_name;
      PtyStream texts(&as_text, width, nullptr);
      PtyStream names(&as_name, width, nullptr);
      for (int i = 0; i < 300; ++i) {  // more than a block
        texts.put_text(name.c_str());
        names.put_name(padded.c_str());
      }
      texts.flush();
      names.flush();
      EXPECT_EQ(as_text, as_name) << name << " in lines of " << width;
    }
  }
}

TEST(PtyStream, SharesTheStandardOnes) {
  const auto put = [](PtyStream* stream) {
    stream->put(7);
    stream->put(0.5f);
    stream->flush();
  };
  EXPECT_EQ("70.500000", stdout_text([&] { put(PtyStream::of_stdout()); }));
  EXPECT_EQ("70.500000", stderr_of([&] { put(PtyStream::of_stderr()); }));
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
