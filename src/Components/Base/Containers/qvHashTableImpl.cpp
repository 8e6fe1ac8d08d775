#include "Base/Containers/qvHashTableImpl.h"

#include "Base/Containers/qvContainerHeap.h"
#include "Base/Containers/qvPrefetch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace qv {

struct HashTableImpl::Layout {
  static_assert(offsetof(HashNodeImpl, next) == 8);
  static_assert(offsetof(TypeUtil, keyOffset) == 12 && offsetof(TypeUtil, valueOffset) == 16);
  static_assert(sizeof(void*) != 8 || (offsetof(TypeUtil, equal) == 24 && sizeof(TypeUtil) == 72));
  static_assert(sizeof(buckets_) == sizeof(VectorImpl));
  static_assert(sizeof(void*) != 8 || offsetof(HashTableImpl, typeUtil_) == 24);
  static_assert(sizeof(void*) != 8 || offsetof(HashTableImpl, count_) == 32);
  static_assert(sizeof(void*) != 8 || offsetof(HashTableImpl, maxLoadFactor_) == 36);
  static_assert(sizeof(void*) != 8 || offsetof(HashTableImpl, allocator_) == 40);
  static_assert(sizeof(void*) != 8 || sizeof(HashTableImpl) == 96);
};

namespace {

using Node = HashTableImpl::HashNodeImpl;

constexpr int numPrimes = 29;

/// Each about twice the one before, and one for each bit length from 3 to 31: the bit length finds the entry.
constexpr std::uint32_t primes[numPrimes] = {
    7,       13,       29,       53,       97,        193,       389,       769,       1543,      3079,
    6151,    12289,    24593,    49157,    98317,     196613,    393241,    786433,    1572869,   3145739,
    6291469, 12582917, 25165843, 50331653, 100663319, 201326611, 402653189, 805306457, 1610612741};

constexpr bool lengthFindsEntry() {
  for (int i = 0; i < numPrimes; ++i)
    if (primes[i] >> (i + 2) != 1) return false;
  return true;
}
static_assert(lengthFindsEntry());

constexpr std::array<std::uint64_t, 32> reciprocalsByLeadingZeros() {
  std::array<std::uint64_t, 32> reciprocals{};
  for (const std::uint32_t prime : primes)
    reciprocals[static_cast<std::size_t>(std::countl_zero(prime))] = UINT64_MAX / prime;
  return reciprocals;
}

/// A bucket vector has at most 4 GiB - 1 bytes. A table that is due for more stays at the last prime that
/// fits, with longer chains.
constexpr std::uint32_t mostBuckets = 402653189;
static_assert(sizeof(void*) > 8 || mostBuckets * std::uint64_t{sizeof(void*)} <= UINT32_MAX);

} // namespace

constinit const std::array<std::uint64_t, 32> HashTableImpl::sReciprocals = reciprocalsByLeadingZeros();

Node* HashTableImpl::HashNodeImpl::nextItem(HashTableImpl* table) noexcept {
  if (next) return next;
  return table->firstNodeFrom(table->bucketOf(hash) + 1);
}

const Node* HashTableImpl::HashNodeImpl::nextItem(const HashTableImpl* table) const noexcept {
  return const_cast<HashNodeImpl*>(this)->nextItem(const_cast<HashTableImpl*>(table));
}

void HashTableImpl::freeNode(HashNodeImpl* node) {
  if (typeUtil_->destructKey) typeUtil_->destructKey(keyPtrOfNode(node));
  if (typeUtil_->destructValue) typeUtil_->destructValue(valuePtrOfNode(node));
  allocator_.free(node);
}

int HashTableImpl::bucketNum(std::uint64_t hash) const noexcept { return bucketNum(hash, buckets_.size()); }

int HashTableImpl::bucketNum(std::uint64_t hash, int buckets) const noexcept {
  return static_cast<int>(hash % static_cast<std::uint64_t>(buckets));
}

Node* HashTableImpl::firstNodeFrom(int bucket) const noexcept {
  for (; bucket < buckets_.size(); ++bucket)
    if (buckets_[bucket]) return buckets_[bucket];
  return nullptr;
}

Node* HashTableImpl::firstNode() noexcept { return firstNodeFrom(0); }
const Node* HashTableImpl::firstNode() const noexcept { return firstNodeFrom(0); }

