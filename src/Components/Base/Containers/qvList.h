// The typed face of the linked list: casts and comparisons over the untyped core, which holds all other
// logic.
#pragma once

#include "Base/Containers/qvLess.h"
#include "Base/Containers/qvListImpl.h"
#include "Base/Containers/qvRelocatable.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

namespace qv {

namespace detail {

template <class T>
struct ListElement {
  struct Node : ListImpl::Node {
    T element;
  };
  static constexpr std::size_t offset = alignedUp(sizeof(ListImpl::Node), alignof(T));

  static T& of(const ListImpl::Node* node) noexcept {
    char* const bytes = const_cast<char*>(reinterpret_cast<const char*>(node));
    return *reinterpret_cast<T*>(bytes + offset);
  }
  static const T& cast(const void* element) { return *static_cast<const T*>(element); }
  static void copy(void* dst, const void* src) { std::construct_at(static_cast<T*>(dst), cast(src)); }
  static void destruct(void* element) { std::destroy_at(static_cast<T*>(element)); }

  static constexpr ListImpl::TypeUtil makeRecord() {
    ListImpl::TypeUtil record{sizeof(Node), offset, nullptr, nullptr};
    if constexpr (std::is_copy_constructible_v<T>) record.copyConstruct = &copy;
    if constexpr (!std::is_trivially_destructible_v<T>) record.destruct = &destruct;
    return record;
  }
};

template <class T>
inline constexpr ListImpl::TypeUtil listRecord = ListElement<T>::makeRecord();

} // namespace detail

/// A doubly linked list of `T`, any type that can be destroyed. Elements never move: pointers and iterators
/// to an element stay good until it is erased, also when it changes to another list. Nothing checks a
/// position, or that there is an element to take away. Not thread-safe, but for reading.
template <class T>
class list : private ListImpl {
  using Element = detail::ListElement<T>;

  template <class Value>
  class Iterator {
  public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = Value*;
    using reference = Value&;

    Iterator() = default;
    /// A constant iterator to the same place.
    operator Iterator<const T>() const noexcept requires(!std::is_const_v<Value>) {
      return Iterator<const T>(node_);
    }
    reference operator*() const noexcept { return Element::of(node_); }
    pointer operator->() const noexcept { return std::addressof(**this); }
    Iterator& operator++() noexcept {
      node_ = node_->next;
      return *this;
    }
    Iterator& operator--() noexcept {
      node_ = node_->prev;
      return *this;
    }
    Iterator operator++(int) noexcept { return Iterator(std::exchange(node_, node_->next)); }
    Iterator operator--(int) noexcept { return Iterator(std::exchange(node_, node_->prev)); }
    friend bool operator==(const Iterator&, const Iterator&) = default;

  private:
    friend class list;
    explicit Iterator(const ListImpl::Node* node) noexcept : node_(const_cast<ListImpl::Node*>(node)) {}
    ListImpl::Node* node_ = nullptr;
  };

public:
  using value_type = T;
  using size_type = int;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using const_reference = const T&;
  using iterator = Iterator<T>;
  using const_iterator = Iterator<const T>;
  using reverse_iterator = std::reverse_iterator<iterator>;
  using const_reverse_iterator = std::reverse_iterator<const_iterator>;

  list() noexcept : ListImpl(record()) {}
  list(std::initializer_list<T> values) : list(values.begin(), values.end()) {}
  template <std::input_iterator It>
  list(It first, It last) : ListImpl(record()) {
    insert(end(), first, last);
  }
  list(const list& other) : ListImpl(other) { static_assert(std::is_copy_constructible_v<T>); }
  /// Takes the nodes and leaves `other` empty.
  list(list&& other) noexcept : ListImpl(record()) { ListImpl::swap(other); }
  ~list() = default;

  /// Nodes that are there get new elements and stay.
  list& operator=(const list& other) {
    copy(other);
    return *this;
  }
  list& operator=(list&& other) noexcept {
    list(std::move(other)).swap(*this);
    return *this;
  }
  list& operator=(std::initializer_list<T> values) {
    assign(values);
    return *this;
  }

  [[nodiscard]] int size() const noexcept { return ListImpl::size(); }
  using ListImpl::clear;
  using ListImpl::empty;

