#include "foundation/pty.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

using namespace tamsel;

static FILE* open_output(const char* name) {
  if (strcmp(name, "stdout") == 0) return stdout;
  if (strcmp(name, "stderr") == 0) return stderr;
  FILE* f = fopen(name, "w");
  if (f != nullptr) return f;
  fprintf(stderr, "can't open file '%s'\n", name);
  exit(1);
}

static FILE* open_temporary() {
  FILE* f = tmpfile();
  if (f != nullptr) return f;
  fputs("can't open temporary file\n", stderr);
  exit(1);
}

// Later failures follow from the first, which is the one to report.
static void keep_first(int* kept, int error) {
  if (*kept == 0) *kept = error != 0 ? error : EIO;
}

static int capped(unsigned long long bytes) {
  return static_cast<int>(std::min<unsigned long long>(bytes, INT_MAX));
}

PieceRun::PieceRun(std::initializer_list<const char*> pieces) {
  for (const char* piece : pieces) {
    const size_t length = strlen(piece);
    if (length == 0) continue;
    if (size_ + length > room || count_ == sizeof ends_) throw std::length_error(piece);
    memcpy(text_ + size_, piece, length);
    size_ = static_cast<unsigned char>(size_ + length);
    ends_[count_++] = size_;
  }
}

PtyStream* PtyStream::_of_stdout = nullptr;
PtyStream* PtyStream::_of_stderr = nullptr;

PtyStream* PtyStream::of_stdout() {
  static PtyStream* const shared = _of_stdout = new PtyStream(stdout, 80, nullptr);
  return shared;
}

PtyStream* PtyStream::of_stderr() {
  static PtyStream* const shared = _of_stderr = new PtyStream(stderr, 80, nullptr);
  return shared;
}

PtyStream::PtyStream(FILE* f, int line_width, const char* tab)
    : file(f), name(nullptr), tab_string(tab != nullptr ? tab : "   "), width(line_width) {}

PtyStream::PtyStream(const char* file_name, int line_width, const char* tab)
    : PtyStream(open_output(file_name), line_width, tab) {
  name = file_name;
}

PtyStream::PtyStream(int line_width, const char* tab) : PtyStream(stdout, line_width, tab) {}

PtyStream::PtyStream(std::string* text, int line_width, const char* tab)
    : PtyStream(static_cast<FILE*>(nullptr), line_width, tab) {
  text_ = text;
  make_block(text_block);
}

TmpPtyStream::TmpPtyStream(int line_width, const char* tab)
    : PtyStream(open_temporary(), line_width, tab) {}

// What a text has not got yet is dropped: to append it could fail.
PtyStream::~PtyStream() {
  if (text_ == nullptr) close();
}

void PtyStream::untab() {
  if (tab_depth == 0) {
    fputs("PtyStream::untab : unbalanced untab\n", stderr);
    return;
  }
  --tab_depth;
}

void PtyStream::make_block(size_t size) {
  block_.reset(new char[size]);
  block_size_ = size;
  cursor_ = block_.get();
  room_ = size;
}

void PtyStream::write_in_blocks() {
  if (block_ == nullptr) make_block(file_block);
}

// Leaves the block empty; of a stream without one, does nothing.
void PtyStream::write_block() {
  if (block_ == nullptr) return;
  const size_t size = block_size_ - room_;
  if (text_ != nullptr)
    text_->append(block_.get(), size);
  else if (size > 0 && fwrite(block_.get(), 1, size, file) != size)
    keep_first(&write_error_, errno);
  cursor_ = block_.get();
  room_ = block_size_;
}

// Writes what does not fit into the block, or of a stream without one. Its file
// may be shared with other threads, and is locked once for all characters, which are mostly few.
void PtyStream::write_through(const char* text, size_t length) {
  write_block();
  if (text_ != nullptr) {
    text_->append(text, length);
    return;
  }
  flockfile(file);
  for (const char* end = text + length; text != end; ++text)
    if (putc_unlocked(*text, file) == EOF) keep_first(&write_error_, errno);
  funlockfile(file);
}

void PtyStream::end_line() {
  write("\n", 1);
  if (block_ == nullptr) flush();
}

void PtyStream::cr() {
  end_line();
  for (int i = 0; i < tab_depth; ++i) write(tab_string.data(), tab_string.size());
  column = capped(static_cast<unsigned long long>(tab_string.size()) *
                  static_cast<unsigned long long>(tab_depth));
}

void PtyStream::lf() {
  end_line();
  column = 0;
}

void PtyStream::break_line(size_t length) {
  end_line();
  column = capped(length);
}

void PtyStream::put_each(const PieceRun& run) {
  size_t start = 0;
  for (int i = 0; i < run.count_; ++i) {
    piece(run.text_ + start, run.ends_[i] - start);
    start = run.ends_[i];
  }
}

void PtyStream::put_text(const char* text) {
  // Most texts are one piece that fits the line and the block: copied while they are measured.
  const long long fits = std::min(width - 1LL - column, static_cast<long long>(room_));
  long long length = 0;
  for (; length < fits && static_cast<unsigned char>(text[length]) >= ' '; ++length)
    cursor_[length] = text[length];
  if (length > 0 && text[length] == '\0') {
    cursor_ += length;
    room_ -= static_cast<size_t>(length);
    column += static_cast<int>(length);
    return;
  }
  put_pieces(text);
}

void PtyStream::put_pieces(const char* text) {
  while (*text != '\0') {
    size_t length = 0;
    while (text[length] != '\0' && text[length] != '\n' && text[length] != '\f') ++length;
    piece(text, length);  // also where it is empty: the line may have reached the width
    text += length;
    if (*text == '\0') return;
    if (*text == '\n') {
      cr();
    } else {
      lf();
    }
    ++text;
  }
}

void PtyStream::vput(const char* format, va_list args) {
  put_text(format_text(format, args).c_str());
}

void PtyStream::put(const char* format, ...) {
  va_list args;
  va_start(args, format);
  vput(format, args);
  va_end(args);
}

// A number has neither "\n" nor "\f", so its text is one piece.
void PtyStream::put(int n) { put("%d", n); }

void PtyStream::put(float x) { put("%f", static_cast<double>(x)); }

void PtyStream::put(TmpPtyStream* t) {
  t->flush();
  rewind(t->file);
  for (int c = getc(t->file); c != EOF; c = getc(t->file)) {
    if (c == '\n') {
      cr();
    } else if (c == '\f') {
      lf();
    } else {
      const char character = static_cast<char>(c);
      write(&character, 1);
    }
  }
  if (ferror(t->file)) keep_first(&t->write_error_, EIO);
  // What `t` lost is missing here as well.
  if (t->write_error_ != 0) keep_first(&write_error_, t->write_error_);
}

void PtyStream::flush() {
  write_block();
  if (file == nullptr) return;
  if (fflush(file) != 0) {
    keep_first(&write_error_, errno);
  } else if (ferror(file)) {
    keep_first(&write_error_, EIO);  // what was written beside the stream
  }
}

void PtyStream::restart() {
  column = 0;
  if (text_ == nullptr) return;
  cursor_ = block_.get();
  room_ = block_size_;
}

int PtyStream::close() {
  flush();
  if (file == nullptr) return write_error_;
  if (file == stdout || file == stderr) {
    clearerr(file);  // the next stream on this file starts afresh
  } else if (fclose(file) != 0) {
    keep_first(&write_error_, errno);
  }
  file = nullptr;
  return write_error_;
}
