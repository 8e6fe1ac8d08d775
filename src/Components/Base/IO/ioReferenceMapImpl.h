// The reference map that contexts make for themselves: a hash from addresses to numbers, and records found by
// number without a search.
#pragma once

#include "Base/IO/ioAddressTable.h"
#include "Base/IO/ioReferenceMap.h"

#include <map>
#include <memory>
#include <vector>

/// Records lie in blocks of 1250 and stay in their place as the table grows. Memory follows the number of
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
    bool seen = false;
    bool defined = false;
    bool live = true;
    bool alias = false;
    int usages = 0;
    void* address = nullptr;
    ioPacketType* definingType = nullptr;
    unsigned int pending = 0; // first of a chain in pendings_, 0 for none
  };
  struct Block;
  struct Pending {
    void* slot;
    ioPacketType* type;
    int extra;
    unsigned int next;
  };
  struct Definition {
    const void* address;
    int reference;
  };
  struct FreeBlock {
    void operator()(Block* block) const noexcept;
  };

  [[nodiscard]] Record* find(int reference) const noexcept;
  Record& touch(int reference);
  void grow(int reference);
  Record& makeInBlock(int reference);
  void countUse(Record& record) noexcept;
  void wait(Record& record, void* slot, ioPacketType* type, int extra);
  void indexAddresses() const;
  [[nodiscard]] int nextReference(int reference) const noexcept;
  [[nodiscard]] std::vector<Pending> waitingFor(const Record& record) const;

  mutable ioAddressTable addresses_;
  std::vector<std::unique_ptr<Block, FreeBlock>> blocks_;
  int slotCount_ = 0; // numbers below it have their records in blocks
  int lastReference_ = 0;

  int numSeen_ = 0;
  std::map<int, Record> outliers_; // numbers from slotCount_ on
  std::vector<Pending> pendings_ = std::vector<Pending>(1);
  unsigned int freePending_ = 0;
  mutable std::vector<Definition> unindexed_; // entered into addresses_ when an address is looked up
};
