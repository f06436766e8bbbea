// reader/source.h: the text that is read, as stretches of memory.
#ifndef READER_SOURCE_H
#define READER_SOURCE_H

#include <cstddef>
#include <cstdio>
#include <memory>

namespace tamsel {

// A file is read in blocks, of which one is in memory. Of what is not a regular file, where reading
// may wait for somebody to write, a block ends with the first blank. A text is all in memory, and
// ends with its NUL.
class Source {
 public:
  Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  // Begins with `file`, or with a text where it is null. Borrows it. Nothing of a file is in memory
  // yet. With `in_blocks`, the place of a regular file is behind what was asked for until
  // close.
  void open(FILE* file, bool in_blocks);
  // Whether the text ends at `place`.
  bool is_end(const char* place) const { return file_ == nullptr ? *place == '\0' : place == end_; }
  // Whether more may follow after the place where is_end holds.
  bool may_go_on() const { return !is_whole_; }
  // Reads more of the file. What stands before `kept` is forgotten, and what stands there moves: to
  // the place that is returned. Throws bad_alloc with nothing changed.
  const char* read_on(const char* kept);
  // Puts a regular file that was read in blocks to `place`, and forgets the block.
  void close(const char* place);

 private:
  size_t fill(char* place, size_t room, size_t kept);

  FILE* file_ = nullptr;
  bool is_regular_ = false;  // and read in blocks
  bool is_whole_ = true;     // nothing follows after the block
  std::unique_ptr<char[]> block_;
  size_t usual_room_ = 0;
  size_t room_ = 0;            // of the block, but for a NUL after its end
  const char* end_ = nullptr;  // of what is in memory; a NUL stands there
};

}  // namespace tamsel

#endif
