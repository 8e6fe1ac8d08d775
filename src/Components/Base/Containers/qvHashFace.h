// What the hash sets and maps have in common: the record of a type, the iterator, and the typed operations
// over the untyped table.
#pragma once

#include "Base/Containers/qvHashFunction.h"
#include "Base/Containers/qvHashTableImpl.h"
#include "Base/Containers/qvKeyed.h"
#include "Base/Containers/qvPair.h"
#include "Base/Containers/qvRelocatable.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

namespace qv::detail {

/// The element in a hash table's node.
template <class Element>
struct HashNode {
  static constexpr std::size_t offset() noexcept {
    return alignedUp(sizeof(HashTableImpl::HashNodeImpl), alignof(Element));
  }
  static Element& element(const HashTableImpl::HashNodeImpl* node) noexcept {
    char* const bytes = const_cast<char*>(reinterpret_cast<const char*>(node));
    return *reinterpret_cast<Element*>(bytes + offset());
  }
};

/// The record of one table type.
template <class Key, class Mapped, class Equal>
struct HashRecord {
  using Keyed = KeyedElement<Key, Mapped>;
  using Element = typename Keyed::Type;

  static bool equal(const void* nodeKey, const void* key) {
    return Equal()(*static_cast<const Key*>(nodeKey), *static_cast<const Key*>(key));
  }

  static constexpr HashTableImpl::TypeUtil make() {
    constexpr std::size_t offset = HashNode<Element>::offset();
    constexpr std::size_t alignment = std::max(alignof(HashTableImpl::HashNodeImpl), alignof(Element));
    HashTableImpl::TypeUtil record{};
    record.nodeSize = static_cast<std::int32_t>(alignedUp(offset + sizeof(Element), alignment));
    record.valueSize = std::is_void_v<Mapped> ? 0 : static_cast<std::int32_t>(sizeof(typename Keyed::Value));
    record.dataOffset = static_cast<std::int32_t>(offset);
    record.keyOffset = record.dataOffset;
    record.valueOffset = static_cast<std::int32_t>(offset + Keyed::valueOffset);
    record.equal = &equal;
    setElementFunctions<Key, Mapped>(record);
    return record;
  }
};

template <class Key, class Mapped, class Equal>
inline constexpr HashTableImpl::TypeUtil hashRecord = HashRecord<Key, Mapped, Equal>::make();

/// A place in a hash table. Its element stays good until it is erased, the order only until the next
/// insertion.
template <class Element>
class HashIterator {
  using Node = HashTableImpl::HashNodeImpl;

public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = std::remove_cv_t<Element>;
  using difference_type = std::ptrdiff_t;
  using pointer = Element*;
  using reference = Element&;

  HashIterator() = default;
  HashIterator(const HashTableImpl* table, const Node* node) noexcept : table_(table), node_(node) {}
  /// A constant iterator to the same place.
  operator HashIterator<const Element>() const noexcept requires(!std::is_const_v<Element>) {
    return HashIterator<const Element>(table_, node_);
  }
  reference operator*() const noexcept { return HashNode<Element>::element(node_); }
  pointer operator->() const noexcept { return std::addressof(**this); }
  HashIterator& operator++() noexcept {
    node_ = node_->nextItem(table_);
    return *this;
  }
  HashIterator operator++(int) noexcept {
    return HashIterator(table_, std::exchange(node_, node_->nextItem(table_)));
  }
  friend bool operator==(const HashIterator& a, const HashIterator& b) noexcept { return a.node_ == b.node_; }

  /// The node of the untyped core; null at the end.
  [[nodiscard]] Node* node() const noexcept { return const_cast<Node*>(node_); }

private:
  const HashTableImpl* table_ = nullptr;
  const Node* node_ = nullptr;
};

/// The typed face of a hash table with unique keys; the base of `qv::hash_set` and `qv::hash_map`. Elements
/// stay where they are until they are erased; their order may change with every insertion. Hash and equality
/// are stateless. Keys are copied in; values are moved where they are given as temporaries. Not thread-safe,
/// but for reading.
template <class Key, class Mapped, class Hash, class Equal>
class HashFace : private HashTableImpl {
protected:
  using Keyed = KeyedElement<Key, Mapped>;
  using Element = typename Keyed::Type;

public:
  using key_type = Key;
  using value_type = std::remove_cv_t<Element>;
  using hasher = Hash;
  using key_equal = Equal;
  using size_type = int;
  using difference_type = std::ptrdiff_t;
  using reference = Element&;
  using const_reference = const Element&;
  using iterator = HashIterator<Element>;
  using const_iterator = HashIterator<const Element>;

  HashFace() noexcept : HashTableImpl(record()) {}
  HashFace(std::initializer_list<value_type> elements) : HashFace(elements.begin(), elements.end()) {}
  template <std::input_iterator It>
  HashFace(It first, It last) : HashTableImpl(record()) {
    insert(first, last);
  }
  HashFace(const HashFace& other) : HashTableImpl(record()) { copy(other); }
  /// Takes the nodes and leaves `other` empty.
  HashFace(HashFace&& other) noexcept : HashTableImpl(record()) { HashTableImpl::swap(other); }
  ~HashFace() = default;

  HashFace& operator=(const HashFace& other) {
    copy(other);
    return *this;
  }
  HashFace& operator=(HashFace&& other) noexcept {
    HashFace(std::move(other)).swap(*this);
    return *this;
  }

