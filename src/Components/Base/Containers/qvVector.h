// The typed face of the growing array: casts over the untyped core, which holds all logic.
#pragma once

#include "Base/Containers/qvRelocatable.h"
#include "Base/Containers/qvVectorImpl.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

namespace qv {

namespace detail {

template <class T>
struct VectorElement {
  static void copy(void* dst, const void* src) { std::construct_at(static_cast<T*>(dst), *cast(src)); }
  static void copyRange(void* dst, const void* src, int count) {
    std::uninitialized_copy_n(cast(src), count, static_cast<T*>(dst));
  }
  static void construct(void* element) { std::construct_at(static_cast<T*>(element)); }
  static void constructRange(void* first, int count) {
    std::uninitialized_value_construct_n(static_cast<T*>(first), count);
  }
  static void destruct(void* element) { std::destroy_at(static_cast<T*>(element)); }
  static void destructRange(void* first, int count) { std::destroy_n(static_cast<T*>(first), count); }
  static std::int64_t distance(const void* last, const void* first) { return cast(last) - cast(first); }
  static const T* cast(const void* element) { return static_cast<const T*>(element); }

  /// Elements that can only be moved have no copy functions; the face then offers no copying operation.
  static constexpr VectorImpl::TypeUtil makeRecord() {
    VectorImpl::TypeUtil record{nullptr, nullptr, nullptr, nullptr, &distance, sizeof(T)};
    if constexpr (std::is_copy_constructible_v<T>) {
      record.copyConstruct = &copy;
      record.copyConstructRange = &copyRange;
    }
    if constexpr (!std::is_trivially_destructible_v<T>) {
      record.destruct = &destruct;
      record.destructRange = &destructRange;
    }
    return record;
  }
};

template <class T>
inline constexpr VectorImpl::TypeUtil vectorRecord = VectorElement<T>::makeRecord();

} // namespace detail

/// A growing array of `T`, which must be relocatable (see `qv::isRelocatable`). Iterators are plain pointers,
/// invalid after anything that may grow the array. One-element operations may be given an element of the
/// array itself; ranges must lie outside it. Nothing checks an index, a position, or that there is an element
/// to take away. More than 2^31 - 1 elements, or 4 GiB of them, end the process as exhausted memory does. Not
/// thread-safe, but for reading.
template <class T>
class vector : private VectorImpl {
public:
  using value_type = T;
  using size_type = int;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using const_reference = const T&;
  using pointer = T*;
  using const_pointer = const T*;
  using iterator = T*;
  using const_iterator = const T*;
  using reverse_iterator = std::reverse_iterator<iterator>;
  using const_reverse_iterator = std::reverse_iterator<const_iterator>;

  vector() noexcept : VectorImpl(record()) {}
  /// `count` value-initialised elements.
  explicit vector(int count) : VectorImpl(count, &Element::constructRange, record()) {}
  /// `count` copies of `value`.
  vector(int count, const T& value) : VectorImpl(record()) { setSize(count, value); }
  vector(std::initializer_list<T> values) : VectorImpl(record()) { assign(values); }
  template <std::input_iterator It>
  vector(It first, It last) : VectorImpl(record()) {
    append(first, last);
  }
  /// A copy with an exact capacity.
  vector(const vector& other) : VectorImpl(other) { static_assert(std::is_copy_constructible_v<T>); }
  /// Takes the elements and leaves `other` empty.
  vector(vector&& other) noexcept : VectorImpl(record()) { VectorImpl::swap(other); }
  ~vector() = default;

  vector& operator=(const vector& other) {
    copy(other);
    return *this;
  }
  vector& operator=(vector&& other) noexcept {
    vector(std::move(other)).swap(*this);
    return *this;
  }
  vector& operator=(std::initializer_list<T> values) {
    assign(values);
    return *this;
  }

  using VectorImpl::capacity;
  using VectorImpl::clear;
  using VectorImpl::reserve;
  using VectorImpl::size;
  [[nodiscard]] bool empty() const noexcept { return size_ == 0; }

