#include "Base/IO/ioReferenceMapImpl.h"

#include "Base/IO/ioPacketFileError.h"
#include "Base/IO/ioPacketType.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace {

constexpr int blockSize = 1250;

/// How far blocks may reach: numbers up to here make sense for so many references.
std::int64_t reach(int numSeen) { return 20000 + std::int64_t(numSeen) * 8; }

/// Small files stay small, and large ones do not grow one block at a time.
int grownSlotCount(int needed) {
  for (const int step : {10, 100, 1000})
    if (needed < step) return step;
  return static_cast<int>(
      std::min<std::int64_t>(std::int64_t(needed) + 20000, std::numeric_limits<int>::max()));
}

/// The slot is a pointer of the client's own type.
void store(void* slot, void* address) {
  if (slot) std::memcpy(slot, &address, sizeof address);
}

} // namespace

struct ioReferenceMapImpl::Block {
  int made; // how many records are constructed
  Record records[blockSize];
};

void ioReferenceMapImpl::FreeBlock::operator()(Block* block) const noexcept { std::free(block); }

ioReferenceMap::~ioReferenceMap() = default;
ioReferenceMapImpl::~ioReferenceMapImpl() = default;

qv::Reference<ioReferenceMap> ioPacketFileNewReferenceMap() {
  return qv::Reference<ioReferenceMap>(new ioReferenceMapImpl);
}

ioReferenceMapImpl::Record* ioReferenceMapImpl::find(int reference) const noexcept {
  if (reference < 1) return nullptr;
  if (reference >= slotCount_) {
    const auto found = outliers_.find(reference);
    return found == outliers_.end() ? nullptr : const_cast<Record*>(&found->second);
  }
  const std::unique_ptr<Block, FreeBlock>& block = blocks_[reference / blockSize];
  return block && reference % blockSize < block->made ? &block->records[reference % blockSize] : nullptr;
}

/// The record of a number above 0, made if need be and marked as seen.
ioReferenceMapImpl::Record& ioReferenceMapImpl::touch(int reference) {
  if (reference >= slotCount_ && reference <= reach(numSeen_)) grow(reference);
  Record& record = reference < slotCount_ ? makeInBlock(reference) : outliers_[reference];
  if (!record.seen) ++numSeen_;
  record.seen = true;
  return record;
}

void ioReferenceMapImpl::grow(int reference) {
  slotCount_ = grownSlotCount(reference);
  blocks_.resize(slotCount_ / blockSize + 1);
  const auto end = outliers_.lower_bound(slotCount_);
  for (auto at = outliers_.begin(); at != end; ++at) makeInBlock(at->first) = at->second;
  outliers_.erase(outliers_.begin(), end);
}

ioReferenceMapImpl::Record& ioReferenceMapImpl::makeInBlock(int reference) {
  std::unique_ptr<Block, FreeBlock>& block = blocks_[reference / blockSize];
  const int index = reference % blockSize;
  if (!block) {
    block.reset(static_cast<Block*>(std::malloc(sizeof(Block))));
    if (!block) throw std::bad_alloc();
    block->made = 0;
  }
  for (; block->made <= index; ++block->made) new (&block->records[block->made]) Record;
  return block->records[index];
}

int ioReferenceMapImpl::newReference(const void* address) {
  if (lastReference_ == std::numeric_limits<int>::max()) {
    ioPacketFileError("ioPacketFile: There are no more reference numbers.\n");
    ioPacketFileAbort();
  }
  ++lastReference_;
  defineAddress(lastReference_, const_cast<void*>(address), false);
  return lastReference_;
}

void ioReferenceMapImpl::defineAddress(int reference, void* address, bool alias) {
  if (!address || reference < 1) return;
  unindexed_.push_back({address, reference});
  Record& record = touch(reference);
  record.address = address;
  record.alias = alias;
}

/// Readers define many addresses and seldom look one up: the hash catches up when it is asked.
void ioReferenceMapImpl::indexAddresses() const {
  for (const Definition& definition : unindexed_) addresses_.set(definition.address, definition.reference);
  unindexed_.clear();
}