const Node* HashTableImpl::findNode(std::uint64_t hash, const void* key) const {
  if (count_ == 0) return nullptr;
  const HashNodeImpl* node = buckets_[bucketOf(hash)];
  while (node && !(node->hash == hash && typeUtil_->equal(keyPtrOfNode(node), key))) node = node->next;
  return node;
}

Node* HashTableImpl::findNode(std::uint64_t hash, const void* key) {
  return const_cast<HashNodeImpl*>(std::as_const(*this).findNode(hash, key));
}

int HashTableImpl::count(std::uint64_t hash, const void* key) const {
  if (count_ == 0) return 0;
  int matches = 0;
  for (const HashNodeImpl* node = buckets_[bucketOf(hash)]; node; node = node->next)
    if (node->hash == hash && typeUtil_->equal(keyPtrOfNode(node), key)) ++matches;
  return matches;
}

/// Takes a node that no element was made in back to the pool.
struct HashTableImpl::NewNode {
  BlockAllocator& allocator;
  HashNodeImpl* node;
  ~NewNode() { allocator.free(node); }
};

/// Makes a node and links it where `link` stands. A value is copied, or left raw, or default-constructed.
Node* HashTableImpl::linkNewNode(HashNodeImpl** link, std::uint64_t hash, const void* key, const void* value,
                                 Construct constructValue) {
  NewNode made{allocator_, allocateNode()};
  HashNodeImpl* const node = made.node;
  typeUtil_->copyKey(keyPtrOfNode(node), key);
  if (value && typeUtil_->copyValue) typeUtil_->copyValue(valuePtrOfNode(node), value);
  if (constructValue) constructValue(valuePtrOfNode(node));
  count_ = detail::countSum(count_, 1);
  node->hash = hash;
  node->next = *link;
  *link = std::exchange(made.node, nullptr);
  return node;
}

Node* HashTableImpl::get(std::uint64_t hash, const void* key) {
  if (HashNodeImpl* const found = findNode(hash, key)) return found;
  rehash(detail::countSum(count_, 1));
  return linkNewNode(&buckets_[bucketOf(hash)], hash, key, nullptr, typeUtil_->constructValue);
}

Node* HashTableImpl::insertMissing(std::uint64_t hash, const void* key, const void* value) {
  const bool hasRoom = maxLoadFactor_ == 1.0F && count_ < buckets_.size();
  if (!hasRoom) rehash(detail::countSum(count_, 1));
  return linkNewNode(&buckets_[bucketOf(hash)], hash, key, value, nullptr);
}

/// Where an insertion without growth begins: no bucket may be guessed where there is none.
Node** HashTableImpl::headForInsertion(std::uint64_t hash) noexcept {
  if (buckets_.empty()) std::abort();
  return &buckets_[bucketOf(hash)];
}

Node* HashTableImpl::insert_unique_noresize(std::uint64_t hash, const void* key, const void* value) {
  HashNodeImpl** const head = headForInsertion(hash);
  for (HashNodeImpl* node = *head; node; node = node->next)
    if (typeUtil_->equal(keyPtrOfNode(node), key)) return node;
  return linkNewNode(head, hash, key, value, nullptr);
}

Node* HashTableImpl::insert_non_unique_noresize(std::uint64_t hash, const void* key, const void* value) {
  HashNodeImpl** const head = headForInsertion(hash);
  HashNodeImpl* equal = *head;
  while (equal && !typeUtil_->equal(keyPtrOfNode(equal), key)) equal = equal->next;
  return linkNewNode(equal ? &equal->next : head, hash, key, value, nullptr);
}

void HashTableImpl::rehash(int wanted) {
  if (wanted <= 0) return;
  // A table that is to hold anything gets buckets, also where the load factor allows several nodes for each.
  const float quotient = static_cast<float>(wanted) / maxLoadFactor_;
  const float needed = quotient > 1.0F ? quotient : 1.0F;
  const std::uint32_t least =
      needed < static_cast<float>(mostBuckets) ? static_cast<std::uint32_t>(needed) : mostBuckets;
  const std::uint32_t current = static_cast<std::uint32_t>(buckets_.size());
  if (least <= current) return;
  const std::uint32_t prime = *std::lower_bound(std::begin(primes), std::end(primes), least);
  if (prime > current) moveNodes(static_cast<int>(prime));
}

