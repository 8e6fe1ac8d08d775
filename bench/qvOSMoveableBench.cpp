// Moveable memory: records read by handle, beside LMDB and one mapping of everything; mapping by way of a
// mapping that stays, beside the system's calls; small blocks, beside the C heap.
#include "Base/OS/qvOSMoveableAllocator.h"
#include "Base/OS/qvOSMoveableMemory.h"
#include "bench/qvBench.h"
#include "bench/qvBenchDirectory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#ifdef BENCH_LMDB
#include <lmdb.h>
#endif

namespace {

using qvOS::MoveableChunk;

const qvBench::Directory& directory() {
  static const qvBench::Directory made("moveable");
  return made;
}

/// Moveable memory with files in that directory.
struct Base {
  Base() {
    if (!memory.initializeFiles(qvString::IString(directory().path("").c_str()), QV_W("bench"))) std::abort();
  }
  qvOS::MoveableMemory memory;
  qvOS::MoveableAllocator allocator{memory};
};

/// Bytes of a file of their own, mapped by the system.
class File {
public:
  explicit File(std::size_t size)
      : size_(size),
        descriptor_(open(directory().path("mapped").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (descriptor_ < 0 || posix_fallocate(descriptor_, 0, static_cast<off_t>(size)) != 0) std::abort();
  }
  ~File() { close(descriptor_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  [[nodiscard]] char* map() const {
    void* const address = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, 0);
    if (address == MAP_FAILED) std::abort();
    return static_cast<char*>(address);
  }
  void unmap(char* address) const { munmap(address, size_); }

private:
  std::size_t size_;
  int descriptor_;
};

// ---- records of 2 KB, 256 MB of them, in the page cache ----

constexpr std::size_t recordSize = 2048, recordCount = 128 * 1024, readCount = 16 * 1024;

using Record = std::uint64_t[recordSize / sizeof(std::uint64_t)];

void fill(void* record, std::size_t index) {
  Record words;
  for (std::size_t i = 0; i < std::size(words); ++i) words[i] = index * std::size(words) + i;
  std::memcpy(record, words, sizeof words);
}

std::uint64_t sumOf(const void* record) {
  Record words;
  std::memcpy(words, record, sizeof words);
  return std::accumulate(std::begin(words), std::end(words), std::uint64_t{0});
}

/// `read(index)` gives the sum of a record.
template <class Read>
void measureReads(benchmark::State& state, Read read) {
  std::vector<std::uint64_t> order = qvBench::randomNumbers(readCount, 1);
  std::uint64_t sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const std::uint64_t index : order) sum = qvBench::mixed(sum, read(index % recordCount));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(readCount));
  qvBench::setResult(state, sum);
}

struct BaseRecords : Base {
  BaseRecords() {
    for (std::size_t i = 0; i < recordCount; ++i) {
      handles.emplace_back(allocator.allocate(recordSize));
      fill(handles.back()->map(), i);
      handles.back()->unmap();
    }
  }
  std::vector<std::unique_ptr<MoveableChunk>> handles;
};

void baseReads(benchmark::State& state) {
  static const BaseRecords records;
  measureReads(state, [](std::uint64_t index) {
    MoveableChunk& record = *records.handles[index];
    const std::uint64_t sum = sumOf(record.map());
    record.unmap();
    return sum;
  });
}

void mappedReads(benchmark::State& state) {
  static char* const records = [] {
    char* const address = File(recordCount * recordSize).map();
    for (std::size_t i = 0; i < recordCount; ++i) fill(address + i * recordSize, i);
    return address;
  }();
  measureReads(state, [](std::uint64_t index) { return sumOf(records + index * recordSize); });
}

#ifdef BENCH_LMDB

/// A database of the records, and the transaction in which they are read.
class Database {
public:
  Database() {
    check(mdb_env_create(&environment_));
    check(mdb_env_set_mapsize(environment_, 1 << 30));
    check(mdb_env_open(environment_, directory().path("lmdb").c_str(), MDB_NOSUBDIR | MDB_NOSYNC, 0600));
    check(mdb_txn_begin(environment_, nullptr, 0, &transaction_));
    check(mdb_dbi_open(transaction_, nullptr, MDB_INTEGERKEY, &table_));
    for (std::uint64_t i = 0; i < recordCount; ++i) {
      MDB_val key{sizeof i, &i}, value{recordSize, nullptr};
      check(mdb_put(transaction_, table_, &key, &value, MDB_RESERVE | MDB_APPEND));
      fill(value.mv_data, i);
    }
    check(mdb_txn_commit(transaction_));
    check(mdb_txn_begin(environment_, nullptr, MDB_RDONLY, &transaction_));
  }
  ~Database() {
    mdb_txn_abort(transaction_);
    mdb_env_close(environment_);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  [[nodiscard]] const void* get(std::uint64_t index) const {
    MDB_val key{sizeof index, &index}, value{};
    check(mdb_get(transaction_, table_, &key, &value));
    return value.mv_data;
  }

private:
  static void check(int error) {
    if (error) std::abort();
  }

  MDB_env* environment_ = nullptr;
  MDB_txn* transaction_ = nullptr;
  MDB_dbi table_ = 0;
};

void lmdbReads(benchmark::State& state) {
  static const Database database;
  measureReads(state, [](std::uint64_t index) { return sumOf(database.get(index)); });
}

BENCHMARK(lmdbReads)->Name("moveable read/LMDB")->Unit(benchmark::kMillisecond);

#endif

// ---- blocks of one mapping, mapped in turn ----

constexpr std::size_t chunkSize = 1024 * 1024;

/// `touch(index)` maps a block, adds to its first byte, unmaps it and gives that byte.
template <class Touch>
void measureMaps(benchmark::State& state, Touch touch) {
  std::uint64_t sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (std::size_t i = 0; i < chunkSize / recordSize; ++i) sum += touch(i) != 0;
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(chunkSize / recordSize));
  qvBench::setResult(state, sum);
}

void baseMaps(benchmark::State& state) {
  Base base;
  std::vector<std::unique_ptr<MoveableChunk>> blocks;
  for (std::size_t i = 0; i < chunkSize / recordSize; ++i)
    blocks.emplace_back(base.allocator.allocate(recordSize));
  measureMaps(state, [&](std::size_t index) {
    MoveableChunk& block = *blocks[index];
    char* const first = static_cast<char*>(block.map());
    *first |= 1;
    const char byte = *first;
    block.unmap();
    return byte;
  });
}

void systemMaps(benchmark::State& state) {
  const File file(chunkSize);
  measureMaps(state, [&](std::size_t index) {
    char* const start = file.map();
    char* const first = start + index * recordSize;
    *first |= 1;
    const char byte = *first;
    file.unmap(start);
    return byte;
  });
}

// ---- small blocks ----

constexpr std::size_t blockCount = 1'000'000;

/// Allocates blocks of 16 to 271 bytes and frees them in another order.
template <class Allocate, class Free>
void measureBlocks(benchmark::State& state, Allocate allocate, Free free) {
  const std::vector<std::uint64_t> random = qvBench::randomNumbers(blockCount, 2);
  std::vector<std::size_t> order(blockCount);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::shuffle(order.begin(), order.end(), std::mt19937_64(3));
  std::vector<void*> blocks(blockCount);
  std::uint64_t made = 0;
  for (auto _ : state) {
    for (std::size_t i = 0; i < blockCount; ++i) blocks[i] = allocate(16 + random[i] % 256);
    made = static_cast<std::uint64_t>(std::count_if(blocks.begin(), blocks.end(), [](void* p) { return p; }));
    for (const std::size_t i : order) free(blocks[i]);
  }
  qvBench::setResult(state, made);
}

void baseBlocks(benchmark::State& state) {
  Base base;
  measureBlocks(
      state, [&](std::size_t size) { return base.allocator.allocate(size); },
      [](void* block) { delete static_cast<MoveableChunk*>(block); });
}

void heapBlocks(benchmark::State& state) { measureBlocks(state, std::malloc, std::free); }

BENCHMARK(baseReads)->Name("moveable read/Base")->Unit(benchmark::kMillisecond);
BENCHMARK(mappedReads)->Name("moveable read/one mmap")->Unit(benchmark::kMillisecond);
BENCHMARK(baseMaps)->Name("moveable map/Base")->Unit(benchmark::kMicrosecond);
BENCHMARK(systemMaps)->Name("moveable map/mmap")->Unit(benchmark::kMicrosecond);
BENCHMARK(baseBlocks)->Name("moveable allocate/Base")->Unit(benchmark::kMillisecond);
BENCHMARK(heapBlocks)->Name("moveable allocate/malloc")->Unit(benchmark::kMillisecond);

} // namespace
