#include "Base/Containers/qvVectorImpl.h"

#include "Base/Containers/qvContainerHeap.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

namespace qv {

struct VectorImpl::Layout {
  static_assert(offsetof(VectorImpl, data_) == 0);
  static_assert(offsetof(VectorImpl, size_) == sizeof(void*));
  static_assert(offsetof(VectorImpl, capacity_) == sizeof(void*) + 4);
  static_assert(offsetof(VectorImpl, typeUtil_) == sizeof(void*) + 8);
  static_assert(offsetof(TypeUtil, copyConstruct) == 0);
  static_assert(offsetof(TypeUtil, copyConstructRange) == sizeof(void*));
  static_assert(offsetof(TypeUtil, destruct) == 2 * sizeof(void*));
  static_assert(offsetof(TypeUtil, destructRange) == 3 * sizeof(void*));
  static_assert(offsetof(TypeUtil, distance) == 4 * sizeof(void*));
  static_assert(offsetof(TypeUtil, elementSize) == 5 * sizeof(void*));
};

namespace {

constexpr std::int64_t maxBlockSize = UINT32_MAX;

void copyPointer(void* dst, const void* src) { std::memcpy(dst, src, sizeof(void*)); }

void copyPointers(void* dst, const void* src, int count) {
  std::memcpy(dst, src, static_cast<std::size_t>(count) * sizeof(void*));
}

std::int64_t pointerDistance(const void* last, const void* first) {
  return (static_cast<const char*>(last) - static_cast<const char*>(first)) /
         static_cast<std::ptrdiff_t>(sizeof(void*));
}

/// Moves `size` bytes, where neither place need exist if there is nothing to move. A few words, the common
/// case of an insertion near the end, go without a call.
void moveTail(char* dst, const char* src, std::size_t size, std::uint32_t elementSize) {
  constexpr std::size_t word = 8;
  if (elementSize == word && dst == src + word && size <= 8 * word) {
    for (std::size_t at = size; at > 0; at -= word) std::memcpy(dst + at - word, src + at - word, word);
  } else if (size > 0) {
    std::memmove(dst, src, size);
  }
}

} // namespace

const VectorImpl::TypeUtil VectorImpl::sPointerTypeUtil = {&copyPointer, &copyPointers,    nullptr,
                                                           nullptr,      &pointerDistance, sizeof(void*)};

void VectorImpl::initialize(int count, ConstructRange construct, const TypeUtil* typeUtil) {
  initialize(typeUtil);
  if (count > 0) setSize(count, construct);
}

void VectorImpl::initialize(int count, const void* value, const TypeUtil* typeUtil) {
  initialize(typeUtil);
  setSize(count, value);
}

void VectorImpl::initialize(const VectorImpl& other) {
  initialize(other.typeUtil_);
  append(other);
}

void VectorImpl::freeStorage() {
  if (!data_) return;
  if (size_ > 0) destructRange(data_, size_);
  std::free(data_);
}

void* VectorImpl::setCapacity(int capacity) {
  if (capacity == 0) {
    freeStorage();
    data_ = nullptr;
  } else {
    if (capacity > maxBlockSize / typeUtil_->elementSize) std::abort();
    data_ = detail::heapReallocate(data_, bytes(capacity));
  }
  capacity_ = capacity;
  return data_;
}

void* VectorImpl::growByOne() {
  const std::int64_t most = std::min<std::int64_t>(maxBlockSize / typeUtil_->elementSize, INT32_MAX);
  if (capacity_ >= most) std::abort();
  const std::int64_t wanted = capacity_ < 32 ? capacity_ + std::int64_t{8} : capacity_ * std::int64_t{2};
  return setCapacity(static_cast<int>(std::min(wanted, most)));
}

void VectorImpl::growByOneAndAssignPtr(const void* ptr) {
  growByOne();
  copyPointer(slot(size_ - 1), &ptr);
}

void VectorImpl::reserve(int capacity) {
  if (capacity > capacity_) setCapacity(capacity);
}

void VectorImpl::clear() {
  destructRange(data_, size_);
  size_ = 0;
}

void VectorImpl::setSize(int size, ConstructRange construct) {
  if (size < size_) {
    destructRange(slot(size), size_ - size);
  } else if (size > size_) {
    reserve(size);
    if (construct) construct(slot(size_), size - size_);
  }
  size_ = size;
}

void VectorImpl::setSize(int size, const void* value) {
  if (size < size_) {
    destructRange(slot(size), size_ - size);
    size_ = size;
  } else if (size > size_) {
    reserve(size);
    for (; size_ < size; ++size_) typeUtil_->copyConstruct(slot(size_), value);
  }
}

void VectorImpl::makeRoomForOne() {
  if (size_ >= capacity_) growByOne();
}

void* VectorImpl::append() {
  makeRoomForOne();
  return slot(size_++);
}

void* VectorImpl::appendAndReturnPtr() { return append(); }

void VectorImpl::append(Construct construct) {
  makeRoomForOne();
  if (construct) construct(slot(size_));
  ++size_;
}

void VectorImpl::append(const void* value) { append(value, typeUtil_->copyConstruct); }

void VectorImpl::append(const void* value, Copy copyElement) {
  makeRoomForOne();
  copyElement(slot(size_), value);
  ++size_;
}

void VectorImpl::appendAndAssignPtr(const void* ptr) { copyPointer(append(), &ptr); }

void VectorImpl::append(const VectorImpl& other) {
  const int added = other.size_;
  setCapacity(detail::countSum(size_, added));
  if (added > 0) typeUtil_->copyConstructRange(slot(size_), other.data_, added);
  size_ += added;
}

/// A gap of raw memory in front of the tail. Unless it is told to be filled it closes again, so that an
/// element that throws while it is copied changes nothing.
class VectorImpl::Gap {
public:
  Gap(VectorImpl& vector, char* at, int count) noexcept : vector_(vector), at_(at), count_(count) {
    move(at_ + vector_.bytes(count_), at_);
  }
  Gap(const Gap&) = delete;
  Gap& operator=(const Gap&) = delete;
  ~Gap() {
    if (filled_ == count_) {
      vector_.size_ += count_;
    } else {
      vector_.destructRange(at_, filled_);
      move(at_, at_ + vector_.bytes(count_));
    }
  }
  void filled(int count) noexcept { filled_ += count; }

private:
  void move(char* dst, const char* src) const noexcept {
    const std::size_t tail = static_cast<std::size_t>(vector_.slot(vector_.size_) - at_);
    moveTail(dst, src, tail, vector_.typeUtil_->elementSize);
  }

