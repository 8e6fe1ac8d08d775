// The untyped core of qv::list: a circular chain of nodes whose end marker is the list itself. All element
// types share this one copy of the code.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

namespace qv {

namespace detail {
struct ContainerCheck;
}

/// A doubly linked list. Elements stay where they are for the life of their node. Positions are nodes;
/// `end()` is the list itself, which therefore cannot be moved as bytes. Insertion puts the new node in front
/// of a position. Nothing checks a position, or that there is an element to take away. Exhausted memory ends
/// the process. Not thread-safe, but for reading.
class ListImpl {
public:
  /// The links; the element follows at the offset that the record gives.
  struct Node {
    Node* next;
    Node* prev;
  };

  /// What the core knows of an element type: one constant record for each.
  struct TypeUtil {
    /// Bytes of one node, links included.
    std::uint32_t nodeSize;
    /// Where the element begins in its node.
    std::uint32_t elementOffset;
    /// Copy-constructs one element into raw memory.
    void (*copyConstruct)(void* dst, const void* src);
    /// Destroys one element. Null if there is nothing to do.
    void (*destruct)(void* element);
  };

  using Construct = void (*)(void* element);
  using Copy = void (*)(void* dst, const void* src);
  using Equal = bool (*)(const void* a, const void* b);
  /// Finds `value`, from the start or from a node; gives `end()` where there is none.
  using Search = Node* (*)(const ListImpl& list, const void* value);
  using SearchFrom = Node* (*)(Node* start, const ListImpl& list, const void* value);
  /// Moves all nodes of `source`, which is sorted, to their places in `list`, which is sorted. Leaves
  /// `source` empty. Equal elements keep their order if the function puts those of `list` first.
  using Merge = void (*)(ListImpl& list, ListImpl& source, const void* argument);

  /// Empty. `typeUtil` must outlive the list.
  explicit ListImpl(const TypeUtil* typeUtil) noexcept { initialize_inline(typeUtil); }
  ListImpl(const ListImpl& other) : ListImpl(other.typeUtil_) { append(other); }
  ListImpl& operator=(const ListImpl&) = delete;
  ~ListImpl() {
    if (!empty()) freeStorage();
  }

  /// @{ The constructors' work, on raw memory or on a list that was released.
  void initializeListState() noexcept {
    header_.next = header_.prev = &header_;
    size_ = 0;
  }
  void initialize_inline(const TypeUtil* typeUtil) noexcept {
    initializeListState();
    typeUtil_ = typeUtil;
  }
  QV_BASE_API void initialize(const TypeUtil* typeUtil) noexcept;
  QV_BASE_API void initialize(const ListImpl& other);
  /// @}

  /// Destroys all elements.
  QV_BASE_API void clear();

  [[nodiscard]] int size() const noexcept { return size_; }
  /// @{ The count itself, for one who relinks nodes by the static functions and must keep it right.
  [[nodiscard]] std::int32_t& size() noexcept { return size_; }
  [[nodiscard]] std::int32_t& getReferenceToSize() noexcept { return size_; }
  /// @}
  [[nodiscard]] bool empty() const noexcept { return header_.next == &header_; }
  [[nodiscard]] Node* begin() noexcept { return header_.next; }
  [[nodiscard]] const Node* begin() const noexcept { return header_.next; }
  [[nodiscard]] Node* end() noexcept { return &header_; }
  [[nodiscard]] const Node* end() const noexcept { return &header_; }

  /// Takes a node out without destroying it. Returns the node that followed.
  QV_BASE_API Node* unlink(Node* node) noexcept;

  /// @{ A new node at the end or the front: its element built by a function (raw where `construct` is null),
  /// or a copy of `value`, or the pointer itself, or left to the caller, who gets the element's address.
  QV_BASE_API void append(Construct construct);
  QV_BASE_API void append(const void* value, Copy copyElement);
  QV_BASE_API void append(const void* value);
  QV_BASE_API void appendAndAssignPtr(const void* ptr);
  QV_BASE_API void* appendAndReturnPtr();
  QV_BASE_API void prepend(Construct construct);
  QV_BASE_API void prepend(const void* value, Copy copyElement);
  QV_BASE_API void prepend(const void* value);
  QV_BASE_API void prependAndAssignPtr(const void* ptr);
  QV_BASE_API void* prependAndReturnPtr();
  /// @}

  /// @{ The same in front of `position`. All return the new node.
  QV_BASE_API Node* insert(Node* position, Construct construct);
  QV_BASE_API Node* insert(Node* position, const void* value, Copy copyElement);
  QV_BASE_API Node* insert(Node* position, const void* value);
  QV_BASE_API Node* insertAndAssignPtr(Node* position, const void* ptr);
  QV_BASE_API Node* insertAndReturnNode(Node* position);
  /// @}

