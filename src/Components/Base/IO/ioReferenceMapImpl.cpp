#include "Base/IO/ioReferenceMapImpl.h"

#include "Base/IO/ioPacketFileError.h"
#include "Base/IO/ioPacketType.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace {

/// How far records may reach: numbers up to here make sense for so many references.
std::int64_t reach(int numSeen) { return 20000 + std::int64_t(numSeen) * 8; }

/// The slot is a pointer of the client's own type.
void store(void* slot, void* address) {
  if (slot) std::memcpy(slot, &address, sizeof address);
}

} // namespace

ioReferenceMap::~ioReferenceMap() = default;
ioReferenceMapImpl::~ioReferenceMapImpl() = default;

void ioReferenceMapImpl::FreeBlock::operator()(Record* records) const noexcept { std::free(records); }

qv::Reference<ioReferenceMap> ioPacketFileNewReferenceMap() {
  return qv::Reference<ioReferenceMap>(new ioReferenceMapImpl);
}

inline ioReferenceMapImpl::Record& ioReferenceMapImpl::inBlock(int reference) const noexcept {
  const auto number = static_cast<unsigned int>(reference);
  return blocks_[number / blockSize].get()[number % blockSize];
}

inline const ioReferenceMapImpl::Record* ioReferenceMapImpl::find(int reference) const noexcept {
  if (reference > 0 && reference < numRecords_) return &inBlock(reference);
  if (outliers_.empty()) return nullptr;
  const auto found = outliers_.find(reference);
  return found == outliers_.end() ? nullptr : &found->second;
}

/// The record of a number above 0, made if need be and marked as seen.
inline ioReferenceMapImpl::Record& ioReferenceMapImpl::touch(int reference) {
  Record& record = reference < numRecords_ ? inBlock(reference) : make(reference);
  numSeen_ += !record.is(Record::seen);
  record.state |= Record::seen;
  return record;
}

ioReferenceMapImpl::Record& ioReferenceMapImpl::make(int reference) {
  if (reference > reach(numSeen_) || reference == std::numeric_limits<int>::max())
    return outliers_[reference];
  for (; numRecords_ <= reference; ++numRecords_) {
    if (numRecords_ % blockSize == 0) addBlock();
    new (&inBlock(numRecords_)) Record;
  }
  if (outliers_.empty()) return inBlock(reference);
  const auto end = outliers_.lower_bound(numRecords_);
  for (auto at = outliers_.begin(); at != end; ++at) inBlock(at->first) = at->second;
  outliers_.erase(outliers_.begin(), end);
  return inBlock(reference);
}

void ioReferenceMapImpl::addBlock() {
  static_assert(std::is_trivially_destructible_v<Record> && sizeof(Record) == 24);
  void* const block = std::malloc(sizeof(Record) * blockSize);
  if (!block) throw std::bad_alloc();
  blocks_.emplace_back(static_cast<Record*>(block));
}

int ioReferenceMapImpl::newReference(const void* address) {
  if (lastReference_ == std::numeric_limits<int>::max()) {
    ioPacketFileError("ioPacketFile: There are no more reference numbers.\n");
    ioPacketFileAbort();
  }
  ioReferenceMapImpl::defineAddress(++lastReference_, const_cast<void*>(address), false);
  indexAddresses();
  return lastReference_;
}

void ioReferenceMapImpl::defineAddress(int reference, void* address, bool alias) {
  if (!address || reference < 1) return;
  Record& record = touch(reference);
  record.state = (record.state & ~Record::alias) | (alias ? Record::alias : 0);
  if (record.address != address) setAddress(record, reference, address);
  unindexed_.push_back(reference);
}

/// An address keeps its number also when the number's object is another one by now.
void ioReferenceMapImpl::setAddress(Record& record, int reference, void* address) {
  if (record.address && lookup(record.address) == reference) formerAddresses_[record.address] = reference;
  record.address = address;
}

void ioReferenceMapImpl::index(int reference) const {
  const auto addressOf = [this](int number) { return find(number)->address; };
  const void* const address = addressOf(reference);
  if (!formerAddresses_.empty()) formerAddresses_.erase(address);
  addresses_.set(address, reference, addressOf);
}

/// Readers define many addresses and seldom look one up: the hash catches up when it is asked.
void ioReferenceMapImpl::indexAddresses() const {
  for (const int reference : unindexed_) index(reference);
  unindexed_.clear();
}