  using HashTableImpl::bucket_count;
  using HashTableImpl::bucket_size;
  using HashTableImpl::clear;
  using HashTableImpl::load_factor;
  using HashTableImpl::max_bucket_count;
  using HashTableImpl::max_bucket_size;
  using HashTableImpl::max_load_factor;
  using HashTableImpl::rehash;
  using HashTableImpl::setNumElementsInBlock;
  using HashTableImpl::size;
  /// Makes room for `count` elements in all.
  void reserve(int count) { rehash(count); }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }

  [[nodiscard]] iterator begin() noexcept { return iterator(this, firstNode()); }
  [[nodiscard]] const_iterator begin() const noexcept { return const_iterator(this, firstNode()); }
  [[nodiscard]] iterator end() noexcept { return iterator(this, nullptr); }
  [[nodiscard]] const_iterator end() const noexcept { return const_iterator(this, nullptr); }
  [[nodiscard]] const_iterator cbegin() const noexcept { return begin(); }
  [[nodiscard]] const_iterator cend() const noexcept { return end(); }

  /// @{ The element with that key; `end()` where there is none.
  [[nodiscard]] iterator find(const Key& key) { return iterator(this, findKey(key)); }
  [[nodiscard]] const_iterator find(const Key& key) const { return const_iterator(this, findKey(key)); }
  /// @}
  [[nodiscard]] bool contains(const Key& key) const { return findKey(key) != nullptr; }
  [[nodiscard]] int count(const Key& key) const { return contains(key) ? 1 : 0; }

  /// @{ Inserts an element, unless its key is there already. True comes with a new element.
  pair<iterator, bool> insert(const value_type& element) {
    return insertCopy(Keyed::key(element), Keyed::value(element));
  }
  pair<iterator, bool> insert(value_type&& element) {
    if constexpr (isWorthMoving<Mapped>) {
      const pair<iterator, bool> result = insertKey(Keyed::key(element));
      if (result.second) result.first->second = std::move(element.second);
      return result;
    } else {
      return insertCopy(Keyed::key(element), Keyed::value(element));
    }
  }
  template <class... Args>
  pair<iterator, bool> emplace(Args&&... args) {
    return insert(value_type(std::forward<Args>(args)...));
  }
  template <std::input_iterator It>
  void insert(It first, It last) {
    for (; first != last; ++first) insert(*first);
  }
  void insert(std::initializer_list<value_type> elements) { insert(elements.begin(), elements.end()); }
  /// @}

  /// @{ Drops an element, or a range; returns the place of what followed.
  iterator erase(const_iterator position) {
    const_iterator following = position;
    ++following;
    eraseNode(position.node());
    return iterator(this, following.node());
  }
  iterator erase(const_iterator first, const_iterator last) {
    while (first != last) first = erase(first);
    return iterator(this, last.node());
  }
  /// @}
  /// Drops the element with that key, which may lie in it. Returns how many there were.
  int erase(const Key& key) {
    HashNodeImpl** const link = findLinkInline(Hash()(key), equalTo(key));
    if (!link) return 0;
    eraseLinked(link);
    return 1;
  }

  void copy(const HashFace& other) {
    static_assert(isCopyable<Mapped>);
    HashTableImpl::copy(&other);
  }
  void swap(HashFace& other) noexcept { HashTableImpl::swap(other); }
  friend void swap(HashFace& a, HashFace& b) noexcept { a.swap(b); }

  /// Equal if both hold the same elements, in whatever order.
  friend bool operator==(const HashFace& a, const HashFace& b) {
    return a.size() == b.size() && std::all_of(a.begin(), a.end(), [&b](const Element& element) {
             const const_iterator same = b.find(Keyed::key(element));
             return same != b.end() && *same == element;
           });
  }

protected:
  /// The element with that key, inserted with a default value where it is missing.
  Element& elementAt(const Key& key) {
    return HashNode<Element>::element(get(Hash()(key), std::addressof(key)));
  }
  /// Inserts a key with a default value, unless the key is there already.
  pair<iterator, bool> insertKey(const Key& key) {
    const int before = size();
    HashNodeImpl* const node = get(Hash()(key), std::addressof(key));
    return {iterator(this, node), size() != before};
  }

private:
  friend struct ContainerCheck;

  static const TypeUtil* record() noexcept {
    static_assert(hasHeapAlignment<Element>, "the containers take their memory from the C heap");
    static_assert(std::is_empty_v<Hash> && std::is_empty_v<Equal>, "hash and equality have no state");
    return &hashRecord<Key, Mapped, Equal>;
  }

  const HashNodeImpl* findKey(const Key& key) const { return findKey(key, Hash()(key)); }
  const HashNodeImpl* findKey(const Key& key, std::uint64_t hash) const {
    return findNodeInline(hash, equalTo(key));
  }
  static auto equalTo(const Key& key) {
    return [&key](const HashNodeImpl* node) {
      return Equal()(Keyed::key(HashNode<Element>::element(node)), key);
    };
  }
  pair<iterator, bool> insertCopy(const Key& key, const void* value) {
    static_assert(isCopyable<Mapped>);
    const std::uint64_t hash = Hash()(key);
    if (const HashNodeImpl* const node = findKey(key, hash)) return {iterator(this, node), false};
    return {iterator(this, insertMissing(hash, std::addressof(key), value)), true};
  }
};

} // namespace qv::detail
