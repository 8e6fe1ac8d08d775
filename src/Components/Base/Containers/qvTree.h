// What the ordered sets and maps have in common: the record of a type with its inline walks, the iterator,
// and the typed operations over the untyped tree.
#pragma once

#include "Base/Containers/qvKeyed.h"
#include "Base/Containers/qvLess.h"
#include "Base/Containers/qvPair.h"
#include "Base/Containers/qvPrefetch.h"
#include "Base/Containers/qvRBTreeImpl.h"
#include "Base/Containers/qvRelocatable.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

namespace qv::detail {

/// The element in a tree's node. Small keys begin in the padding behind the colour.
template <class Element>
struct TreeNode {
  static constexpr std::size_t offset() noexcept {
    return alignedUp(RBTreeImpl::sHeaderSize, alignof(Element));
  }
  static Element& element(const RBTreeImpl::Node* node) noexcept {
    char* const bytes = const_cast<char*>(reinterpret_cast<const char*>(node));
    return *reinterpret_cast<Element*>(bytes + offset());
  }
};

/// The record of one tree type.
template <class Key, class Mapped, class Less>
struct TreeRecord {
  using Node = RBTreeImpl::Node;
  using Keyed = KeyedElement<Key, Mapped>;
  using Element = typename Keyed::Type;

  static const Key& keyOf(const Node* node) noexcept { return Keyed::key(TreeNode<Element>::element(node)); }
  static const Key& cast(const void* key) noexcept { return *static_cast<const Key*>(key); }
  static bool less(const void* a, const void* b) { return Less()(cast(a), cast(b)); }

  /// `condition ? a : b`. Random keys go either way at each node, and for scalars a comparison costs less
  /// than a wrong guess: they are walked without a branch.
  static const Node* chosen(bool condition, const Node* a, const Node* b) noexcept {
    if constexpr (std::is_scalar_v<Key>) {
      const std::uintptr_t mask = std::uintptr_t{0} - condition;
      return reinterpret_cast<const Node*>((reinterpret_cast<std::uintptr_t>(a) & mask) |
                                           (reinterpret_cast<std::uintptr_t>(b) & ~mask));
    } else {
      return condition ? a : b;
    }
  }
  /// Asks for both children: which one comes next is known only after the comparison.
  static const Node* visit(const Node* node) noexcept {
    prefetch(node->left);
    prefetch(node->right);
    return node;
  }
  /// Where a key is or belongs: the first node not less than it, and the free link that the walk ended at.
  struct Place {
    const Node* lowerBound;
    const Node* parent;
    bool toTheRight;
  };
  static Place placeOf(const RBTreeImpl* tree, const Key& key) {
    Place place{tree->end(), tree->end(), false};
    for (const Node* node = tree->root(); node;) {
      place.parent = visit(node);
      place.toTheRight = Less()(keyOf(node), key);
      place.lowerBound = chosen(place.toTheRight, place.lowerBound, node);
      node = chosen(place.toTheRight, node->right, node->left);
    }
    return place;
  }
  static Node* lowerBound(const RBTreeImpl* tree, const void* key) {
    return const_cast<Node*>(placeOf(tree, cast(key)).lowerBound);
  }
  static Node* upperBound(const RBTreeImpl* tree, const void* key) {
    const Key& wanted = cast(key);
    const Node* found = tree->end();
    for (const Node* node = tree->root(); node;) {
      const bool left = Less()(wanted, keyOf(visit(node)));
      found = chosen(left, node, found);
      node = chosen(left, node->left, node->right);
    }
    return const_cast<Node*>(found);
  }
  static bool findInsertPosition(RBTreeImpl* tree, const void* key, Node** parentOut) {
    const Key& wanted = cast(key);
    const Node* parent = tree->end();
    bool left = true;
    for (const Node* node = tree->root(); node; node = chosen(left, node->left, node->right)) {
      parent = node;
      left = Less()(wanted, keyOf(visit(node)));
    }
    *parentOut = const_cast<Node*>(parent);
    return left;
  }
  /// Recurses to the right only, so its depth is at most the tree's.
  static void destructSubtree(RBTreeImpl* tree, Node* root) {
    while (root) {
      destructSubtree(tree, root->right);
      Node* const left = root->left;
      std::destroy_at(std::addressof(TreeNode<Element>::element(root)));
      tree->freeNode(root);
      root = left;
    }
  }

