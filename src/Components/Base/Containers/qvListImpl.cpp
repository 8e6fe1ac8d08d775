#include "Base/Containers/qvListImpl.h"

#include "Base/Containers/qvContainerHeap.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace qv {

struct ListImpl::Layout {
  static_assert(offsetof(ListImpl, header_) == 0, "end() is the list itself");
  static_assert(offsetof(ListImpl, size_) == 2 * sizeof(void*));
  static_assert(offsetof(ListImpl, typeUtil_) == 3 * sizeof(void*));
  static_assert(offsetof(Node, next) == 0 && offsetof(Node, prev) == sizeof(void*));
  static_assert(offsetof(TypeUtil, nodeSize) == 0 && offsetof(TypeUtil, elementOffset) == 4);
  static_assert(offsetof(TypeUtil, copyConstruct) == 8);
  static_assert(offsetof(TypeUtil, destruct) == 8 + sizeof(void*));
};

namespace {

using Node = ListImpl::Node;

void copyPointer(void* dst, const void* src) { std::memcpy(dst, src, sizeof(void*)); }

struct FreeOnly {
  void operator()(Node* node) const noexcept { std::free(node); }
};

/// The elements of a range of nodes, one after the other.
struct NodeSource {
  const Node* at;
  const Node* last;
  std::uint32_t elementOffset;
  [[nodiscard]] const void* element() const noexcept {
    return at == last ? nullptr : reinterpret_cast<const char*>(at) + elementOffset;
  }
  void advance() noexcept { at = at->next; }
};

/// The elements of contiguous memory.
struct ArraySource {
  const char* at;
  const char* last;
  std::ptrdiff_t stride;
  [[nodiscard]] const void* element() const noexcept { return at == last ? nullptr : at; }
  void advance() noexcept { at += stride; }
};

} // namespace

void ListImpl::initialize(const TypeUtil* typeUtil) noexcept { initialize_inline(typeUtil); }

void ListImpl::initialize(const ListImpl& other) {
  initialize_inline(other.typeUtil_);
  append(other);
}

void ListImpl::freeStorage() {
  for (Node* node = header_.next; node != &header_;) {
    Node* const following = node->next;
    destructNode(node);
    freeNode(node);
    node = following;
  }
}

void ListImpl::clear() {
  if (empty()) return;
  freeStorage();
  initializeListState();
}

Node* ListImpl::allocateNode() const { return static_cast<Node*>(detail::heapAllocate(typeUtil_->nodeSize)); }

void ListImpl::freeNode(Node* node) const noexcept { std::free(node); }

/// A node that no list holds yet, with a copy of `value`.
Node* ListImpl::makeNode(const void* value, Copy copyElement) const {
  std::unique_ptr<Node, FreeOnly> node(allocateNode());
  copyElement(elementPtrOfNode(node.get()), value);
  return node.release();
}

Node* ListImpl::unlink(Node* node) noexcept {
  node->prev->next = node->next;
  node->next->prev = node->prev;
  --size_;
  return node->next;
}

Node* ListImpl::insert(Node* position) {
  Node* const node = allocateNode();
  insert(position, node);
  return node;
}

Node* ListImpl::prepend() { return insert(header_.next); }
Node* ListImpl::append() { return insert(&header_); }

Node* ListImpl::insert(Node* position, Construct construct) {
  std::unique_ptr<Node, FreeOnly> node(allocateNode());
  if (construct) construct(elementPtrOfNode(node.get()));
  insert(position, node.get());
  return node.release();
}

Node* ListImpl::insert(Node* position, const void* value, Copy copyElement) {
  Node* const node = makeNode(value, copyElement);
  insert(position, node);
  return node;
}

Node* ListImpl::insert(Node* position, const void* value) {
  return insert(position, value, typeUtil_->copyConstruct);
}

Node* ListImpl::insertAndAssignPtr(Node* position, const void* ptr) {
  Node* const node = insert(position);
  copyPointer(elementPtrOfNode(node), &ptr);
  return node;
}

Node* ListImpl::insertAndReturnNode(Node* position) { return insert(position); }

void ListImpl::append(Construct construct) { insert(&header_, construct); }
void ListImpl::append(const void* value, Copy copyElement) { insert(&header_, value, copyElement); }
void ListImpl::append(const void* value) { insert(&header_, value); }
void ListImpl::appendAndAssignPtr(const void* ptr) { insertAndAssignPtr(&header_, ptr); }
void* ListImpl::appendAndReturnPtr() { return elementPtrOfNode(append()); }

void ListImpl::prepend(Construct construct) { insert(header_.next, construct); }
void ListImpl::prepend(const void* value, Copy copyElement) { insert(header_.next, value, copyElement); }
void ListImpl::prepend(const void* value) { insert(header_.next, value); }
void ListImpl::prependAndAssignPtr(const void* ptr) { insertAndAssignPtr(header_.next, ptr); }
void* ListImpl::prependAndReturnPtr() { return elementPtrOfNode(prepend()); }

/// The new nodes become part of the list only when all are made, so that the range may come from this list,
/// and an element that throws while it is copied changes nothing.
template <class Source>
void ListImpl::insertFrom(Node* position, Source source, Copy copyElement) {
  ListImpl fresh(typeUtil_);
  for (; const void* element = source.element(); source.advance())
    fresh.insert(&fresh.header_, fresh.makeNode(element, copyElement));
  splice(position, fresh);
}

void ListImpl::insert(Node* position, const Node* first, const Node* last) {
  insertFrom(position, NodeSource{first, last, typeUtil_->elementOffset}, typeUtil_->copyConstruct);
}

