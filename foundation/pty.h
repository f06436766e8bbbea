// foundation/pty.h: output streams that break lines at a width and indent them.
//
// Text is written in pieces. A piece is never split; one that would make the line reach the width
// is moved to a new line, which then starts in column 0. Columns and widths count bytes. Each end
// of a line flushes, unless the stream writes in blocks. Write errors are kept and reported once,
// by close.
#ifndef FOUNDATION_PTY_H
#define FOUNDATION_PTY_H

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>

#include "foundation/text.h"

class PtyStream;
class TmpPtyStream;

namespace tamsel {

// Pieces that are always written one after the other, measured once. Together they are short.
class PieceRun {
 public:
  static constexpr size_t room = 16;  // characters, at most

  PieceRun() = default;
  // None of `pieces`, which are at most four, has "\n" or "\f" in it; those that are empty are
  // left out. Longer ones throw length_error.
  PieceRun(std::initializer_list<const char*> pieces);

 private:
  friend class ::PtyStream;
  char text_[room] = {};
  unsigned char ends_[4] = {};  // where each piece ends
  unsigned char count_ = 0;
  unsigned char size_ = 0;  // of the text
};

}  // namespace tamsel

class PtyStream {
 public:
  // `tab` is the unit of indentation; null stands for three blanks. It is copied.
  // By name: "stdout" and "stderr" stand for those streams; any other file is created or truncated,
  // and the process exits with status 1 if it cannot be opened. `name` is borrowed for the stream's
  // life.
  PtyStream(const char* name, int width, const char* tab);
  // Takes `f`, unless it is stdout or stderr.
  PtyStream(FILE* f, int width, const char* tab);
  // On standard output.
  PtyStream(int width, const char* tab);
  // On the end of `text`, which is borrowed, and whole after `flush` or `close`. Writing to it may
  // throw bad_alloc, and nothing else fails.
  PtyStream(std::string* text, int width, const char* tab);
  // Flushes, and closes the file unless it is stdout or stderr. A text is left as it is.
  ~PtyStream();
  PtyStream(const PtyStream&) = delete;
  PtyStream& operator=(const PtyStream&) = delete;

  // Shared streams of width 80, made at first use and never deleted.
  static PtyStream* of_stdout();
  static PtyStream* of_stderr();

  void tab() { ++tab_depth; }
  // Warns on standard error at depth 0, and stays there.
  void untab();
  void cr();  // ends the line and indents the next
  void lf();  // ends the line without indentation

  // Writes a formatted text: each "\n" in it ends the line as cr does, each "\f" as lf, and what
  // stands between them are pieces.
  void put(const char* format, ...) PRINTF_LIKE(2, 3);
  void vput(const char* format, va_list args) PRINTF_LIKE(2, 0);
  // The same for a text as it stands; no format is read.
  void put_text(const char* text);
  // The same for a name, of which 8 bytes can be read where it is shorter (see SymbolTable::name).
  void put_name(const char* text) {
    const int length = tamsel::short_length(text);
    if (length == 8 || room_ < 8) return put_text(text);
    const long long reached = column + static_cast<long long>(length);
    if (length == 0 || text[length] != '\0' || reached >= width) return put_text(text);
    std::memcpy(cursor_, text, 8);
    cursor_ += length;
    room_ -= static_cast<size_t>(length);
    column = static_cast<int>(reached);
  }
  // One piece: a literal without "\n" or "\f", of one character or more.
  template <size_t size>
  void put_literal(const char (&text)[size]) {
    static_assert(size > 1, "an empty text is not a piece");
    piece(text, size - 1);
  }
  void put(const tamsel::PieceRun& run) {
    // Where all of it fits, no piece breaks the line.
    if (run.size_ < width - static_cast<long long>(column) && tamsel::PieceRun::room <= room_) {
      std::memcpy(cursor_, run.text_, tamsel::PieceRun::room);
      cursor_ += run.size_;
      room_ -= run.size_;
      column += run.size_;
    } else {
      put_each(run);
    }
  }
  void put(int n);
  void put(float x);
  // Copies what was written to `t` so far; its lines are indented at this stream's depth.
  void put(TmpPtyStream* t);
  void flush();
  // Begins anew, in column 0: of a stream on a text, what it has not got yet is forgotten.
  void restart();
  // From now on text is written in large blocks, for a file at which nobody looks before it is
  // closed, and beside the stream nothing may be written to it.
  void write_in_blocks();
  // Writes `text` as it stands, and counts it in no column.
  void put_uncounted(const std::string& text) { write(text.data(), text.size()); }

  // Flushes and closes as the destructor does, which then does nothing. Returns 0, or the errno of
  // the first write that failed, so that a text that did not arrive whole is never taken for done.
  int close();

  FILE* file;        // null after close, and of a stream on a text
  const char* name;  // null unless made by name
  std::string tab_string;
  int tab_depth = 0;
  int column = 0;
  int width;

  static PtyStream* _of_stdout;
  static PtyStream* _of_stderr;

 private:
  static constexpr size_t file_block = 65536;
  static constexpr size_t text_block = 1024;

  // Inline with `write`, so that a literal costs a comparison and a store.
  void piece(const char* text, size_t length) {
    const long long reached = column + static_cast<long long>(length);
    if (reached >= width)
      break_line(length);
    else
      column = static_cast<int>(reached);
    write(text, length);
  }
  // The automatic break before a piece of `length`.
  void break_line(size_t length);
  void write(const char* text, size_t length) {
    if (length >= room_) {
      write_through(text, length);
    } else {
      std::memcpy(cursor_, text, length);
      cursor_ += length;
      room_ -= length;
    }
  }
  void write_through(const char* text, size_t length);
  void put_each(const tamsel::PieceRun& run);
  void put_pieces(const char* text);
  void end_line();

  void make_block(size_t size);
  void write_block();

  std::string* text_ = nullptr;  // borrowed; null: the stream is on a file
  int write_error_ = 0;          // errno of the first failed write
  // What is not yet written, of a stream that writes in blocks: up to the cursor.
  std::unique_ptr<char[]> block_;
  size_t block_size_ = 0;
  char* cursor_ = nullptr;
  size_t room_ = 0;  // bytes of the block after the cursor
};

// The same stream over an anonymous temporary file, which vanishes with it. The process exits with
// status 1 if none can be opened.
class TmpPtyStream : public PtyStream {
 public:
  TmpPtyStream(int width, const char* tab);
};

#endif
