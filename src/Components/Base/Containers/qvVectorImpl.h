// The untyped core of qv::vector: a block of elements that it moves as bytes and knows through a record of
// functions. All element types share this one copy of the code.
#pragma once

#include "Base/qvBase.h"

#include <cstddef>
#include <cstdint>

namespace qv {

namespace detail {
struct ContainerCheck;
}

/// A growing array of elements of one size. Elements are moved by `realloc` and `memmove`, without a call of
/// their functions. Positions are element addresses, invalid after anything that may grow the block. Elements
/// and counts are checked nowhere: a position must lie in the block, counts are not negative, and what is
/// erased must exist. A block holds at most 4 GiB - 1 bytes; asking for more, like exhausted memory, ends the
/// process. Not thread-safe, but for reading.
class VectorImpl {
public:
  /// What the core knows of an element type: one constant record for each.
  struct TypeUtil {
    /// Copy-constructs one element into raw memory.
    void (*copyConstruct)(void* dst, const void* src);
    /// Copy-constructs `count` contiguous elements into raw memory.
    void (*copyConstructRange)(void* dst, const void* src, int count);
    /// Destroys one element. Null if there is nothing to do.
    void (*destruct)(void* element);
    /// Destroys `count` contiguous elements. Null if there is nothing to do.
    void (*destructRange)(void* first, int count);
    /// Number of elements from `first` to `last`.
    std::int64_t (*distance)(const void* last, const void* first);
    /// Bytes of one element.
    std::uint32_t elementSize;
  };

  using Construct = void (*)(void* element);
  using ConstructRange = void (*)(void* first, int count);
  using Copy = void (*)(void* dst, const void* src);
  using CopyRange = void (*)(void* dst, const void* src, int count);
  using Distance = std::int64_t (*)(const void* last, const void* first);

  /// The record of all pointer types: word copies and no destructors.
  QV_BASE_API static const TypeUtil sPointerTypeUtil;

  /// Empty, without a block. `typeUtil` must outlive the vector.
  explicit VectorImpl(const TypeUtil* typeUtil) noexcept { initialize(typeUtil); }
  /// `count` elements, built by `construct`, or left as raw memory where that is null.
  VectorImpl(int count, ConstructRange construct, const TypeUtil* typeUtil) : VectorImpl(typeUtil) {
    initialize(count, construct, typeUtil);
  }
  /// `count` copies of `value`; `count` is at least 1.
  VectorImpl(int count, const void* value, const TypeUtil* typeUtil) : VectorImpl(typeUtil) {
    initialize(count, value, typeUtil);
  }
  /// A copy of the elements; its capacity is exact.
  VectorImpl(const VectorImpl& other) : VectorImpl(other.typeUtil_) { append(other); }
  VectorImpl& operator=(const VectorImpl&) = delete;
  ~VectorImpl() { freeStorage(); }

  /// @{ The constructors' work, on raw memory or on a vector whose storage was released.
  void initialize(const TypeUtil* typeUtil) noexcept {
    data_ = nullptr;
    size_ = 0;
    capacity_ = 0;
    typeUtil_ = typeUtil;
  }
  QV_BASE_API void initialize(int count, ConstructRange construct, const TypeUtil* typeUtil);
  QV_BASE_API void initialize(int count, const void* value, const TypeUtil* typeUtil);
  QV_BASE_API void initialize(const VectorImpl& other);
  /// @}

  [[nodiscard]] int size() const noexcept { return size_; }
  [[nodiscard]] int capacity() const noexcept { return capacity_; }

  /// Makes room for `capacity` elements in all, exactly; does nothing where there is as much already.
  QV_BASE_API void reserve(int capacity);
  /// Destroys the elements; keeps the block.
  QV_BASE_API void clear();
  /// Destroys the surplus, or grows to exactly `size` and builds the new elements by `construct`, if not
  /// null.
  QV_BASE_API void setSize(int size, ConstructRange construct);
  /// The same; new elements are copies of `value`.
  QV_BASE_API void setSize(int size, const void* value);