/// The number of an address that is not null; 0 if it never had one.
int ioReferenceMapImpl::lookup(const void* address) const {
  if (!unindexed_.empty()) indexAddresses();
  const int reference = addresses_.find(address, [this](int number) { return find(number)->address; });
  if (reference || formerAddresses_.empty()) return reference;
  const auto former = formerAddresses_.find(address);
  return former == formerAddresses_.end() ? 0 : former->second;
}

int ioReferenceMapImpl::referenceOf(const void* address) const {
  if (!address) return 0;
  const int reference = lookup(address);
  return reference && find(reference)->is(Record::live) ? reference : -1;
}

bool ioReferenceMapImpl::isDefined(int reference) const {
  const Record* const record = find(reference);
  return record && record->is(Record::live | Record::defined);
}

void* ioReferenceMapImpl::definitionOf(int reference) const {
  const Record* const record = find(reference);
  return record ? record->address : nullptr;
}

void ioReferenceMapImpl::markDefined(int reference, ioPacketType* type) {
  if (reference < 1) return;
  Record& record = touch(reference);
  record.definingType = type;
  record.state |= Record::defined;
  while (const std::uint32_t waiting = record.pending) {
    Pending& pending = pendings_[waiting];
    store(pending.slot, record.address);
    record.pending = std::exchange(pending.next, freePending_);
    freePending_ = waiting;
  }
}

void ioReferenceMapImpl::wait(Record& record, void* slot, ioPacketType* type, int extra) {
  std::uint32_t place = freePending_;
  if (place) {
    freePending_ = pendings_[place].next;
  } else {
    if (pendings_.size() > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    place = static_cast<std::uint32_t>(pendings_.size());
    pendings_.emplace_back();
  }
  pendings_[place] = {slot, type, extra, record.pending};
  record.pending = place;
}

void ioReferenceMapImpl::useDefinition(int reference, ioPacketType* type) {
  if (reference < 1) return;
  Record& record = touch(reference);
  record.countUse();
  if (!record.is(Record::defined)) wait(record, nullptr, type, 0);
}

void ioReferenceMapImpl::resolveUsage(int reference, void* slot, ioPacketType* type, int extra) {
  store(slot, nullptr);
  if (reference < 1) return;
  Record& record = touch(reference);
  record.countUse();
  if (record.is(Record::defined))
    store(slot, record.address);
  else
    wait(record, slot, type, extra);
}

void ioReferenceMapImpl::undefineNumber(int reference) {
  if (reference < 1) return;
  if (!unindexed_.empty()) indexAddresses(); // while the address is there
  Record& record = touch(reference);
  record.state &= ~Record::live;
  record.address = nullptr;
}

void ioReferenceMapImpl::undefineAddress(void* address) { undefineNumber(referenceOf(address)); }

/// The next number above `reference` that has a record, or 0.
int ioReferenceMapImpl::nextReference(int reference) const noexcept {
  if (reference < numRecords_ - 1) return reference + 1;
  const auto found = outliers_.upper_bound(reference);
  return found == outliers_.end() ? 0 : found->first;
}

/// A copy, since what is told of the usages may change them.
std::vector<ioReferenceMapImpl::Pending> ioReferenceMapImpl::waitingFor(const Record& record) const {
  std::vector<Pending> result;
  for (std::uint32_t at = record.pending; at; at = pendings_[at].next) result.push_back(pendings_[at]);
  return result;
}

void ioReferenceMapImpl::reportRemaining(ioClientReadContext& client) {
  for (int reference = nextReference(0); reference; reference = nextReference(reference)) {
    const Record record = *find(reference); // a copy: what a type does about it may move the records
    if (!record.is(Record::seen | Record::live)) continue;
    if (record.pending)
      for (const Pending& pending : waitingFor(record))
        if (pending.type) pending.type->handleUnresolvedPtr(client, record.address, pending.extra);
    if (record.is(Record::defined) && !record.isUsed() && record.definingType)
      record.definingType->handleUnreferencedMemory(client, record.address);
  }
}

void ioReferenceMapImpl::reportUnresolved(const ioPacketType* type, ioUnresolvedCallback callback) {
  for (int reference = nextReference(0); reference; reference = nextReference(reference)) {
    const Record& record = *find(reference);
    if (!record.is(Record::seen | Record::live)) continue;
    for (const Pending& pending : waitingFor(record))
      if (pending.type == type) callback(pending.slot, pending.extra);
  }
}
