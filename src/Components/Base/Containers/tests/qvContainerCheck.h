// The invariant walkers of the container cores.
#pragma once

#include "Base/Containers/qvHashTableImpl.h"
#include "Base/Containers/qvListImpl.h"
#include "Base/Containers/qvRBTreeImpl.h"
#include "Base/Containers/qvVectorImpl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace qv::detail {

/// Looks into the containers. `isWellFormed` walks a whole structure and tells the first thing that is wrong.
struct ContainerCheck {
  static testing::AssertionResult isWellFormed(const VectorImpl& vector);
  static testing::AssertionResult isWellFormed(const ListImpl& list);
  static testing::AssertionResult isWellFormed(const BlockAllocator& allocator);
  static testing::AssertionResult isWellFormed(const RBTreeImpl& tree);
  static testing::AssertionResult isWellFormed(const HashTableImpl& table);

  template <class Face>
  static testing::AssertionResult isWellFormed(const Face& face) {
    if constexpr (std::is_base_of_v<VectorImpl, Face>)
      return isWellFormed(static_cast<const VectorImpl&>(face));
    else if constexpr (std::is_base_of_v<ListImpl, Face>)
      return isWellFormed(static_cast<const ListImpl&>(face));
    else if constexpr (std::is_base_of_v<RBTreeImpl, Face>)
      return isWellFormed(static_cast<const RBTreeImpl&>(face));
    else
      return isWellFormed(static_cast<const HashTableImpl&>(face));
  }

  static int numBlocks(const BlockAllocator& allocator);
  static std::uint64_t elementSize(const BlockAllocator& allocator) { return allocator.elementSize_; }
  static const BlockAllocator& allocator(const RBTreeImpl& tree) { return tree.allocator_; }

private:
  static testing::AssertionResult subtree(const RBTreeImpl& tree, const RBTreeImpl::Node* node,
                                          const RBTreeImpl::Node* parent, int* count, int* blackHeight);
};

} // namespace qv::detail