  static constexpr RBTreeImpl::TypeUtil make() {
    constexpr std::size_t offset = TreeNode<Element>::offset();
    constexpr std::size_t alignment = std::max(alignof(RBTreeImpl::Node), alignof(Element));
    RBTreeImpl::TypeUtil record{};
    record.nodeSize = static_cast<std::int32_t>(alignedUp(offset + sizeof(Element), alignment));
    record.keyOffset = static_cast<std::int32_t>(offset);
    record.valueOffset = static_cast<std::int32_t>(offset + Keyed::valueOffset);
    record.less = &less;
    setElementFunctions<Key, Mapped>(record);
    record.destructSubtree = &destructSubtree;
    record.lowerBound = &lowerBound;
    record.upperBound = &upperBound;
    record.findInsertPosition = &findInsertPosition;
    return record;
  }
};

template <class Key, class Mapped, class Less>
inline constexpr RBTreeImpl::TypeUtil treeRecord = TreeRecord<Key, Mapped, Less>::make();

/// A place in a tree. Stays good until its element is erased.
template <class Element>
class TreeIterator {
public:
  using iterator_category = std::bidirectional_iterator_tag;
  using value_type = std::remove_cv_t<Element>;
  using difference_type = std::ptrdiff_t;
  using pointer = Element*;
  using reference = Element&;

  TreeIterator() = default;
  explicit TreeIterator(const RBTreeImpl::Node* node) noexcept : node_(const_cast<RBTreeImpl::Node*>(node)) {}
  /// A constant iterator to the same place.
  operator TreeIterator<const Element>() const noexcept requires(!std::is_const_v<Element>) {
    return TreeIterator<const Element>(node_);
  }
  reference operator*() const noexcept { return TreeNode<Element>::element(node_); }
  pointer operator->() const noexcept { return std::addressof(**this); }
  TreeIterator& operator++() noexcept {
    node_ = node_->next();
    return *this;
  }
  TreeIterator& operator--() noexcept {
    node_ = node_->prev();
    return *this;
  }
  TreeIterator operator++(int) noexcept { return TreeIterator(std::exchange(node_, node_->next())); }
  TreeIterator operator--(int) noexcept { return TreeIterator(std::exchange(node_, node_->prev())); }
  friend bool operator==(const TreeIterator&, const TreeIterator&) = default;

  /// The node of the untyped core.
  [[nodiscard]] RBTreeImpl::Node* node() const noexcept { return node_; }

private:
  RBTreeImpl::Node* node_ = nullptr;
};

/// The typed face of a tree; the base of `qv::set`, `qv::multiset`, `qv::map` and `qv::multimap`. Iterators
/// stay good until their element is erased. The order is stateless: `Less()(a, b)`. Keys are copied in;
/// values are moved where they are given as temporaries. Nothing checks a position. Not thread-safe, but for
/// reading.
template <class Key, class Mapped, class Less, bool unique>
class Tree : private RBTreeImpl {
protected:
  using Record = TreeRecord<Key, Mapped, Less>;
  using Keyed = KeyedElement<Key, Mapped>;
  using Element = typename Keyed::Type;

public:
  using key_type = Key;
  using value_type = std::remove_cv_t<Element>;
  using key_compare = Less;
  using size_type = int;
  using difference_type = std::ptrdiff_t;
  using reference = Element&;
  using const_reference = const Element&;
  using iterator = TreeIterator<Element>;
  using const_iterator = TreeIterator<const Element>;
  using reverse_iterator = std::reverse_iterator<iterator>;
  using const_reverse_iterator = std::reverse_iterator<const_iterator>;
  /// What an insertion gives: the element's place, and, where keys are unique, whether it is new.
  using Inserted = std::conditional_t<unique, pair<iterator, bool>, iterator>;

