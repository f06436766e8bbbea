#include "reader/source.h"

#include <algorithm>

#include <sys/stat.h>

#include "foundation/text.h"

namespace tamsel {

static const size_t BlockSize = 64 * 1024;
static const size_t WordSize = 256;  // at first, of a file that is read word by word

void Source::open(FILE* file, bool in_blocks) {
  struct stat status;
  file_ = file;
  is_whole_ = file == nullptr;
  is_regular_ =
      in_blocks && file != nullptr && fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode);
  usual_room_ = WordSize;
  if (is_regular_) usual_room_ = std::min(BlockSize, static_cast<size_t>(status.st_size) + 1);
  end_ = nullptr;
}

// Reads into `place`. Where there is no whole block to be had without waiting, up to a blank, but
// as much as was kept, so that a long comment is not looked through again for each of its words.
size_t Source::fill(char* place, size_t room, size_t kept) {
  if (is_regular_) {
    const size_t count = fread(place, 1, room, file_);
    if (count < room) is_whole_ = true;
    return count;
  }
  size_t count = 0;
  while (count < room) {
    const int c = getc_unlocked(file_);
    if (c == EOF) {
      is_whole_ = true;
      break;
    }
    place[count++] = static_cast<char>(c);
    if (is_blank(c) && count >= kept) break;
  }
  return count;
}

const char* Source::read_on(const char* kept) {
  const size_t size = end_ != nullptr ? static_cast<size_t>(end_ - kept) : 0;
  if (2 * size > room_ || block_ == nullptr) {
    const size_t room = std::max(usual_room_, 4 * size);
    std::unique_ptr<char[]> larger(new char[room + 1]);
    std::copy_n(kept, size, larger.get());
    block_ = std::move(larger);
    room_ = room;
  } else {
    std::copy_n(kept, size, block_.get());  // which lies before, or has nothing yet
  }
  char* end = block_.get() + size;
  end += fill(end, room_ - size, size);
  *end = '\0';
  end_ = end;
  return block_.get();
}

void Source::close(const char* place) {
  if (is_regular_ && end_ != nullptr && place != end_) fseeko(file_, place - end_, SEEK_CUR);
  file_ = nullptr;
  is_regular_ = false;
  is_whole_ = true;
  end_ = nullptr;
  block_.reset();
  room_ = 0;
}

}  // namespace tamsel
