#include "Base/OS/qvOSMoveableAllocator.h"
#include "Base/OS/qvOSMoveableMemory.h"
#include "Base/OS/tests/qvOSMMAllocatorCheck.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "Base/OS/tests/qvOSTestPattern.h"
#include "Base/Platform/qvPlatformError.h"
#include "testing/qvTestPlatform.h"
#include "testing/qvTestSanitizer.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using namespace qvOS;
using SmallCheck = AllocatorImpl::Check;
using LargeCheck = MoveableMemImpl::Check;
using Mapping = qv::Reference<MoveableMapping>;
using Small = std::unique_ptr<MoveableChunk>;

constexpr std::uint64_t kib = 1024, mib = 1024 * kib, unit = 64 * kib;

/// A memory whose files are in a directory of their own, which goes after them.
class Memory : qvTest::Scratch, public MoveableMemory {
public:
  Memory() { EXPECT_TRUE(initializeFiles(name(""), QV_W("moveable"))); }
};

/// The figures from `fileCount` on.
std::vector<std::uint64_t> figures(MoveableMemory& memory) {
  const MoveableMemory::Stats stats = memory.getStats();
  EXPECT_EQ(stats.granularity, FileMapping::getGranularity());
  return {stats.fileCount, stats.fileBytes, stats.usedBlocks, stats.usedBytes, stats.mappedBytes};
}
using Figures = std::vector<std::uint64_t>;

TEST(Moveable, NeedsADirectory) {
  const qvTest::Scratch scratch;
  scratch.write("file", "");
  MoveableMemory memory;
  MoveableAllocator allocator(memory);
  EXPECT_FALSE(memory.initializeFiles(scratch.name(""), qvString::IString()));
  for (const auto& name : {qvString::IString(), scratch.name("file"), scratch.name("nowhere")})
    EXPECT_FALSE(memory.initializeFiles(name, QV_W("x")));
  EXPECT_FALSE(memory.allocate(1));
  EXPECT_FALSE(Small(allocator.allocate(1)));
  EXPECT_TRUE(memory.initializeFiles(scratch.name(""), QV_W("x")));
  EXPECT_FALSE(memory.initializeFiles(scratch.name("file"), QV_W("x")));
  EXPECT_TRUE(memory.allocate(1));
  EXPECT_TRUE(Small(allocator.allocate(1)));
}

TEST(Moveable, SizesAreRoundedOrRefused) {
  Memory memory;
  MoveableAllocator allocator(memory);
  const struct {
    int line;
    std::uint64_t size, blockSize, fileSize;
  } rows[] = {
      {__LINE__, 1, unit, 128 * mib},
      {__LINE__, unit, unit, 128 * mib},
      {__LINE__, unit + 1, 2 * unit, 128 * mib},
      {__LINE__, 32 * mib, 32 * mib, 128 * mib},
      {__LINE__, 32 * mib + 1, 32 * mib + 1, 32 * mib + 1},
      {__LINE__, 128 * mib, 128 * mib, 128 * mib},
  };
  for (const auto& row : rows) {
    const Mapping mapping = memory.allocate(row.size);
    EXPECT_EQ(figures(memory), (Figures{1, row.fileSize, 1, row.blockSize, 0})) << row.line;
    EXPECT_EQ(mapping->getSize(), row.blockSize) << row.line;
  }
  const std::uint64_t most = ~std::uint64_t(0);
  for (const std::uint64_t size : {std::uint64_t(0), most, most - 31, most - unit, most / 2 + 1, most / 2}) {
    EXPECT_FALSE(memory.allocate(size)) << size;
    EXPECT_FALSE(allocator.allocate(size)) << size;
  }
  EXPECT_EQ(allocator.getNumAllocated(), 0);
  EXPECT_EQ(figures(memory), (Figures{0, 0, 0, 0, 0}));
}

TEST(Moveable, ARestOfOneUnitIsNotSplitOff) {
  Memory memory;
  const Mapping large[] = {memory.allocate(32 * mib), memory.allocate(32 * mib), memory.allocate(32 * mib)};
  Mapping last = memory.allocate(32 * mib - unit);
  EXPECT_EQ(last->getSize(), 32 * mib);
  EXPECT_EQ(figures(memory), (Figures{1, 128 * mib, 4, 128 * mib, 0}));
  last = nullptr;
  last = memory.allocate(32 * mib - 2 * unit);
  EXPECT_EQ(last->getSize(), 32 * mib - 2 * unit);
  const Mapping rest = memory.allocate(unit);
  EXPECT_EQ(rest->getSize(), 2 * unit);
  EXPECT_EQ(figures(memory), (Figures{1, 128 * mib, 5, 128 * mib, 0}));
}