  Tree() noexcept : RBTreeImpl(record()) {}
  Tree(std::initializer_list<value_type> elements) : Tree(elements.begin(), elements.end()) {}
  template <std::input_iterator It>
  Tree(It first, It last) : RBTreeImpl(record()) {
    insert(first, last);
  }
  Tree(const Tree& other) : RBTreeImpl(other) { static_assert(isCopyable<Mapped>); }
  /// Takes the nodes and leaves `other` empty.
  Tree(Tree&& other) noexcept : RBTreeImpl(record()) { RBTreeImpl::swap(other); }
  ~Tree() = default;

  Tree& operator=(const Tree& other) {
    copy(other);
    return *this;
  }
  Tree& operator=(Tree&& other) noexcept {
    Tree(std::move(other)).swap(*this);
    return *this;
  }

  using RBTreeImpl::clear;
  using RBTreeImpl::setNumElementsInBlock;
  using RBTreeImpl::size;
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }

  [[nodiscard]] iterator begin() noexcept { return iterator(RBTreeImpl::begin()); }
  [[nodiscard]] const_iterator begin() const noexcept { return const_iterator(RBTreeImpl::begin()); }
  [[nodiscard]] iterator end() noexcept { return iterator(RBTreeImpl::end()); }
  [[nodiscard]] const_iterator end() const noexcept { return const_iterator(RBTreeImpl::end()); }
  [[nodiscard]] const_iterator cbegin() const noexcept { return begin(); }
  [[nodiscard]] const_iterator cend() const noexcept { return end(); }
  [[nodiscard]] reverse_iterator rbegin() noexcept { return reverse_iterator(end()); }
  [[nodiscard]] const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
  [[nodiscard]] reverse_iterator rend() noexcept { return reverse_iterator(begin()); }
  [[nodiscard]] const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }

  /// @{ The first element with that key; `end()` where there is none.
  [[nodiscard]] iterator find(const Key& key) { return iterator(findKey(key)); }
  [[nodiscard]] const_iterator find(const Key& key) const { return const_iterator(findKey(key)); }
  /// @}
  [[nodiscard]] bool contains(const Key& key) const { return findKey(key) != RBTreeImpl::end(); }
  [[nodiscard]] int count(const Key& key) const { return RBTreeImpl::count(std::addressof(key)); }
  /// @{ The first element not less than the key, or greater than it; `end()` where there is none.
  [[nodiscard]] iterator lowerBound(const Key& key) { return iterator(lower(key)); }
  [[nodiscard]] const_iterator lowerBound(const Key& key) const { return const_iterator(lower(key)); }
  [[nodiscard]] iterator upperBound(const Key& key) { return iterator(upper(key)); }
  [[nodiscard]] const_iterator upperBound(const Key& key) const { return const_iterator(upper(key)); }
  [[nodiscard]] iterator lower_bound(const Key& key) { return lowerBound(key); }
  [[nodiscard]] const_iterator lower_bound(const Key& key) const { return lowerBound(key); }
  [[nodiscard]] iterator upper_bound(const Key& key) { return upperBound(key); }
  [[nodiscard]] const_iterator upper_bound(const Key& key) const { return upperBound(key); }
  /// @}
  /// @{ Both bounds.
  [[nodiscard]] pair<iterator, iterator> equalRange(const Key& key) {
    return {lowerBound(key), upperBound(key)};
  }
  [[nodiscard]] pair<const_iterator, const_iterator> equalRange(const Key& key) const {
    return {lowerBound(key), upperBound(key)};
  }
  [[nodiscard]] pair<iterator, iterator> equal_range(const Key& key) { return equalRange(key); }
  [[nodiscard]] pair<const_iterator, const_iterator> equal_range(const Key& key) const {
    return equalRange(key);
  }
  /// @}

  /// @{ Inserts an element. Where keys are unique and the key is there, nothing changes; otherwise it goes
  /// behind its equals. An element that belongs next to `hint` costs no search.
  Inserted insert(const value_type& element) {
    static_assert(isCopyable<Mapped>);
    const int before = size();
    return inserted(insertCopy(Keyed::key(element), Keyed::value(element)), before);
  }
  Inserted insert(value_type&& element) {
    const int before = size();
    if constexpr (isWorthMoving<Mapped>) {
      Node* const node = insertCopy(Keyed::key(element));
      if (size() != before) TreeNode<Element>::element(node).second = std::move(element.second);
      return inserted(node, before);
    } else {
      return inserted(insertCopy(Keyed::key(element), Keyed::value(element)), before);
    }
  }
  iterator insert(const_iterator hint, const value_type& element) {
    static_assert(isCopyable<Mapped>);
    return iterator(insertCopyAt(hint.node(), Keyed::key(element), Keyed::value(element)));
  }
  template <class... Args>
  Inserted emplace(Args&&... args) {
    return insert(value_type(std::forward<Args>(args)...));
  }
  /// @}
  /// @{ Inserts copies of a range; one in ascending order costs no search.
  template <std::input_iterator It>
  void insert(It first, It last) {
    for (; first != last; ++first) insert(const_iterator(end()), *first);
  }
  void insert(std::initializer_list<value_type> elements) { insert(elements.begin(), elements.end()); }
  /// @}

  /// @{ Drops an element, or a range; returns the place of what followed.
  iterator erase(const_iterator position) {
    Node* const following = position.node()->next();
    eraseNode(position.node());
    return iterator(following);
  }
  iterator erase(const_iterator first, const_iterator last) {
    eraseNodesRange(first.node(), last.node());
    return iterator(last.node());
  }
  /// @}
  /// Drops all elements with that key, which may lie in one of them. Returns how many.
  int erase(const Key& key) {
    if constexpr (unique) {
      const Node* const node = findKey(key);
      if (node == RBTreeImpl::end()) return 0;
      eraseNode(const_cast<Node*>(node));
      return 1;
    } else {
      return eraseNodesMatching(std::addressof(key));
    }
  }

  /// Makes this a copy, built anew.
  void copy(const Tree& other) {
    static_assert(isCopyable<Mapped>);
    RBTreeImpl::copy(other);
  }
  void swap(Tree& other) noexcept { RBTreeImpl::swap(other); }
  friend void swap(Tree& a, Tree& b) noexcept { a.swap(b); }

  friend bool operator==(const Tree& a, const Tree& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
  }
  friend bool operator<(const Tree& a, const Tree& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
  }