  [[nodiscard]] T* data() noexcept { return static_cast<T*>(data_); }
  [[nodiscard]] const T* data() const noexcept { return static_cast<const T*>(data_); }
  [[nodiscard]] iterator begin() noexcept { return data(); }
  [[nodiscard]] const_iterator begin() const noexcept { return data(); }
  [[nodiscard]] iterator end() noexcept { return data() + size_; }
  [[nodiscard]] const_iterator end() const noexcept { return data() + size_; }
  [[nodiscard]] const_iterator cbegin() const noexcept { return begin(); }
  [[nodiscard]] const_iterator cend() const noexcept { return end(); }
  [[nodiscard]] reverse_iterator rbegin() noexcept { return reverse_iterator(end()); }
  [[nodiscard]] const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
  [[nodiscard]] reverse_iterator rend() noexcept { return reverse_iterator(begin()); }
  [[nodiscard]] const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }

  [[nodiscard]] T& operator[](std::ptrdiff_t index) noexcept { return data()[index]; }
  [[nodiscard]] const T& operator[](std::ptrdiff_t index) const noexcept { return data()[index]; }
  [[nodiscard]] T& front() noexcept { return *begin(); }
  [[nodiscard]] const T& front() const noexcept { return *begin(); }
  [[nodiscard]] T& back() noexcept { return end()[-1]; }
  [[nodiscard]] const T& back() const noexcept { return end()[-1]; }

  /// Drops the surplus, or adds value-initialised elements; grows to exactly `count`.
  void setSize(int count) { VectorImpl::setSize(count, &Element::constructRange); }
  /// Drops the surplus, or adds copies of `value`; grows to exactly `count`.
  void setSize(int count, const T& value) {
    const T copyOfValue(value);
    VectorImpl::setSize(count, static_cast<const void*>(&copyOfValue));
  }
  /// @{ The same.
  void resize(int count) { setSize(count); }
  void resize(int count, const T& value) { setSize(count, value); }
  /// @}
  /// Gives back the memory that no element uses.
  void shrink_to_fit() { setCapacity(size_); }

  /// @{ Adds one element at the end and returns it. The capacity rises by 8 while it is below 32, then
  /// doubles.
  T& append(const T& value) { return emplace_back(value); }
  T& append(T&& value) { return emplace_back(std::move(value)); }
  T& push_back(const T& value) { return emplace_back(value); }
  T& push_back(T&& value) { return emplace_back(std::move(value)); }
  template <class... Args>
  T& emplace_back(Args&&... args) {
    if constexpr (detail::isObjectPointer<T>) {
      return appendPointer(T{std::forward<Args>(args)...});
    } else {
      // The element is made before the block moves, so that an argument may lie in this vector.
      Staged staged(std::forward<Args>(args)...);
      return *staged.moveTo(size_ < capacity_ ? data() + size_++ : appendAndReturnPtr());
    }
  }
  /// @}
  /// Adds copies of the other's elements; the capacity becomes exactly the sum of both sizes.
  void append(const vector& other) {
    static_assert(std::is_copy_constructible_v<T>);
    VectorImpl::append(other);
  }
  /// Adds copies of a range.
  template <std::input_iterator It>
  void append(It first, It last) {
    if constexpr (std::forward_iterator<It>)
      reserve(static_cast<int>(std::min<std::int64_t>(size_ + std::distance(first, last), INT32_MAX)));
    for (; first != last; ++first) emplace_back(*first);
  }

  /// @{ Inserts in front of `position`; returns the place of the first new element.
  iterator insert(const_iterator position, const T& value) { return emplace(position, value); }
  iterator insert(const_iterator position, T&& value) { return emplace(position, std::move(value)); }
  iterator insert(const_iterator position, int count, const T& value) {
    const std::ptrdiff_t index = position - begin();
    const T copyOfValue(value);
    VectorImpl::insert(detail::untyped(position), count, static_cast<const void*>(&copyOfValue));
    return begin() + index;
  }
  template <std::input_iterator It>
  iterator insert(const_iterator position, It first, It last) {
    const std::ptrdiff_t index = position - begin();
    if constexpr (std::is_convertible_v<It, const T*>) {
      VectorImpl::insert(detail::untyped(position), static_cast<const T*>(first),
                         static_cast<const T*>(last));
    } else {
      const vector values(first, last);
      VectorImpl::insert(detail::untyped(position), values.begin(), values.end());
    }
    return begin() + index;
  }
  iterator insert(const_iterator position, std::initializer_list<T> values) {
    return insert(position, values.begin(), values.end());
  }
  template <class... Args>
  iterator emplace(const_iterator position, Args&&... args) {
    if constexpr (detail::isObjectPointer<T>) {
      return static_cast<T*>(
          insertAndAssignPtr(detail::untyped(position), detail::untyped(T{std::forward<Args>(args)...})));
    } else {
      Staged staged(std::forward<Args>(args)...);
      return staged.moveTo(insertAndReturnPtr(detail::untyped(position)));
    }
  }
  /// @}