/// Moves all nodes to a new bucket vector, each to the front of its chain. Both the nodes and the new heads
/// lie anywhere in memory, so they are asked for well before they are needed.
void HashTableImpl::moveNodes(int buckets) {
  constexpr int bucketsAhead = 16;
  constexpr int nodesAhead = 64;
  struct Move {
    HashNodeImpl* node;
    HashNodeImpl** head;
  };
  Move moves[nodesAhead];
  int waiting = 0;
  vector<HashNodeImpl*> fresh(buckets);
  const auto link = [&moves, &waiting] {
    for (int i = 0; i < waiting; ++i) moves[i].node->next = std::exchange(*moves[i].head, moves[i].node);
    waiting = 0;
  };
  for (int bucket = 0; bucket < buckets_.size(); ++bucket) {
    if (bucket + bucketsAhead < buckets_.size()) detail::prefetch(buckets_[bucket + bucketsAhead]);
    for (HashNodeImpl* node = buckets_[bucket]; node;) {
      moves[waiting] = {node, &fresh[sRemainder(node->hash, buckets)]};
      detail::prefetch(moves[waiting].head);
      node = node->next; // before the node gets its new link
      if (++waiting == nodesAhead) link();
    }
  }
  link();
  buckets_.swap(fresh);
}

void HashTableImpl::eraseNode(HashNodeImpl* node) {
  if (!node || count_ == 0) return;
  HashNodeImpl** link = &buckets_[bucketOf(node->hash)];
  while (*link && *link != node) link = &(*link)->next;
  if (*link) eraseLinked(link);
}

void HashTableImpl::eraseLinked(HashNodeImpl** link) {
  HashNodeImpl* const node = *link;
  *link = node->next;
  freeNode(node);
  --count_;
}

/// The matches are freed only when all are unlinked, since the key may lie in one of them.
int HashTableImpl::eraseKey(std::uint64_t hash, const void* key) {
  if (count_ == 0) return 0;
  HashNodeImpl* matches = nullptr;
  HashNodeImpl** link = &buckets_[bucketOf(hash)];
  while (HashNodeImpl* const node = *link) {
    if (node->hash == hash && typeUtil_->equal(keyPtrOfNode(node), key)) {
      *link = node->next;
      node->next = matches;
      matches = node;
    } else {
      link = &node->next;
    }
  }
  int erased = 0;
  for (; matches; ++erased) freeNode(std::exchange(matches, matches->next));
  count_ -= erased;
  return erased;
}

void HashTableImpl::clear() {
  if (count_ == 0) return;
  for (HashNodeImpl*& head : buckets_)
    while (head) freeNode(std::exchange(head, head->next));
  count_ = 0;
}

void HashTableImpl::swap(HashTableImpl& other) noexcept {
  buckets_.swap(other.buckets_);
  std::swap(typeUtil_, other.typeUtil_);
  std::swap(count_, other.count_);
  std::swap(maxLoadFactor_, other.maxLoadFactor_);
  allocator_.swap(other.allocator_);
}

void HashTableImpl::copy(const HashTableImpl* other) {
  if (this == other) return;
  clear();
  maxLoadFactor_ = other->maxLoadFactor_;
  rehash(other->count_);
  for (const HashNodeImpl* node = other->firstNode(); node; node = node->nextItem(other))
    insert_non_unique_noresize(node->hash, keyPtrOfNode(node),
                               typeUtil_->valueSize > 0 ? valuePtrOfNode(node) : nullptr);
}

int HashTableImpl::bucket_size(int bucket) const noexcept {
  int length = 0;
  if (bucket < 0 || bucket >= buckets_.size()) return length;
  for (const HashNodeImpl* node = buckets_[bucket]; node; node = node->next) ++length;
  return length;
}

int HashTableImpl::max_bucket_size() const noexcept {
  int longest = 0;
  for (int bucket = 0; bucket < buckets_.size(); ++bucket) longest = std::max(longest, bucket_size(bucket));
  return longest;
}

float HashTableImpl::load_factor() const noexcept {
  return buckets_.empty() ? 0.0F : static_cast<float>(count_) / static_cast<float>(buckets_.size());
}

void HashTableImpl::max_load_factor(float factor) {
  maxLoadFactor_ = factor;
  rehash(count_);
}

int HashTableImpl::max_bucket_count() const noexcept { return static_cast<int>(primes[numPrimes - 1]); }

} // namespace qv
