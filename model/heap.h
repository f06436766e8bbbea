// model/heap.h: what a program owns, in the order of its making.
#ifndef MODEL_HEAP_H
#define MODEL_HEAP_H

#include <cstddef>
#include <vector>

namespace tamsel {

// Owns records and deletes them, newest first, in its destructor.
template <class Record>
class Heap {
 public:
  Heap() = default;
  ~Heap() {
    while (size() > 0) delete take_newest();
  }
  Heap(const Heap&) = delete;
  Heap& operator=(const Heap&) = delete;

  // After this, `count` times `enter` cannot fail. Throws bad_alloc.
  void make_room(size_t count = 1) {
    if (records_.size() + count > records_.capacity())
      records_.reserve(2 * records_.size() + count + 16);
  }
  // Takes `record`, for which there must be room.
  void enter(Record* record) noexcept { records_.push_back(record); }
  size_t size() const { return records_.size(); }
  // Hands over the newest record; there must be one.
  Record* take_newest() {
    Record* record = records_.back();
    records_.pop_back();
    return record;
  }
  // Forgets all records without deleting them: somebody else owns them.
  void release() { records_.clear(); }

 private:
  std::vector<Record*> records_;
};

}  // namespace tamsel

#endif