  [[nodiscard]] iterator begin() noexcept { return iterator(ListImpl::begin()); }
  [[nodiscard]] const_iterator begin() const noexcept { return const_iterator(ListImpl::begin()); }
  [[nodiscard]] iterator end() noexcept { return iterator(ListImpl::end()); }
  [[nodiscard]] const_iterator end() const noexcept { return const_iterator(ListImpl::end()); }
  [[nodiscard]] const_iterator cbegin() const noexcept { return begin(); }
  [[nodiscard]] const_iterator cend() const noexcept { return end(); }
  [[nodiscard]] reverse_iterator rbegin() noexcept { return reverse_iterator(end()); }
  [[nodiscard]] const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
  [[nodiscard]] reverse_iterator rend() noexcept { return reverse_iterator(begin()); }
  [[nodiscard]] const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }

  [[nodiscard]] T& front() noexcept { return *begin(); }
  [[nodiscard]] const T& front() const noexcept { return *begin(); }
  [[nodiscard]] T& back() noexcept { return *--end(); }
  [[nodiscard]] const T& back() const noexcept { return *--end(); }

  /// @{ Adds one element at the end or the front and returns it.
  T& append(const T& value) { return *emplace(end(), value); }
  T& append(T&& value) { return *emplace(end(), std::move(value)); }
  T& push_back(const T& value) { return *emplace(end(), value); }
  T& push_back(T&& value) { return *emplace(end(), std::move(value)); }
  template <class... Args>
  T& emplace_back(Args&&... args) {
    return *emplace(end(), std::forward<Args>(args)...);
  }
  T& prepend(const T& value) { return *emplace(begin(), value); }
  T& prepend(T&& value) { return *emplace(begin(), std::move(value)); }
  T& push_front(const T& value) { return *emplace(begin(), value); }
  T& push_front(T&& value) { return *emplace(begin(), std::move(value)); }
  template <class... Args>
  T& emplace_front(Args&&... args) {
    return *emplace(begin(), std::forward<Args>(args)...);
  }
  /// @}
  /// @{ Adds copies of all elements of `other`, which may be this list itself.
  void append(const list& other) { insert(end(), other.begin(), other.end()); }
  void prepend(const list& other) { insert(begin(), other.begin(), other.end()); }
  /// @}

  /// @{ Inserts in front of `position`; returns the place of the (first) new element.
  iterator insert(const_iterator position, const T& value) { return emplace(position, value); }
  iterator insert(const_iterator position, T&& value) { return emplace(position, std::move(value)); }
  template <std::input_iterator It>
  iterator insert(const_iterator position, It first, It last) {
    Node* const before = position.node_->prev;
    if constexpr (std::is_convertible_v<It, const_iterator>) {
      ListImpl::insert(position.node_, const_iterator(first).node_, const_iterator(last).node_);
    } else {
      for (; first != last; ++first) emplace(position, *first);
    }
    return iterator(before->next);
  }
  iterator insert(const_iterator position, std::initializer_list<T> values) {
    return insert(position, values.begin(), values.end());
  }
  template <class... Args>
  iterator emplace(const_iterator position, Args&&... args) {
    if constexpr (detail::isObjectPointer<T>) {
      return iterator(insertAndAssignPtr(position.node_, detail::untyped(T{std::forward<Args>(args)...})));
    } else {
      NewNode made{*this, allocateNode()};
      std::construct_at(std::addressof(Element::of(made.node)), std::forward<Args>(args)...);
      ListImpl::insert(position.node_, made.node);
      return iterator(std::exchange(made.node, nullptr));
    }
  }
  /// @}

  /// @{ Drops the first or the last element.
  using ListImpl::eraseBack;
  using ListImpl::eraseFront;
  void pop_front() { ListImpl::eraseFront(); }
  void pop_back() { ListImpl::eraseBack(); }
  /// @}
  /// @{ Drops what stands at `position`, or from `first` up to `last`; returns the place of what followed.
  iterator erase(const_iterator position) { return iterator(ListImpl::erase(position.node_)); }
  iterator erase(const_iterator first, const_iterator last) {
    return iterator(ListImpl::erase(first.node_, last.node_));
  }
  /// @}
  /// Drops every element that equals `value`. Returns how many.
  int remove(const T& value) {
    const T copyOfValue(value);
    const int before = size();
    ListImpl::erase(std::addressof(copyOfValue), &searchFrom);
    return before - size();
  }
  /// Drops every element of which `predicate` is true. Returns how many.
  template <class Predicate>
  int remove_if(Predicate predicate) {
    const int before = size();
    for (const_iterator at = begin(); at != end();) at = predicate(*at) ? erase(at) : std::next(at);
    return before - size();
  }