TEST(Moveable, OneEmptyFileIsKept) {
  Memory memory;
  using Chunks = LargeCheck::Chunks;
  const auto chunks = [&] { return LargeCheck::chunks(implOf(memory)); };
  std::vector<Mapping> blocks;
  for (int i = 0; i < 8; ++i) blocks.push_back(memory.allocate(32 * mib));
  EXPECT_EQ(chunks(), (Chunks{2, false}));
  { // one with its own size goes with its block
    const Mapping own = memory.allocate(32 * mib + 1);
    EXPECT_EQ(chunks(), (Chunks{3, false}));
  }
  EXPECT_EQ(chunks(), (Chunks{2, false}));
  // The blocks of the first file go in an odd order, and it is one block again.
  for (const std::size_t i : {2u, 0u, 3u, 1u}) blocks[i] = nullptr;
  EXPECT_EQ(chunks(), (Chunks{2, true}));
  blocks[0] = memory.allocate(128 * mib); // takes the spare one
  EXPECT_EQ(chunks(), (Chunks{2, false}));
  blocks.clear();
  EXPECT_EQ(chunks(), (Chunks{1, true}));
  EXPECT_EQ(figures(memory), (Figures{0, 0, 0, 0, 0})); // asking gives it back
  EXPECT_EQ(chunks(), (Chunks{0, false}));
}

TEST(Moveable, CountsMappedBytes) {
  Memory memory;
  Mapping mapping = memory.allocate(3 * unit);
  void* const address = mapping->map();
  ASSERT_TRUE(address);
  EXPECT_EQ(mapping->map(), address);
  EXPECT_EQ(mapping->getPtr(), address);
  EXPECT_EQ(figures(memory).back(), 3 * unit);
  mapping->flush(0, 3 * unit);
  mapping->load(0, 3 * unit);
  mapping->unmap();
  mapping->unmap();
  EXPECT_FALSE(mapping->getPtr());
  EXPECT_EQ(figures(memory).back(), 0u);
  mapping->map();
  mapping = nullptr; // stays counted, and is meant to
  EXPECT_EQ(figures(memory), (Figures{0, 0, 0, 0, 3 * unit}));
}

TEST(Moveable, SmallBlocksShareAMapping) {
  Memory memory;
  MoveableAllocator allocator(memory), view(allocator);
  const Small a(allocator.allocate(100)), b(allocator.allocate(kib)),
      other(allocator.allocate(256 * kib + 1));
  EXPECT_EQ(view.getNumAllocated(), 3);
  EXPECT_EQ(figures(memory), (Figures{1, 128 * mib, 2, mib + 5 * unit, 0}));
  auto* const start = static_cast<char*>(a->map());
  EXPECT_TRUE(a->isMapped() && !b->isMapped());
  EXPECT_EQ(b->map(), start + 128);
  EXPECT_EQ(a->map(), start);
  std::strcpy(start, "kept");
  a->unmap();
  a->unmap();
  EXPECT_FALSE(a->isMapped());
  EXPECT_EQ(figures(memory).back(), mib);
  b->unmap();
  EXPECT_EQ(figures(memory).back(), mib); // in the cache
  EXPECT_EQ(a->map(), start);
  other->map();
  other->unmap();
  EXPECT_STREQ(start, "kept");
  EXPECT_EQ(figures(memory).back(), mib + 5 * unit);
  a->unmap(); // takes the place in the cache
  EXPECT_EQ(figures(memory).back(), mib);
  other->map();
  other->unmap();
  EXPECT_EQ(figures(memory).back(), 5 * unit);
  EXPECT_STREQ(static_cast<char*>(a->map()), "kept");
  EXPECT_EQ(figures(memory).back(), mib + 5 * unit);
  allocator.unmapCachedMappings();
  EXPECT_EQ(figures(memory).back(), mib);
  a->unmap();
  view.unmapCachedMappings();
  EXPECT_EQ(figures(memory).back(), 0u);
}

TEST(Moveable, AMappingMayFail) {
  Memory memory;
  MoveableAllocator allocator(memory);
  const Mapping mapping = memory.allocate(1);
  const Small a(allocator.allocate(40)), b(allocator.allocate(40));
  qvTest::PlatformScript script;
  script.failCall(0, qvPlatform::errorNumber(qvPlatform::ErrorKind::other), "map", 3);
  EXPECT_FALSE(mapping->map());
  EXPECT_FALSE(a->map());
  EXPECT_TRUE(a->isMapped());
  EXPECT_FALSE(a->map()); // does not ask again
  EXPECT_FALSE(b->map());
  EXPECT_EQ(script.failures(), 3);
  EXPECT_EQ(figures(memory).back(), 0u);
  EXPECT_TRUE(mapping->map());
  a->unmap();
  EXPECT_TRUE(a->map());
  EXPECT_EQ(static_cast<char*>(b->map()), static_cast<char*>(a->map()) + 64);
  mapping->unmap();
}

TEST(Moveable, AFileMayFail) {
  Memory memory;
  MoveableAllocator allocator(memory);
  const Mapping before = memory.allocate(32 * mib);
  qvTest::writePattern(before->map(), before->getSize(), 1);
  const Figures good = figures(memory);
  Mapping made;
  const int failures = qvTest::failEveryCall(
      qvPlatform::errorNumber(qvPlatform::ErrorKind::noSpace), nullptr, [] {},
      [&] {
        const Small small(allocator.allocate(100 * mib));
        made = small ? Mapping() : memory.allocate(100 * mib);
      },
      [&] {
        made = nullptr;
        EXPECT_EQ(figures(memory), good);
        EXPECT_EQ(allocator.getNumAllocated(), 0);
        EXPECT_TRUE(qvTest::hasPattern(before->getPtr(), before->getSize(), 1));
      });
  EXPECT_GE(failures, 3);
  before->unmap();
}