  /// @{ Adds one element at the end: built by `construct` (raw where that is null), or a copy of `value`,
  /// which must not lie in this vector, or the pointer itself. Where the block must grow, the capacity rises
  /// by 8 while it is below 32, and doubles from there.
  QV_BASE_API void append(Construct construct);
  QV_BASE_API void append(const void* value);
  QV_BASE_API void append(const void* value, Copy copyElement);
  QV_BASE_API void appendAndAssignPtr(const void* ptr);
  /// @}
  /// Adds copies of the other's elements, which may be this vector itself. The capacity becomes exactly the
  /// sum of both sizes, even where it was larger; a sum of 0 releases the block.
  QV_BASE_API void append(const VectorImpl& other);

  /// @{ Inserts one element in front of `position` and returns its place; grows as `append` does. The value
  /// must not lie in this vector.
  QV_BASE_API void* insert(void* position, Construct construct);
  QV_BASE_API void* insert(void* position, const void* value);
  QV_BASE_API void* insert(void* position, const void* value, Copy copyElement);
  QV_BASE_API void* insertAndAssignPtr(void* position, const void* ptr);
  /// @}
  /// @{ Inserts copies in front of `position`: `count` of `value`, or of the range, neither of which may lie
  /// in this vector. Where the block must grow, it grows to exactly the new size. A range of another type
  /// needs its own functions, and elements of the same size.
  QV_BASE_API void insert(void* position, int count, const void* value);
  QV_BASE_API void insert(void* position, const void* first, const void* last);
  QV_BASE_API void insert(void* position, const void* first, const void* last, Distance distance,
                          CopyRange copyRange);
  /// @}

  /// Destroys the last element.
  QV_BASE_API void eraseBack();
  /// Destroys one element and closes the gap. Returns `position`.
  QV_BASE_API void* erase(void* position);
  /// Destroys a range and closes the gap. Returns `first`.
  QV_BASE_API void* erase(void* first, void* last);

  /// Exchanges the elements with a vector of the same element type; each vector keeps its record.
  QV_BASE_API void swap(VectorImpl& other) noexcept;
  /// Makes this a copy of `other`; the capacity becomes exactly the other's size, so that a copy of an empty
  /// vector releases the block. Nothing for the vector itself.
  QV_BASE_API void copy(const VectorImpl& other);
  /// @{ Replaces the elements by copies of a range outside this vector; keeps a block that is large enough.
  QV_BASE_API void assign(const void* first, const void* last);
  QV_BASE_API void assign(const void* first, const void* last, Distance distance, CopyRange copyRange);
  /// @}

protected:
  /// Destroys the elements and frees the block; leaves the fields as they are.
  QV_BASE_API void freeStorage();
  /// Calls the record's function, if there is one.
  void destruct(void* element) const {
    if (typeUtil_->destruct) typeUtil_->destruct(element);
  }
  void destructRange(void* first, int count) const {
    if (typeUtil_->destructRange) typeUtil_->destructRange(first, count);
  }
  /// Reallocates to exactly that capacity, at least the size; 0 destroys the elements and releases the block.
  /// Leaves the size as it is. Returns the block.
  QV_BASE_API void* setCapacity(int capacity);
  /// Grows by the rule of `append`. Returns the block.
  QV_BASE_API void* growByOne();
  /// The slow path of an inline append of a pointer: the size is raised already, the last slot has no room
  /// yet.
  QV_BASE_API void growByOneAndAssignPtr(const void* ptr);
  /// @{ Adds a slot of raw memory at the end, or in front of `position`, and returns its address.
  QV_BASE_API void* append();
  QV_BASE_API void* appendAndReturnPtr();
  QV_BASE_API void* insert(void* position);
  QV_BASE_API void* insertAndReturnPtr(void* position);
  /// @}

  void* data_;
  std::int32_t size_;
  std::int32_t capacity_;
  const TypeUtil* typeUtil_;

private:
  friend struct detail::ContainerCheck;
  struct Layout;

  [[nodiscard]] std::size_t bytes(std::ptrdiff_t count) const noexcept {
    return static_cast<std::size_t>(count) * typeUtil_->elementSize;
  }
  [[nodiscard]] char* slot(std::ptrdiff_t index) const noexcept {
    return static_cast<char*>(data_) + bytes(index);
  }
  void makeRoomForOne();
  class Gap;
  template <class Fill>
  void* insertGap(void* position, int count, bool exact, Fill fill);
};

static_assert(sizeof(VectorImpl) == 2 * sizeof(void*) + 8);

} // namespace qv