protected:
  /// Inserts a key with a default value.
  Inserted insertKey(const Key& key) {
    const int before = size();
    return inserted(insertCopy(key), before);
  }

private:
  friend struct ContainerCheck;

  static const TypeUtil* record() noexcept {
    static_assert(hasHeapAlignment<Element>, "the containers take their memory from the C heap");
    static_assert(std::is_empty_v<Less>, "the order of a tree has no state");
    return &treeRecord<Key, Mapped, Less>;
  }

  Node* lower(const Key& key) const { return Record::lowerBound(this, std::addressof(key)); }
  Node* upper(const Key& key) const { return Record::upperBound(this, std::addressof(key)); }
  const Node* findKey(const Key& key) const {
    const Node* const node = lower(key);
    return node == RBTreeImpl::end() || Less()(key, Record::keyOf(node)) ? RBTreeImpl::end() : node;
  }

  /// Without a value it is default-constructed.
  Node* insertCopy(const Key& key, const void* value = nullptr) {
    if constexpr (unique) {
      const typename Record::Place place = Record::placeOf(this, key);
      Node* const found = const_cast<Node*>(place.lowerBound);
      if (found != RBTreeImpl::end() && !Less()(key, Record::keyOf(found))) return found;
      Node* const parent = const_cast<Node*>(place.parent);
      return insertNode(place.toTheRight ? nullptr : parent, parent, std::addressof(key), value,
                        place.toTheRight ? parent : nullptr);
    } else {
      return insertNodeNonUnique(std::addressof(key), value);
    }
  }
  Node* insertCopyAt(Node* hint, const Key& key, const void* value) {
    if constexpr (unique)
      return insertNodeUnique(hint, std::addressof(key), value);
    else
      return insertNodeNonUnique(hint, std::addressof(key), value);
  }
  Inserted inserted(Node* node, [[maybe_unused]] int sizeBefore) const {
    if constexpr (unique)
      return Inserted(iterator(node), size() != sizeBefore);
    else
      return iterator(node);
  }
};

} // namespace qv::detail
