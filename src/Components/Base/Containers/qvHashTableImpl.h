// The untyped core of the hash sets and maps: chains of nodes from a pool, under a prime number of buckets.
// All element types share this one copy of the code.
#pragma once

#include "Base/Containers/qvBlockAllocator.h"
#include "Base/Containers/qvVector.h"
#include "Base/qvBase.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace qv {

/// A table of keys, each with a value or without. It hashes nothing itself: every keyed operation takes the
/// key's 64-bit hash, which the node keeps. Nodes stay where they are until they are erased; their order
/// changes with every growth. A table never shrinks. Exhausted memory ends the process. Not thread-safe, but
/// for reading.
class HashTableImpl {
public:
  /// Hash and chain link; key and value follow at the offsets that the record gives.
  struct HashNodeImpl {
    std::uint64_t hash;
    HashNodeImpl* next;

    /// @{ The node that follows in the table's order; null after the last.
    [[nodiscard]] QV_BASE_API HashNodeImpl* nextItem(HashTableImpl* table) noexcept;
    [[nodiscard]] QV_BASE_API const HashNodeImpl* nextItem(const HashTableImpl* table) const noexcept;
    /// @}
  };

  /// What the core knows of a key and a value type: one constant record for each pair. Offsets count from the
  /// node's start.
  struct TypeUtil {
    /// Bytes of one node, hash and link included.
    std::int32_t nodeSize;
    /// Bytes of the value; 0 for a set, whose nodes are copied without one.
    std::int32_t valueSize;
    /// Where key and value begin.
    std::int32_t dataOffset;
    std::int32_t keyOffset;
    std::int32_t valueOffset;
    bool (*equal)(const void* nodeKey, const void* key);
    void (*copyKey)(void* dst, const void* src);
    /// @{ Copy- and default-construct a value. Null where there is none.
    void (*copyValue)(void* dst, const void* src);
    void (*constructValue)(void* dst);
    /// @}
    /// @{ Null if there is nothing to do.
    void (*destructKey)(void* key);
    void (*destructValue)(void* value);
    /// @}
  };

  /// Empty, without buckets; the load factor is 1. `typeUtil` must outlive the table.
  explicit HashTableImpl(const TypeUtil* typeUtil) noexcept
      : typeUtil_(typeUtil),
        count_(0),
        maxLoadFactor_(1.0F),
        allocator_(static_cast<std::size_t>(typeUtil->nodeSize), 10) {}
  HashTableImpl(const HashTableImpl&) = delete;
  HashTableImpl& operator=(const HashTableImpl&) = delete;
  ~HashTableImpl() { clear(); }

  /// @{ The pool's functions; `freeNode` destroys key and value first.
  void setNumElementsInBlock(int count) noexcept { allocator_.setNumElementsInBlock(count); }
  [[nodiscard]] HashNodeImpl* allocateNode() noexcept {
    return static_cast<HashNodeImpl*>(allocator_.alloc());
  }
  QV_BASE_API void freeNode(HashNodeImpl* node);
  /// @}

  [[nodiscard]] int size() const noexcept { return count_; }
  [[nodiscard]] int bucket_count() const noexcept { return buckets_.size(); }

  /// @{ `hash % buckets`: the table's own number of buckets, or a given one. It divides by zero where that is
  /// 0, as in a table that never grew.
  [[nodiscard]] QV_BASE_API int bucketNum(std::uint64_t hash) const noexcept;
  [[nodiscard]] QV_BASE_API int bucketNum(std::uint64_t hash, int buckets) const noexcept;
  /// @}

  /// @{ The first node of the first bucket that is not empty; null if there is none.
  [[nodiscard]] QV_BASE_API HashNodeImpl* firstNode() noexcept;
  [[nodiscard]] QV_BASE_API const HashNodeImpl* firstNode() const noexcept;
  /// @}
  /// @{ The node with that key; null if there is none.
  [[nodiscard]] QV_BASE_API HashNodeImpl* findNode(std::uint64_t hash, const void* key);
  [[nodiscard]] QV_BASE_API const HashNodeImpl* findNode(std::uint64_t hash, const void* key) const;
  /// @}
  /// Number of nodes with that key.
  [[nodiscard]] QV_BASE_API int count(std::uint64_t hash, const void* key) const;

  /// The node with that key, which is inserted with a default-constructed value where it is missing; grows
  /// the table as needed.
  QV_BASE_API HashNodeImpl* get(std::uint64_t hash, const void* key);

  /// @{ Inserts copies of key and value (left raw where `value` is null). The first leaves a node with that
  /// key as it is and returns it; the second puts the new node behind its first equal. Both compare the keys
  /// of the whole chain and, unlike `findNode`, not the hashes. Neither grows the table: call
  /// `rehash(size() + 1)` before. On a table without buckets they end the process.
  QV_BASE_API HashNodeImpl* insert_unique_noresize(std::uint64_t hash, const void* key, const void* value);
  QV_BASE_API HashNodeImpl* insert_non_unique_noresize(std::uint64_t hash, const void* key,
                                                       const void* value);
  /// @}

  /// Makes buckets for `wanted` nodes at the greatest load: the first prime of a fixed series that is enough.
  /// Never shrinks, never calls back and moves no node.
  QV_BASE_API void rehash(int wanted);

  /// Erases a node; ignores null, and a node that is not in the table.
  QV_BASE_API void eraseNode(HashNodeImpl* node);
  /// Erases all nodes with that key, which may lie in one of them. Returns how many.
  QV_BASE_API int eraseKey(std::uint64_t hash, const void* key);
  /// Erases everything; keeps the buckets and the pool's blocks.
  QV_BASE_API void clear();