/// A memory and an allocator beside a plain list of what was allocated.
class Model {
public:
  explicit Model(qvTest::Random& random) : random_(random) {}

  void step() {
    const std::uint64_t what = random_.below(12);
    if (what < 5 || blocks_.empty()) return allocate(what < 3);
    if (what < 7) return drop(random_.below(blocks_.size()));
    if (what == 7) return compareFigures();
    if (what == 8) return allocator_.unmapCachedMappings();
    use(blocks_[random_.below(blocks_.size())]);
  }

  /// Walks all chunks of both levels.
  void check() {
    std::set<MoveableChunk*> small;
    for (const Block& block : blocks_)
      if (block.small) small.insert(block.small.get());
    small_ = SmallCheck::walk(implOf(allocator_), small);
    std::set<VChunk*> large;
    for (const Mapping& mapping : mappings()) large.insert(blockOf(mapping));
    large_ = LargeCheck::walk(implOf(memory_), large);
  }

  void dropAll() {
    for (Block& block : blocks_) use(block);
    while (!blocks_.empty()) drop(0);
    compareFigures();
  }

private:
  struct Block {
    Mapping large;
    Small small; // one of the two
    std::uint64_t size, seed;
    void* address = nullptr; // while it is mapped

    void* map() const { return large ? large->map() : small->map(); }
    void unmap() const { large ? large->unmap() : small->unmap(); }
  };

  static VChunk* blockOf(const Mapping& mapping) {
    return LargeCheck::blockOf(static_cast<const MappingImpl&>(*mapping));
  }

  std::vector<Mapping> mappings() const {
    std::vector<Mapping> all;
    for (const Block& block : blocks_)
      if (block.large) all.push_back(block.large);
    for (const ChunkImpl* chunk : small_.chunks) all.push_back(chunk->mapping);
    return all;
  }

  void allocate(bool isSmall) {
    const std::uint64_t size = random_.below(((isSmall ? 400 * kib : 40 * mib) >> random_.below(14)) + 1);
    if (isSmall ? blocks_.size() > 250 : largeBytes_ + size > 160 * mib) return;
    Block block{nullptr, nullptr, size, random_.bits()};
    if (isSmall)
      block.small.reset(allocator_.allocate(size));
    else
      block.large = memory_.allocate(size);
    ASSERT_EQ(block.small || block.large, size > 0);
    if (size == 0) return;
    EXPECT_TRUE(isSmall ? SmallCheck::isBestFit(implOf(allocator_), small_, size, *block.small)
                        : LargeCheck::isBestFit(implOf(memory_), large_, size, *blockOf(block.large)));
    largeBytes_ += isSmall ? 0 : block.large->getSize();
    qvTest::writePattern(block.map(), size, block.seed);
    blocks_.push_back(std::move(block));
    use(blocks_.back());
  }

  void drop(std::size_t index) {
    std::swap(blocks_[index], blocks_.back());
    if (const Mapping large = blocks_.back().large) {
      largeBytes_ -= large->getSize();
      if (large->getPtr()) lostBytes_ += large->getSize(); // goes while it is mapped
    }
    blocks_.pop_back();
  }

  void use(Block& block) {
    void* const address = block.map();
    ASSERT_TRUE(address);
    EXPECT_TRUE(!block.address || block.address == address);
    EXPECT_TRUE(qvTest::hasPattern(address, block.size, block.seed));
    block.address = address;
    if (random_.oneIn(4)) return;
    block.unmap();
    block.address = nullptr;
  }

  void compareFigures() {
    const Figures told = figures(memory_);
    check();
    Figures expected{large_.chunks.size(), 0, 0, 0, lostBytes_};
    for (const Chunk* chunk : large_.chunks) expected[1] += static_cast<std::uint64_t>(chunk->file.getSize());
    for (const Mapping& mapping : mappings()) {
      ++expected[2];
      expected[3] += mapping->getSize();
      expected[4] += mapping->getPtr() ? mapping->getSize() : 0;
    }
    EXPECT_EQ(told, expected);
  }

  qvTest::Random& random_;
  Memory memory_;
  MoveableAllocator allocator_{memory_};
  std::vector<Block> blocks_;
  LargeCheck::State large_;
  SmallCheck::State small_;
  std::uint64_t largeBytes_ = 0, lostBytes_ = 0;
};

TEST(Moveable, StaysWellFormedUnderAnyOperations) {
  qvTest::Random random(20120404);
  const int steps = qvTest::isSanitized ? 4000 : 20000;
  Model model(random);
  for (int i = 0; i < steps && !HasFailure(); ++i) {
    model.step();
    model.check();
  }
  model.dropAll();
}

} // namespace
