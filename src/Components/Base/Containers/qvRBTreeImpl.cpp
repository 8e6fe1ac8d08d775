#include "Base/Containers/qvRBTreeImpl.h"

#include "Base/Containers/qvContainerHeap.h"

#include <cstddef>
#include <memory>
#include <utility>

namespace qv {

struct RBTreeImpl::Layout {
  static_assert(offsetof(RBTreeImpl, header_) == 0, "end() is the tree itself");
  static_assert(offsetof(Node, right) == sizeof(void*) && offsetof(Node, parent) == 2 * sizeof(void*));
  static_assert(offsetof(Node, color) == 3 * sizeof(void*));
  static_assert(offsetof(TypeUtil, keyOffset) == 4 && offsetof(TypeUtil, valueOffset) == 8);
  static_assert(sizeof(void*) != 8 || (offsetof(TypeUtil, less) == 16 && sizeof(TypeUtil) == 96));
  static_assert(sizeof(void*) != 8 || offsetof(RBTreeImpl, count_) == 32);
  static_assert(sizeof(void*) != 8 || offsetof(RBTreeImpl, typeUtil_) == 40);
  static_assert(sizeof(void*) != 8 || offsetof(RBTreeImpl, allocator_) == 48);
  static_assert(sizeof(void*) != 8 || sizeof(RBTreeImpl) == 104);
};

namespace {

using Node = RBTreeImpl::Node;

bool isBlack(const Node* node) noexcept { return !node || node->color == RBTreeImpl::black; }

} // namespace

Node* RBTreeImpl::Node::next() const noexcept {
  if (right) return sFindLeftMost(right);
  const Node* child = this;
  Node* up = parent;
  while (child == up->right) {
    child = up;
    up = up->parent;
  }
  // From a root that is the last node the climb goes round through the header and back to the root.
  return child->right == up ? const_cast<Node*>(child) : up;
}

Node* RBTreeImpl::Node::prev() const noexcept {
  // Only the header is red and its own grandparent.
  if (color == red && (!parent || parent->parent == this)) return right;
  if (left) return sFindRightMost(left);
  const Node* child = this;
  Node* up = parent;
  while (child == up->left) {
    child = up;
    up = up->parent;
  }
  return up;
}

void RBTreeImpl::Node::swapHeaders(Node& other) noexcept {
  std::swap(left, other.left);
  std::swap(right, other.right);
  std::swap(parent, other.parent);
  std::swap(color, other.color);
  for (Node* header : {this, &other})
    if (!header->parent) header->left = header->right = header;
}

void RBTreeImpl::initialize(const TypeUtil* typeUtil) noexcept {
  typeUtil_ = typeUtil;
  std::construct_at(&allocator_, static_cast<std::size_t>(typeUtil->nodeSize), 10);
  initializeTreeState();
}

void RBTreeImpl::initialize(const RBTreeImpl& other) {
  initialize(other.typeUtil_);
  copy(other);
}

Node* RBTreeImpl::sFindLeftMost(const Node* node) noexcept {
  while (node->left) node = node->left;
  return const_cast<Node*>(node);
}

Node* RBTreeImpl::sFindRightMost(const Node* node) noexcept {
  while (node->right) node = node->right;
  return const_cast<Node*>(node);
}

int RBTreeImpl::sDistanceBetween(Node* first, Node* last) noexcept {
  int steps = 0;
  for (; first != last; first = first->next()) ++steps;
  return steps;
}

Node* RBTreeImpl::findNode(const void* key) const {
  Node* const found = lowerBound(key);
  return found == &header_ || lessKey(key, found) ? const_cast<Node*>(&header_) : found;
}

int RBTreeImpl::count(const void* key) const { return sDistanceBetween(lowerBound(key), upperBound(key)); }

/// Takes a node that no element was made in back to the pool.
struct RBTreeImpl::NewNode {
  RBTreeImpl& tree;
  Node* node;
  ~NewNode() {
    if (node) tree.freeNode(node);
  }
};

Node* RBTreeImpl::makeNode(const void* key, const void* value) {
  NewNode made{*this, allocateNode()};
  typeUtil_->copyKey(keyPtrOfNode(made.node), key);
  if (value && typeUtil_->copyValue)
    typeUtil_->copyValue(valuePtrOfNode(made.node), value);
  else if (typeUtil_->constructValue)
    typeUtil_->constructValue(valuePtrOfNode(made.node));
  return std::exchange(made.node, nullptr);
}

Node* RBTreeImpl::insertNode(Node* forceLeft, Node* parent, const void* key, const void* value,
                             Node* forceRight) {
  Node* const node = makeNode(key, value);
  count_ = detail::countSum(count_, 1);
  node->left = node->right = nullptr;
  node->parent = parent;
  if (parent == &header_) {
    header_.left = header_.right = header_.parent = node;
  } else if (forceLeft || (!forceRight && lessKey(keyPtrOfNode(node), parent))) {
    parent->left = node;
    if (parent == header_.left) header_.left = node;
  } else {
    parent->right = node;
    if (parent == header_.right) header_.right = node;
  }
  rebalance(node);
  return node;
}

Node* RBTreeImpl::insertNodeUnique(const void* key, const void* value) {
  Node* parent = nullptr;
  Node* candidate = nullptr;
  const bool left = typeUtil_->findInsertPosition(this, key, &parent);
  if (left && parent == header_.left) return insertNode(parent, parent, key, value, nullptr);
  if (parent == &header_) return insertNode(nullptr, parent, key, value, nullptr);
  candidate = left ? parent->prev() : parent;
  if (!keyLess(candidate, key)) return candidate;
  return insertNode(left ? parent : nullptr, parent, key, value, left ? nullptr : parent);
}

Node* RBTreeImpl::insertNodeUnique(const void* key) { return insertNodeUnique(key, nullptr); }

Node* RBTreeImpl::insertNodeNonUnique(const void* key, const void* value) {
  Node* parent = nullptr;
  const bool left = typeUtil_->findInsertPosition(this, key, &parent);
  return insertNode(left ? parent : nullptr, parent, key, value, left ? nullptr : parent);
}

Node* RBTreeImpl::insertNodeNonUnique(const void* key) { return insertNodeNonUnique(key, nullptr); }

/// Inserts between neighbours: on whichever of the two has a free link. Either may be the header.
Node* RBTreeImpl::insertBetween(Node* before, Node* after, const void* key, const void* value) {
  if (before == &header_ || before->right) return insertNode(after, after, key, value, nullptr);
  return insertNode(nullptr, before, key, value, before);
}

Node* RBTreeImpl::insertNodeUnique(Node* hint, const void* key, const void* value) {
  if (count_ == 0) return insertNodeUnique(key, value);
  if (hint == &header_ || lessKey(key, hint)) {
    Node* const before = hint == header_.left ? &header_ : hint->prev();
    if (before == &header_ || keyLess(before, key)) return insertBetween(before, hint, key, value);
  } else {
    if (!keyLess(hint, key)) return hint;
    Node* const after = hint->next();
    if (after == &header_ || lessKey(key, after)) return insertBetween(hint, after, key, value);
  }
  return insertNodeUnique(key, value);
}

Node* RBTreeImpl::insertNodeUnique(Node* hint, const void* key) {
  return insertNodeUnique(hint, key, nullptr);
}

Node* RBTreeImpl::insertNodeNonUnique(Node* hint, const void* key, const void* value) {
  if (count_ == 0) return insertNodeNonUnique(key, value);
  if (hint == &header_ || lessKey(key, hint)) {
    Node* const before = hint == header_.left ? &header_ : hint->prev();
    if (before == &header_ || !lessKey(key, before)) return insertBetween(before, hint, key, value);
  } else {
    Node* const after = hint->next();
    if (after == &header_ || lessKey(key, after)) return insertBetween(hint, after, key, value);
  }
  return insertNodeNonUnique(key, value);
}

Node* RBTreeImpl::insertNodeNonUnique(Node* hint, const void* key) {
  return insertNodeNonUnique(hint, key, nullptr);
}

void* RBTreeImpl::getValuePtr(const void* key) {
  Node* const found = lowerBound(key);
  if (found != &header_ && !lessKey(key, found)) return valuePtrOfNode(found);
  return valuePtrOfNode(insertNodeUnique(found, key));
}

void RBTreeImpl::rotateLeft(Node* node) noexcept {
  Node* const riser = node->right;
  node->right = riser->left;
  if (node->right) node->right->parent = node;
  replaceChild(node, riser);
  riser->left = node;
  node->parent = riser;
}

void RBTreeImpl::rotateRight(Node* node) noexcept {
  Node* const riser = node->left;
  node->left = riser->right;
  if (node->left) node->left->parent = node;
  replaceChild(node, riser);
  riser->right = node;
  node->parent = riser;
}

/// Hangs `replacement`, which may be null, where `node` hangs.
void RBTreeImpl::replaceChild(Node* node, Node* replacement) noexcept {
  Node* const parent = node->parent;
  if (node == root())
    header_.parent = replacement;
  else if (parent->left == node)
    parent->left = replacement;
  else
    parent->right = replacement;
  if (replacement) replacement->parent = parent;
}

void RBTreeImpl::rebalance(Node* node) noexcept {
  node->color = red;
  while (node != root() && node->parent->color == red) {
    Node* parent = node->parent;
    Node* const grandparent = parent->parent;
    const bool onLeft = parent == grandparent->left;
    Node* const uncle = onLeft ? grandparent->right : grandparent->left;
    if (!isBlack(uncle)) {
      parent->color = uncle->color = black;
      grandparent->color = red;
      node = grandparent;
      continue;
    }
    if (node == (onLeft ? parent->right : parent->left)) {
      onLeft ? rotateLeft(parent) : rotateRight(parent);
      parent = node;
    }
    parent->color = black;
    grandparent->color = red;
    onLeft ? rotateRight(grandparent) : rotateLeft(grandparent);
    break;
  }
  root()->color = black;
}

/// Takes a node out by relinking; a node with two children is replaced by its successor, never by its
/// content.
void RBTreeImpl::unlinkNode(Node* node) noexcept {
  Node* child = node->left ? node->left : node->right;
  Node* parentOfChild = node->parent;
  Color removed = node->color;
  if (node->left && node->right) {
    Node* const successor = sFindLeftMost(node->right);
    child = successor->right;
    parentOfChild = successor;
    if (successor != node->right) {
      parentOfChild = successor->parent;
      replaceChild(successor, child);
      successor->right = node->right;
      successor->right->parent = successor;
    }
    successor->left = node->left;
    successor->left->parent = successor;
    replaceChild(node, successor);
    removed = std::exchange(successor->color, node->color);
  } else {
    if (node == header_.left) header_.left = child ? sFindLeftMost(child) : parentOfChild;
    if (node == header_.right) header_.right = child ? sFindRightMost(child) : parentOfChild;
    replaceChild(node, child);
  }
  if (removed == black) rebalanceAfterErase(child, parentOfChild);
}

/// The paths through `node`, which may be null, lack one black node.
void RBTreeImpl::rebalanceAfterErase(Node* node, Node* parent) noexcept {
  while (node != root() && isBlack(node)) {
    const bool onLeft = node == parent->left;
    Node* sibling = onLeft ? parent->right : parent->left;
    if (sibling->color == red) {
      sibling->color = black;
      parent->color = red;
      onLeft ? rotateLeft(parent) : rotateRight(parent);
      sibling = onLeft ? parent->right : parent->left;
    }
    if (isBlack(sibling->left) && isBlack(sibling->right)) {
      sibling->color = red;
      node = parent;
      parent = node->parent;
      continue;
    }
    if (isBlack(onLeft ? sibling->right : sibling->left)) {
      (onLeft ? sibling->left : sibling->right)->color = black;
      sibling->color = red;
      onLeft ? rotateRight(sibling) : rotateLeft(sibling);
      sibling = onLeft ? parent->right : parent->left;
    }
    sibling->color = parent->color;
    parent->color = black;
    (onLeft ? sibling->right : sibling->left)->color = black;
    onLeft ? rotateLeft(parent) : rotateRight(parent);
    break;
  }
  if (node) node->color = black;
}

void RBTreeImpl::eraseNode(Node* node) {
  unlinkNode(node);
  if (typeUtil_->destructKey) typeUtil_->destructKey(keyPtrOfNode(node));
  if (typeUtil_->destructValue) typeUtil_->destructValue(valuePtrOfNode(node));
  freeNode(node);
  --count_;
}

void RBTreeImpl::eraseNodesRange(Node* first, Node* last) {
  if (first == header_.left && last == &header_) {
    clear();
    return;
  }
  while (first != last) eraseNode(std::exchange(first, first->next()));
}

int RBTreeImpl::eraseNodesMatching(const void* key) {
  Node* const first = lowerBound(key);
  Node* last = first;
  while (last != &header_ && !lessKey(key, last)) last = last->next();
  const int before = count_;
  eraseNodesRange(first, last);
  return before - count_;
}

void RBTreeImpl::clear() {
  destructAllNodes();
  initializeTreeState();
}

void RBTreeImpl::destructAllNodes() {
  if (count_ > 0) typeUtil_->destructSubtree(this, root());
}

void RBTreeImpl::swap(RBTreeImpl& other) noexcept {
  if (this == &other) return;
  header_.swapHeaders(other.header_);
  std::swap(count_, other.count_);
  std::swap(typeUtil_, other.typeUtil_);
  allocator_.swap(other.allocator_);
  for (RBTreeImpl* tree : {this, &other})
    if (tree->root()) tree->root()->parent = &tree->header_;
}

void RBTreeImpl::copy(const RBTreeImpl& other) {
  if (this == &other) return;
  clear();
  const bool hasValue = typeUtil_->copyValue != nullptr;
  // Each node belongs behind the last one, which the hint tells.
  for (const Node* node = other.begin(); node != other.end(); node = node->next())
    insertNodeNonUnique(&header_, keyPtrOfNode(node), hasValue ? valuePtrOfNode(node) : nullptr);
}

} // namespace qv
