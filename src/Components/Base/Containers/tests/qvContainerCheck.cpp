#include "qvContainerCheck.h"

#include <algorithm>
#include <set>

namespace qv {

/// As in the allocator's own file.
struct BlockAllocator::Block {
  std::int32_t used;
  Block* older;
};

namespace detail {

namespace {

using testing::AssertionFailure;
using testing::AssertionResult;
using testing::AssertionSuccess;

} // namespace

AssertionResult ContainerCheck::isWellFormed(const VectorImpl& vector) {
  if (vector.size_ < 0 || vector.size_ > vector.capacity_)
    return AssertionFailure() << "size " << vector.size_ << " of " << vector.capacity_;
  if ((vector.data_ == nullptr) != (vector.capacity_ == 0)) return AssertionFailure() << "block and capacity";
  if (!vector.typeUtil_) return AssertionFailure() << "no record";
  return AssertionSuccess();
}

AssertionResult ContainerCheck::isWellFormed(const ListImpl& list) {
  int count = -1;
  const ListImpl::Node* node = &list.header_;
  do {
    if (node->next->prev != node) return AssertionFailure() << "link back to node " << count;
    node = node->next;
    if (++count > list.size_) break;
  } while (node != &list.header_);
  if (count != list.size_) return AssertionFailure() << "count " << list.size_ << ", nodes " << count;
  return AssertionSuccess();
}

int ContainerCheck::numBlocks(const BlockAllocator& allocator) {
  int blocks = 0;
  for (const auto* block = allocator.blocks_; block; block = block->older) ++blocks;
  return blocks;
}

AssertionResult ContainerCheck::isWellFormed(const BlockAllocator& allocator) {
  std::set<const void*> used;
  for (auto* block = allocator.blocks_; block; block = block->older) {
    if (block->used < 1 || block->used > allocator.numElementsInBlock_)
      return AssertionFailure() << block->used << " elements used in a block";
    if (block != allocator.blocks_ && block->used != allocator.numElementsInBlock_)
      return AssertionFailure() << "an older block is not full";
    for (int i = 0; i < block->used; ++i)
      used.insert(reinterpret_cast<const char*>(block + 1) + i * static_cast<int>(allocator.elementSize_));
  }
  if (static_cast<int>(used.size()) != allocator.numAllocated_ + allocator.numFreed_)
    return AssertionFailure() << used.size() << " used, " << allocator.numAllocated_ << " out, "
                              << allocator.numFreed_ << " freed";
  int freed = 0;
  for (const void* element = allocator.freeList_; element; ++freed) {
    if (used.erase(element) == 0) return AssertionFailure() << "foreign or repeated element in the free list";
    std::memcpy(&element, element, sizeof element);
  }
  if (freed != allocator.numFreed_) return AssertionFailure() << freed << " in the free list";
  return AssertionSuccess();
}

AssertionResult ContainerCheck::subtree(const RBTreeImpl& tree, const RBTreeImpl::Node* node,
                                        const RBTreeImpl::Node* parent, int* count, int* blackHeight) {
  *blackHeight = 1;
  if (!node) return AssertionSuccess();
  if (node->parent != parent) return AssertionFailure() << "link to the parent";
  if (node->color == RBTreeImpl::red && parent->color == RBTreeImpl::red)
    return AssertionFailure() << "red under red";
  int leftHeight = 0;
  int rightHeight = 0;
  if (const AssertionResult left = subtree(tree, node->left, node, count, &leftHeight); !left) return left;
  if (const AssertionResult right = subtree(tree, node->right, node, count, &rightHeight); !right)
    return right;
  if (leftHeight != rightHeight) return AssertionFailure() << "black heights differ";
  *blackHeight = leftHeight + (node->color == RBTreeImpl::black ? 1 : 0);
  ++*count;
  return AssertionSuccess();
}

AssertionResult ContainerCheck::isWellFormed(const RBTreeImpl& tree) {
  const RBTreeImpl::Node* const end = tree.end();
  const RBTreeImpl::Node* const root = tree.root();
  if (end->color != RBTreeImpl::red) return AssertionFailure() << "the header is black";
  if (root && root->color != RBTreeImpl::black) return AssertionFailure() << "the root is red";
  int count = 0;
  int height = 0;
  if (const AssertionResult nodes = subtree(tree, root, end, &count, &height); !nodes) return nodes;
  if (count != tree.count_) return AssertionFailure() << "count " << tree.count_ << ", nodes " << count;
  if (end->left != (root ? RBTreeImpl::sFindLeftMost(root) : end)) return AssertionFailure() << "leftmost";
  if (end->right != (root ? RBTreeImpl::sFindRightMost(root) : end)) return AssertionFailure() << "rightmost";
  int steps = 0;
  for (const auto* node = tree.begin(); node != end; node = node->next(), ++steps) {
    if (node->next()->prev() != node) return AssertionFailure() << "prev of next of node " << steps;
    if (node->next() != end && tree.lessKey(tree.keyPtrOfNode(node->next()), node))
      return AssertionFailure() << "order at node " << steps;
  }
  if (steps != count) return AssertionFailure() << steps << " steps along " << count << " nodes";
  if (tree.allocator_.numAllocated() != count) return AssertionFailure() << "nodes lost from the pool";
  return isWellFormed(tree.allocator_);
}

AssertionResult ContainerCheck::isWellFormed(const HashTableImpl& table) {
  int count = 0;
  for (int bucket = 0; bucket < table.buckets_.size(); ++bucket) {
    for (const auto* node = table.buckets_[bucket]; node; node = node->next, ++count) {
      if (count > table.count_) return AssertionFailure() << "a chain runs on";
      const auto home = node->hash % static_cast<std::uint64_t>(table.buckets_.size());
      if (home != static_cast<std::uint64_t>(bucket))
        return AssertionFailure() << "hash " << node->hash << " in bucket " << bucket;
    }
  }
  if (count != table.count_) return AssertionFailure() << "count " << table.count_ << ", nodes " << count;
  if (table.allocator_.numAllocated() != count) return AssertionFailure() << "nodes lost from the pool";
  if (table.maxLoadFactor_ == 1.0F && table.buckets_.size() < count) return AssertionFailure() << "overfull";
  return isWellFormed(table.allocator_);
}

} // namespace detail

} // namespace qv