  /// @{ Drops the last element.
  using VectorImpl::eraseBack;
  void pop_back() { VectorImpl::eraseBack(); }
  /// @}
  /// @{ Drops what stands at `position`, or from `first` up to `last`; returns the place of what followed.
  iterator erase(const_iterator position) {
    return static_cast<T*>(VectorImpl::erase(detail::untyped(position)));
  }
  iterator erase(const_iterator first, const_iterator last) {
    return static_cast<T*>(VectorImpl::erase(detail::untyped(first), detail::untyped(last)));
  }
  /// @}

  /// Replaces the elements; a block that is large enough is kept.
  template <std::input_iterator It>
  void assign(It first, It last) {
    if constexpr (std::is_convertible_v<It, const T*>) {
      VectorImpl::assign(static_cast<const T*>(first), static_cast<const T*>(last));
    } else {
      clear();
      append(first, last);
    }
  }
  void assign(std::initializer_list<T> values) { assign(values.begin(), values.end()); }
  void assign(int count, const T& value) {
    const T copyOfValue(value);
    clear();
    setSize(count, copyOfValue);
  }
  /// Makes this a copy; the capacity becomes exactly the other's size, and a copy of nothing frees the block.
  void copy(const vector& other) {
    static_assert(std::is_copy_constructible_v<T>);
    VectorImpl::copy(other);
  }
  void swap(vector& other) noexcept { VectorImpl::swap(other); }
  friend void swap(vector& a, vector& b) noexcept { a.swap(b); }

  /// @{ The first element equal to `value`; `end()` where there is none.
  [[nodiscard]] iterator find(const T& value) { return std::find(begin(), end(), value); }
  [[nodiscard]] const_iterator find(const T& value) const { return std::find(begin(), end(), value); }
  [[nodiscard]] bool contains(const T& value) const { return find(value) != end(); }
  /// @}

  friend bool operator==(const vector& a, const vector& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
  }
  friend bool operator<(const vector& a, const vector& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
  }

private:
  friend struct detail::ContainerCheck;
  using Element = detail::VectorElement<T>;

  /// A new element on its way to its place, where its bytes go.
  union Staged {
    template <class... Args>
    explicit Staged(Args&&... args) : value(std::forward<Args>(args)...) {}
    Staged(const Staged&) = delete;
    ~Staged() {}
    T* moveTo(void* slot) const {
      return static_cast<T*>(std::memcpy(slot, static_cast<const void*>(std::addressof(value)), sizeof(T)));
    }
    T value;
  };

  static const TypeUtil* record() noexcept {
    static_assert(
        isRelocatable<T>,
        "qv::vector moves its elements as bytes. If T allows that (it owns memory but holds no pointer "
        "into itself), say so: template <> inline constexpr bool qv::isRelocatable<T> = true; "
        "otherwise keep T in a qv::list, or pointers to T in the vector");
    static_assert(detail::hasHeapAlignment<T>, "qv::vector takes its memory from the C heap");
    if constexpr (detail::isObjectPointer<T>)
      return &sPointerTypeUtil;
    else
      return &detail::vectorRecord<T>;
  }

  T& appendPointer(T value) {
    if (++size_ <= capacity_)
      end()[-1] = value;
    else
      growByOneAndAssignPtr(detail::untyped(value));
    return end()[-1];
  }
};

template <class T>
inline constexpr bool isRelocatable<vector<T>> = true;

} // namespace qv