int ioReferenceMapImpl::referenceOf(const void* address) const {
  if (!address) return 0;
  if (!unindexed_.empty()) indexAddresses();
  const int reference = addresses_.find(address);
  if (reference == 0) return -1;
  const Record* const record = find(reference);
  return record && record->live ? reference : -1;
}

bool ioReferenceMapImpl::isDefined(int reference) const {
  const Record* const record = find(reference);
  return record && record->live && record->defined;
}

void* ioReferenceMapImpl::definitionOf(int reference) const {
  const Record* const record = find(reference);
  return record ? record->address : nullptr;
}

void ioReferenceMapImpl::markDefined(int reference, ioPacketType* type) {
  if (reference < 1) return;
  Record& record = touch(reference);
  record.definingType = type;
  record.defined = true;
  while (const unsigned int waiting = record.pending) {
    Pending& pending = pendings_[waiting];
    store(pending.slot, record.address);
    record.pending = std::exchange(pending.next, freePending_);
    freePending_ = waiting;
  }
}

void ioReferenceMapImpl::countUse(Record& record) noexcept {
  if (record.usages < std::numeric_limits<int>::max()) ++record.usages;
}

void ioReferenceMapImpl::wait(Record& record, void* slot, ioPacketType* type, int extra) {
  unsigned int place = freePending_;
  if (place) {
    freePending_ = pendings_[place].next;
  } else {
    if (pendings_.size() > std::numeric_limits<unsigned int>::max()) throw std::bad_alloc();
    place = static_cast<unsigned int>(pendings_.size());
    pendings_.emplace_back();
  }
  pendings_[place] = {slot, type, extra, record.pending};
  record.pending = place;
}

void ioReferenceMapImpl::useDefinition(int reference, ioPacketType* type) {
  if (reference < 1) return;
  Record& record = touch(reference);
  countUse(record);
  if (!record.defined) wait(record, nullptr, type, 0);
}

void ioReferenceMapImpl::resolveUsage(int reference, void* slot, ioPacketType* type, int extra) {
  store(slot, nullptr);
  if (reference < 1) return;
  Record& record = touch(reference);
  countUse(record);
  if (record.defined)
    store(slot, record.address);
  else
    wait(record, slot, type, extra);
}

void ioReferenceMapImpl::undefineNumber(int reference) {
  if (reference < 1) return;
  Record& record = touch(reference);
  record.live = false;
  record.address = nullptr;
}

void ioReferenceMapImpl::undefineAddress(void* address) { undefineNumber(referenceOf(address)); }

/// The next number above `reference` that has a record, or 0.
int ioReferenceMapImpl::nextReference(int reference) const noexcept {
  for (int next = reference + 1; next < slotCount_;) {
    const std::unique_ptr<Block, FreeBlock>& block = blocks_[next / blockSize];
    if (block && next % blockSize < block->made) return next;
    next = (next / blockSize + 1) * blockSize;
  }
  const auto found = outliers_.upper_bound(reference);
  return found == outliers_.end() ? 0 : found->first;
}

/// A copy, since what is told of the usages may change them.
std::vector<ioReferenceMapImpl::Pending> ioReferenceMapImpl::waitingFor(const Record& record) const {
  std::vector<Pending> result;
  for (unsigned int at = record.pending; at; at = pendings_[at].next) result.push_back(pendings_[at]);
  return result;
}

void ioReferenceMapImpl::reportRemaining(ioClientReadContext& client) {
  for (int reference = nextReference(0); reference; reference = nextReference(reference)) {
    const Record* record = find(reference);
    if (!record->seen || !record->live) continue;
    for (const Pending& pending : waitingFor(*record))
      if (pending.type) pending.type->handleUnresolvedPtr(client, definitionOf(reference), pending.extra);
    record = find(reference);
    if (record->defined && record->usages == 0 && record->definingType)
      record->definingType->handleUnreferencedMemory(client, record->address);
  }
}

void ioReferenceMapImpl::reportUnresolved(const ioPacketType* type, ioUnresolvedCallback callback) {
  for (int reference = nextReference(0); reference; reference = nextReference(reference)) {
    const Record* const record = find(reference);
    if (!record->seen || !record->live) continue;
    for (const Pending& pending : waitingFor(*record))
      if (pending.type == type) callback(pending.slot, pending.extra);
  }
}