  /// @{ Replaces the elements; nodes that are there get new elements and stay.
  template <std::input_iterator It>
  void assign(It first, It last) {
    copy(list(first, last));
  }
  void assign(const T* first, const T* last) {
    ListImpl::assign(first, last, static_cast<int>(sizeof(T)), &Element::copy);
  }
  void assign(const_iterator first, const_iterator last) { ListImpl::assign(first.node_, last.node_); }
  void assign(std::initializer_list<T> values) { assign(values.begin(), values.end()); }
  void copy(const list& other) {
    static_assert(std::is_copy_constructible_v<T>);
    ListImpl::copy(other);
  }
  /// @}

  /// @{ The first element equal to `value`; `end()` where there is none.
  [[nodiscard]] iterator find(const T& value) { return iterator(findNode(value)); }
  [[nodiscard]] const_iterator find(const T& value) const { return const_iterator(findNode(value)); }
  [[nodiscard]] bool contains(const T& value) const { return find(value) != end(); }
  /// @}

  /// Of each run of equal neighbours the last one survives; the standard list keeps the first.
  void unique() { ListImpl::unique(&equal); }
  /// @{ Merges a sorted list into this sorted list, or sorts. Both are stable and move no element.
  void merge(list& other) { merge(other, qv::less<T>()); }
  template <class Less>
  void merge(list& other, Less less) {
    if (&other != this) ListImpl::merge(other, std::addressof(less), &mergeBy<Less>);
  }
  void sort() { sort(qv::less<T>()); }
  template <class Less>
  void sort(Less less) {
    ListImpl::sort(std::addressof(less), &mergeBy<Less>);
  }
  /// @}
  using ListImpl::reverse;

  /// @{ Moves elements of `other` in front of `position` by relinking; iterators to them stay good. All
  /// elements (of another list), one (which is not `position`), or a range, which costs a walk along it.
  void splice(const_iterator position, list& other) noexcept { ListImpl::splice(position.node_, other); }
  void splice(const_iterator position, list& other, const_iterator element) noexcept {
    ListImpl::splice(position.node_, other, element.node_);
  }
  void splice(const_iterator position, list& other, const_iterator first, const_iterator last) noexcept {
    ListImpl::splice(position.node_, other, first.node_, last.node_);
  }
  /// @}

  void swap(list& other) noexcept { ListImpl::swap(other); }
  friend void swap(list& a, list& b) noexcept { a.swap(b); }

  friend bool operator==(const list& a, const list& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
  }
  friend bool operator<(const list& a, const list& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
  }

private:
  friend struct detail::ContainerCheck;

  /// Frees a node whose element could not be made.
  struct NewNode {
    list& owner;
    Node* node;
    ~NewNode() {
      if (node) owner.freeNode(node);
    }
  };

  static const TypeUtil* record() noexcept {
    static_assert(detail::hasHeapAlignment<T>, "qv::list takes its memory from the C heap");
    return &detail::listRecord<T>;
  }

  static bool equal(const void* a, const void* b) { return Element::cast(a) == Element::cast(b); }
  static Node* searchFrom(Node* start, const ListImpl& list, const void* value) {
    Node* node = start;
    while (node != list.end() && !(Element::of(node) == Element::cast(value))) node = node->next;
    return node;
  }
  static Node* search(const ListImpl& list, const void* value) {
    return searchFrom(const_cast<Node*>(list.begin()), list, value);
  }
  const Node* findNode(const T& value) const { return ListImpl::find(std::addressof(value), &search); }

  template <class Less>
  static void mergeBy(ListImpl& list, ListImpl& source, const void* argument) {
    const Less& less = *static_cast<const Less*>(argument);
    Node* place = list.begin();
    while (place != list.end() && !source.empty()) {
      Node* const next = source.begin();
      if (less(Element::of(next), Element::of(place))) {
        sTransferNode(place, next);
        ++list.getReferenceToSize();
        --source.getReferenceToSize();
      } else {
        place = place->next;
      }
    }
    list.splice(list.end(), source);
  }
};

} // namespace qv