  /// @{ Copies of a range in front of `position`: nodes of any list of this element type, or contiguous
  /// elements `stride` bytes apart.
  QV_BASE_API void insert(Node* position, const Node* first, const Node* last);
  QV_BASE_API void insert(Node* position, const void* first, const void* last, int stride, Copy copyElement);
  QV_BASE_API void append(const ListImpl& other);
  QV_BASE_API void prepend(const ListImpl& other);
  /// @}

  /// @{ Replaces the elements by copies of a range outside this list. Nodes that are there get new elements
  /// and stay.
  QV_BASE_API void assign(const Node* first, const Node* last);
  QV_BASE_API void assign(const void* first, const void* last, int stride, Copy copyElement);
  /// @}
  /// `assign` of all of `other`; nothing for the list itself.
  QV_BASE_API void copy(const ListImpl& other);

  /// What `search` finds.
  [[nodiscard]] QV_BASE_API Node* find(const void* value, Search search) const;
  /// Erases every element that `search` finds. `value` must not lie in the list.
  QV_BASE_API void erase(const void* value, SearchFrom search);
  /// Erases from `first` up to `last`, which it returns.
  QV_BASE_API Node* erase(Node* first, Node* last);
  QV_BASE_API void eraseFront();
  QV_BASE_API void eraseBack();

  /// Of each run of equal neighbours the last one survives, so that pointers to it stay good.
  QV_BASE_API void unique(Equal equal);
  /// Calls `mergeFunction` with this list, `other` and `argument`.
  QV_BASE_API void merge(ListImpl& other, const void* argument, Merge mergeFunction);
  /// A merge sort that relinks nodes and allocates nothing; as stable as the merge function is.
  QV_BASE_API void sort(const void* argument, Merge mergeFunction);
  QV_BASE_API void reverse() noexcept;

  /// @{ Moves nodes of `other` in front of `position`: all of them, one (which is not `position`), or a
  /// range, whose nodes are counted. A range may come from this list if `position` is not in it.
  QV_BASE_API void splice(Node* position, ListImpl& other) noexcept;
  QV_BASE_API void splice(Node* position, ListImpl& other, Node* node) noexcept;
  QV_BASE_API void splice(Node* position, ListImpl& other, Node* first, Node* last) noexcept;
  /// @}
  /// @{ The same relinking; the caller keeps the counts right.
  static void sTransferNode(Node* position, Node* node) noexcept {
    sTransferNodes(position, node, node->next);
  }
  static void sTransferNodes(Node* position, Node* first, Node* last) noexcept {
    if (first == last) return;
    Node* const final = last->prev;
    first->prev->next = last;
    last->prev = first->prev;
    first->prev = position->prev;
    position->prev->next = first;
    final->next = position;
    position->prev = final;
  }
  /// @}

  /// Exchanges the elements with a list of the same element type; each list keeps its record. Nodes keep
  /// their addresses and belong to the other list; an `end()` stays that of its list.
  QV_BASE_API void swap(ListImpl& other) noexcept;

protected:
  /// Destroys and frees all nodes; leaves the header as it is.
  QV_BASE_API void freeStorage();
  [[nodiscard]] void* elementPtrOfNode(const Node* node) const noexcept {
    return const_cast<char*>(reinterpret_cast<const char*>(node)) + typeUtil_->elementOffset;
  }
  [[nodiscard]] QV_BASE_API Node* allocateNode() const;
  QV_BASE_API void freeNode(Node* node) const noexcept;
  void destructNode(Node* node) const {
    if (typeUtil_->destruct) typeUtil_->destruct(elementPtrOfNode(node));
  }

  /// @{ Links a given node.
  void insert(Node* position, Node* node) noexcept {
    node->next = position;
    node->prev = position->prev;
    position->prev->next = node;
    position->prev = node;
    ++size_;
  }
  void prepend(Node* node) noexcept { insert(header_.next, node); }
  void append(Node* node) noexcept { insert(&header_, node); }
  /// @}
  /// @{ Links a new node with an element of raw memory.
  QV_BASE_API Node* insert(Node* position);
  QV_BASE_API Node* prepend();
  QV_BASE_API Node* append();
  /// @}
  /// @{ Unlinks, destroys and frees a node. Returns the one that followed.
  Node* erase_inline(Node* node) {
    Node* const following = unlink(node);
    destructNode(node);
    freeNode(node);
    return following;
  }
  QV_BASE_API Node* erase(Node* node);
  /// @}

private:
  friend struct detail::ContainerCheck;
  struct Layout;
  struct SortBins;

  ListImpl() noexcept { initializeListState(); }

  Node* makeNode(const void* value, Copy copyElement) const;
  template <class Source>
  void insertFrom(Node* position, Source source, Copy copyElement);
  template <class Source>
  void assignFrom(Source source, Copy copyElement);
  void relinkHeader(const Node* formerHeader) noexcept;

  Node header_;
  std::int32_t size_;
  const TypeUtil* typeUtil_;
};

static_assert(sizeof(ListImpl) == 4 * sizeof(void*));
static_assert(sizeof(ListImpl::TypeUtil) == 8 + 2 * sizeof(void*));

} // namespace qv