  VectorImpl& vector_;
  char* at_;
  int count_;
  int filled_ = 0;
};

/// Opens a gap and has it filled by `fill(gap)`, or by `fill(gap, i)` for each element.
template <class Fill>
void* VectorImpl::insertGap(void* position, int count, bool exact, Fill fill) {
  const std::ptrdiff_t offset = static_cast<char*>(position) - slot(0);
  const int size = detail::countSum(size_, count);
  if (size > capacity_) exact ? setCapacity(size) : growByOne();
  char* const at = slot(0) + offset;
  Gap gap(*this, at, count);
  if constexpr (std::is_invocable_v<Fill, char*, int>) {
    for (int i = 0; i < count; ++i, gap.filled(1)) fill(at, i);
  } else {
    fill(at);
    gap.filled(count);
  }
  return at;
}

void* VectorImpl::insert(void* position) {
  return insertGap(position, 1, false, [](void*) {});
}

void* VectorImpl::insertAndReturnPtr(void* position) { return insert(position); }

void* VectorImpl::insert(void* position, Construct construct) {
  return insertGap(position, 1, false, [construct](void* gap) {
    if (construct) construct(gap);
  });
}

void* VectorImpl::insert(void* position, const void* value) {
  return insert(position, value, typeUtil_->copyConstruct);
}

void* VectorImpl::insert(void* position, const void* value, Copy copyElement) {
  return insertGap(position, 1, false, [value, copyElement](void* gap) { copyElement(gap, value); });
}

void* VectorImpl::insertAndAssignPtr(void* position, const void* ptr) {
  return insertGap(position, 1, false, [ptr](void* gap) { copyPointer(gap, &ptr); });
}

void VectorImpl::insert(void* position, int count, const void* value) {
  if (count <= 0) return;
  insertGap(position, count, true,
            [this, value](char* gap, int i) { typeUtil_->copyConstruct(gap + bytes(i), value); });
}

void VectorImpl::insert(void* position, const void* first, const void* last) {
  insert(position, first, last, typeUtil_->distance, typeUtil_->copyConstructRange);
}

void VectorImpl::insert(void* position, const void* first, const void* last, Distance distance,
                        CopyRange copyRange) {
  const int count = detail::toCount(distance(last, first));
  if (count == 0) return;
  insertGap(position, count, true, [=](void* gap) { copyRange(gap, first, count); });
}

void VectorImpl::eraseBack() {
  --size_;
  destruct(slot(size_));
}

void* VectorImpl::erase(void* position) {
  char* const following = static_cast<char*>(position) + bytes(1);
  const std::size_t tail = static_cast<std::size_t>(slot(size_) - following);
  --size_;
  destruct(position);
  moveTail(static_cast<char*>(position), following, tail, typeUtil_->elementSize);
  return position;
}

void* VectorImpl::erase(void* first, void* last) {
  const int count = detail::toCount(typeUtil_->distance(last, first));
  if (count == 0) return first;
  destructRange(first, count);
  const char* const following = static_cast<char*>(last);
  const std::size_t tail = static_cast<std::size_t>(slot(size_) - following);
  moveTail(static_cast<char*>(first), following, tail, typeUtil_->elementSize);
  size_ -= count;
  return first;
}

void VectorImpl::swap(VectorImpl& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  std::swap(capacity_, other.capacity_);
}

void VectorImpl::copy(const VectorImpl& other) {
  if (this == &other) return;
  clear();
  append(other);
}

void VectorImpl::assign(const void* first, const void* last) {
  assign(first, last, typeUtil_->distance, typeUtil_->copyConstructRange);
}

void VectorImpl::assign(const void* first, const void* last, Distance distance, CopyRange copyRange) {
  clear();
  const int count = detail::toCount(distance(last, first));
  if (count == 0) return;
  reserve(count);
  copyRange(data_, first, count);
  size_ = count;
}

} // namespace qv
