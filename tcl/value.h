// tcl/value.h: values of Tcl, held by their owner.
#ifndef TCL_VALUE_H
#define TCL_VALUE_H

#include <algorithm>
#include <climits>
#include <cstring>
#include <string_view>
#include <utility>

#include "tcl/support.h"

namespace tamsel {

// One reference on a value, which may be null.
class Value {
 public:
  Value() = default;
  explicit Value(Tcl_Obj* object) : object_(object) {
    if (object_ != nullptr) Tcl_IncrRefCount(object_);
  }
  explicit Value(const char* text) : Value(Tcl_NewStringObj(text, -1)) {}
  ~Value() {
    if (object_ != nullptr) Tcl_DecrRefCount(object_);
  }
  Value(Value&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
  Value& operator=(Value&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;

  Tcl_Obj* get() const { return object_; }

 private:
  Tcl_Obj* object_ = nullptr;
};

// A list that grows at its end. A dict is a list of its keys and values in turn: whoever only hands
// it on pays for no index.
class ListValue {
 public:
  ListValue() = default;
  ~ListValue() {
    while (count_ > 0) Tcl_DecrRefCount(first_[--count_]);
  }
  ListValue(const ListValue&) = delete;
  ListValue& operator=(const ListValue&) = delete;

  ListValue& add(Tcl_Obj* item) {
    if (list_.get() != nullptr || count_ == room) {
      Tcl_ListObjAppendElement(nullptr, get(), item);
    } else {
      Tcl_IncrRefCount(item);
      first_[count_++] = item;
    }
    return *this;
  }
  ListValue& add(const Value& value) { return add(value.get()); }
  ListValue& add(const char* text) { return add(Tcl_NewStringObj(text, -1)); }
  ListValue& add(int number) { return add(Tcl_NewIntObj(number)); }
  ListValue& add(ListValue& list) { return add(list.get()); }

  // The list; it stays this object's.
  Tcl_Obj* get() {
    if (list_.get() == nullptr) list_ = Value(Tcl_NewListObj(count_, first_));
    return list_.get();
  }

 private:
  static constexpr int room = 32;

  Tcl_Obj* first_[room];  // the first items, as long as there is no list
  int count_ = 0;
  Value list_;
};

// A text that grows at its end. Where memory ends, `add` throws bad_alloc, while Tcl's operations
// for it end the process.
class TextValue {
 public:
  // What no value can hold is left out.
  void add(std::string_view text) {
    is_whole_ = is_whole_ && text.size() <= most - size_;
    if (!is_whole_) return;
    const size_t size = size_ + text.size();
    // Grows where it lies: of a long text the pages move, and no byte.
    if (size > room_) set_room(std::max(size, std::min(2 * room_, most)));
    std::memcpy(Tcl_GetString(text_.get()) + size_, text.data(), text.size());
    size_ = size;
  }
  bool is_whole() const { return is_whole_; }
  // The text; it stays this object's, and takes no more.
  Tcl_Obj* get() {
    Tcl_SetObjLength(text_.get(), static_cast<ListSize>(size_));
    return text_.get();
  }

 private:
  static constexpr size_t most = INT_MAX - 1;

  void set_room(size_t size) {
    if (!Tcl_AttemptSetObjLength(text_.get(), static_cast<ListSize>(size))) throw std::bad_alloc();
    room_ = size;
  }

  Value text_{Tcl_NewObj()};
  size_t size_ = 0;
  size_t room_ = 0;
  bool is_whole_ = true;
};

}  // namespace tamsel

#endif