void ListImpl::insert(Node* position, const void* first, const void* last, int stride, Copy copyElement) {
  insertFrom(position, ArraySource{static_cast<const char*>(first), static_cast<const char*>(last), stride},
             copyElement);
}

void ListImpl::append(const ListImpl& other) { insert(&header_, other.begin(), other.end()); }
void ListImpl::prepend(const ListImpl& other) { insert(header_.next, other.begin(), other.end()); }

/// While its element is replaced a node is outside the list, so that an element that throws while it is
/// copied is not destroyed again.
template <class Source>
void ListImpl::assignFrom(Source source, Copy copyElement) {
  Node* node = header_.next;
  for (; node != &header_ && source.element(); source.advance()) {
    std::unique_ptr<Node, FreeOnly> reused(node);
    node = unlink(node);
    destructNode(reused.get());
    copyElement(elementPtrOfNode(reused.get()), source.element());
    insert(node, reused.release());
  }
  erase(node, &header_);
  insertFrom(&header_, source, copyElement);
}

void ListImpl::assign(const Node* first, const Node* last) {
  assignFrom(NodeSource{first, last, typeUtil_->elementOffset}, typeUtil_->copyConstruct);
}

void ListImpl::assign(const void* first, const void* last, int stride, Copy copyElement) {
  assignFrom(ArraySource{static_cast<const char*>(first), static_cast<const char*>(last), stride},
             copyElement);
}

void ListImpl::copy(const ListImpl& other) {
  if (this != &other) assign(other.begin(), other.end());
}

Node* ListImpl::find(const void* value, Search search) const { return search(*this, value); }

void ListImpl::erase(const void* value, SearchFrom search) {
  for (Node* node = search(header_.next, *this, value); node != &header_;)
    node = search(erase_inline(node), *this, value);
}

Node* ListImpl::erase(Node* node) { return erase_inline(node); }

Node* ListImpl::erase(Node* first, Node* last) {
  if (first == header_.next && last == &header_) {
    clear();
  } else {
    while (first != last) first = erase_inline(first);
  }
  return last;
}

void ListImpl::eraseFront() { erase_inline(header_.next); }
void ListImpl::eraseBack() { erase_inline(header_.prev); }

void ListImpl::unique(Equal equal) {
  if (size_ < 2) return;
  Node* earlier = header_.next;
  for (Node* later = earlier->next; later != &header_; later = later->next) {
    if (equal(elementPtrOfNode(earlier), elementPtrOfNode(later))) erase_inline(earlier);
    earlier = later;
  }
}

void ListImpl::merge(ListImpl& other, const void* argument, Merge mergeFunction) {
  mergeFunction(*this, other, argument);
}

/// The sorted runs of a merge sort. Bin n holds 2^n nodes, so the bins suffice for every count that an `int`
/// holds; they can run out only under a merge function that leaves its source filled. Where a comparison
/// throws, what the bins hold goes back to the list.
struct ListImpl::SortBins {
  static constexpr int most = 32;

  ListImpl& list;
  ListImpl carry;
  ListImpl bins[most];

  explicit SortBins(ListImpl& sorted) noexcept : list(sorted), carry(sorted.typeUtil_) {
    for (ListImpl& bin : bins) bin.initialize_inline(sorted.typeUtil_);
  }
  SortBins(const SortBins&) = delete;
  SortBins& operator=(const SortBins&) = delete;
  ~SortBins() {
    list.splice(list.end(), carry);
    for (ListImpl& bin : bins) list.splice(list.end(), bin);
  }
};

void ListImpl::sort(const void* argument, Merge mergeFunction) {
  if (size_ < 2) return;
  SortBins sorted(*this);
  auto& [list, carry, bins] = sorted;
  int used = 0;
  while (!empty()) {
    carry.splice(carry.begin(), *this, begin());
    int bin = 0;
    for (; bin < used && !bins[bin].empty(); ++bin) {
      mergeFunction(bins[bin], carry, argument);
      carry.swap(bins[bin]);
    }
    if (bin == SortBins::most) {
      mergeFunction(bins[used - 1], carry, argument);
    } else {
      carry.swap(bins[bin]);
      if (bin == used) ++used;
    }
  }
  for (int bin = 1; bin < used; ++bin) mergeFunction(bins[bin], bins[bin - 1], argument);
  swap(bins[used - 1]);
}

void ListImpl::reverse() noexcept {
  Node* node = &header_;
  do {
    std::swap(node->next, node->prev);
    node = node->prev;
  } while (node != &header_);
}

void ListImpl::splice(Node* position, ListImpl& other) noexcept {
  if (&other == this || other.empty()) return;
  sTransferNodes(position, other.begin(), other.end());
  size_ = detail::countSum(size_, other.size_);
  other.size_ = 0;
}

void ListImpl::splice(Node* position, ListImpl& other, Node* node) noexcept {
  sTransferNode(position, node);
  ++size_;
  --other.size_;
}

void ListImpl::splice(Node* position, ListImpl& other, Node* first, Node* last) noexcept {
  if (first == last) return;
  int count = 0;
  for (const Node* node = first; node != last; node = node->next) ++count;
  sTransferNodes(position, first, last);
  other.size_ -= count;
  size_ += count;
}

/// Has the neighbours point to this header, after its links were those of another.
void ListImpl::relinkHeader(const Node* formerHeader) noexcept {
  if (header_.next == formerHeader) {
    header_.next = header_.prev = &header_;
  } else {
    header_.next->prev = &header_;
    header_.prev->next = &header_;
  }
}

void ListImpl::swap(ListImpl& other) noexcept {
  std::swap(header_, other.header_);
  std::swap(size_, other.size_);
  relinkHeader(&other.header_);
  other.relinkHeader(&header_);
}

} // namespace qv
