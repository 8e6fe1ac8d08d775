// The reference map that contexts make for themselves: a hash from addresses to numbers, and records found by
// number without a search.
#pragma once

#include "Base/IO/ioAddressTable.h"
#include "Base/IO/ioReferenceMap.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

/// Records lie in blocks, so that they stay in their places as the map grows. Memory follows the number of
/// references that came by and not the height of their numbers, which a damaged file can set at will: a
/// number far beyond what that count explains lives in a tree of its own until the blocks reach it.
class ioReferenceMapImpl : public ioReferenceMap {
public:
  ioReferenceMapImpl() = default;
  ioReferenceMapImpl(const ioReferenceMapImpl&) = delete;
  ioReferenceMapImpl& operator=(const ioReferenceMapImpl&) = delete;

  int newReference(const void* address) override;
  void defineAddress(int reference, void* address, bool alias) override;
  [[nodiscard]] int referenceOf(const void* address) const override;
  [[nodiscard]] bool isDefined(int reference) const override;
  [[nodiscard]] void* definitionOf(int reference) const override;
  void markDefined(int reference, ioPacketType* type) override;
  void useDefinition(int reference, ioPacketType* type) override;
  void undefineNumber(int reference) override;
  void undefineAddress(void* address) override;
  void resolveUsage(int reference, void* slot, ioPacketType* type, int extra) override;
  void reportRemaining(ioClientReadContext& client) override;
  void reportUnresolved(const ioPacketType* type, ioUnresolvedCallback callback) override;

protected:
  ~ioReferenceMapImpl() override;

private:
  struct Record {
    // Flags and count share a word, and the word is always changed as a whole.
    static constexpr std::uint32_t seen = 1, defined = 2, live = 4, alias = 8, oneUse = 16;

    std::uint32_t state = live;
    std::uint32_t pending = 0; // first of a chain in pendings_, 0 for none
    void* address = nullptr;
    ioPacketType* definingType = nullptr;

    [[nodiscard]] bool is(std::uint32_t flags) const noexcept { return (state & flags) == flags; }
    [[nodiscard]] bool isUsed() const noexcept { return state >= oneUse; }
    /// Counts a use, up to the greatest count that fits.
    void countUse() noexcept {
      if (state < ~std::uint32_t(oneUse - 1)) state += oneUse;
    }
  };
  struct Pending {
    void* slot;
    ioPacketType* type;
    int extra;
    std::uint32_t next;
  };
  static constexpr int blockSize = 1250;
  struct FreeBlock {
    void operator()(Record* records) const noexcept;
  };

  [[nodiscard]] Record& inBlock(int reference) const noexcept;
  [[nodiscard]] const Record* find(int reference) const noexcept;
  Record& touch(int reference);
  Record& make(int reference);
  void addBlock();
  void setAddress(Record& record, int reference, void* address);
  void index(int reference) const;
  void indexAddresses() const;
  [[nodiscard]] int lookup(const void* address) const;
  void wait(Record& record, void* slot, ioPacketType* type, int extra);
  [[nodiscard]] int nextReference(int reference) const noexcept;
  [[nodiscard]] std::vector<Pending> waitingFor(const Record& record) const;

  mutable ioAddressTable addresses_;
  mutable std::map<const void*, int> formerAddresses_; // of records that have another address now
  mutable std::vector<int> unindexed_;                 // numbers that addresses_ does not know yet
  std::vector<std::unique_ptr<Record, FreeBlock>> blocks_;
  int numRecords_ = 0;             // how many are made, from number 0 on
  std::map<int, Record> outliers_; // numbers from numRecords_ on
  int numSeen_ = 0;
  int lastReference_ = 0;
  std::vector<Pending> pendings_ = std::vector<Pending>(1);
  std::uint32_t freePending_ = 0;
};