  /// Exchanges everything, type records included.
  QV_BASE_API void swap(HashTableImpl& other) noexcept;
  /// Makes this a copy, with the other's load factor. Nothing for the table itself.
  QV_BASE_API void copy(const HashTableImpl* other);

  /// Length of one bucket's chain, and of the longest chain.
  [[nodiscard]] QV_BASE_API int bucket_size(int bucket) const noexcept;
  [[nodiscard]] QV_BASE_API int max_bucket_size() const noexcept;
  /// Nodes for each bucket; 0 for a table without buckets.
  [[nodiscard]] QV_BASE_API float load_factor() const noexcept;
  [[nodiscard]] float max_load_factor() const noexcept { return maxLoadFactor_; }
  /// Sets the load at which the table grows, and grows it if that is passed already.
  QV_BASE_API void max_load_factor(float factor);
  /// The last prime of the series, 1610612741.
  [[nodiscard]] QV_BASE_API int max_bucket_count() const noexcept;

protected:
  /// The node with that key, as `findNode` finds it, with `equal(node)` inline; null if there is none.
  template <class Equal>
  [[nodiscard]] const HashNodeImpl* findNodeInline(std::uint64_t hash, Equal equal) const {
    if (count_ == 0) return nullptr;
    const HashNodeImpl* node = buckets_[bucketOf(hash)];
    while (node && !(node->hash == hash && equal(node))) node = node->next;
    return node;
  }
  /// The link that leads to that node; null if there is none.
  template <class Equal>
  [[nodiscard]] HashNodeImpl** findLinkInline(std::uint64_t hash, Equal equal) {
    if (count_ == 0) return nullptr;
    HashNodeImpl** link = &buckets_[bucketOf(hash)];
    while (*link && !((*link)->hash == hash && equal(*link))) link = &(*link)->next;
    return *link ? link : nullptr;
  }
  /// Erases the node to which `link` leads.
  QV_BASE_API void eraseLinked(HashNodeImpl** link);
  /// Inserts a key that is known to be missing; grows the table as needed. The value is copied, or left raw
  /// where `value` is null.
  QV_BASE_API HashNodeImpl* insertMissing(std::uint64_t hash, const void* key, const void* value);

private:
  friend struct detail::ContainerCheck;
  struct Layout;

  [[nodiscard]] void* dataPtrOfNode(const HashNodeImpl* node) const noexcept {
    return const_cast<char*>(reinterpret_cast<const char*>(node)) + typeUtil_->dataOffset;
  }
  [[nodiscard]] void* keyPtrOfNode(const HashNodeImpl* node) const noexcept {
    return const_cast<char*>(reinterpret_cast<const char*>(node)) + typeUtil_->keyOffset;
  }
  [[nodiscard]] void* valuePtrOfNode(const HashNodeImpl* node) const noexcept {
    return const_cast<char*>(reinterpret_cast<const char*>(node)) + typeUtil_->valueOffset;
  }
  /// floor(2^64 / prime) for the prime with each number of leading zero bits.
  QV_BASE_API static const std::array<std::uint64_t, 32> sReciprocals;

  /// The upper half of a product of 128 bits.
  [[nodiscard]] static std::uint64_t sHighProduct(std::uint64_t a, std::uint64_t b) noexcept {
#if defined(__SIZEOF_INT128__)
    return static_cast<std::uint64_t>((static_cast<unsigned __int128>(a) * b) >> 64);
#else
    const std::uint64_t low = (a & UINT32_MAX) * (b & UINT32_MAX);
    const std::uint64_t middle = (a >> 32) * (b & UINT32_MAX) + (low >> 32);
    const std::uint64_t other = (a & UINT32_MAX) * (b >> 32) + (middle & UINT32_MAX);
    return (a >> 32) * (b >> 32) + (middle >> 32) + (other >> 32);
#endif
  }
  /// `hash % prime` for a prime of the series, without a division: the quotient by the truncated reciprocal
  /// is exact or 1 too small. That is corrected without a branch, which no processor could foretell.
  [[nodiscard]] static int sRemainder(std::uint64_t hash, int prime) noexcept {
    const std::uint64_t divisor = static_cast<std::uint32_t>(prime);
    const std::uint64_t reciprocal =
        sReciprocals[static_cast<std::size_t>(std::countl_zero(static_cast<std::uint32_t>(prime) | 1))];
    const std::uint64_t rest = hash - sHighProduct(hash, reciprocal) * divisor;
    return static_cast<int>(rest - (divisor & (0 - std::uint64_t{rest >= divisor})));
  }
  [[nodiscard]] int bucketOf(std::uint64_t hash) const noexcept { return sRemainder(hash, buckets_.size()); }

  using Construct = void (*)(void* dst);
  struct NewNode;
  HashNodeImpl** headForInsertion(std::uint64_t hash) noexcept;
  HashNodeImpl* linkNewNode(HashNodeImpl** link, std::uint64_t hash, const void* key, const void* value,
                            Construct constructValue);
  void moveNodes(int buckets);
  [[nodiscard]] HashNodeImpl* firstNodeFrom(int bucket) const noexcept;

  vector<HashNodeImpl*> buckets_;
  const TypeUtil* typeUtil_;
  std::int32_t count_;
  float maxLoadFactor_;
  BlockAllocator allocator_;
};

} // namespace qv
