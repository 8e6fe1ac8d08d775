// The sum that guards blocks of 4096 bytes, beside zlib's crc32 over the same blocks.
#include "Base/IO/ioChecksum.h"
#include "bench/qvBench.h"

#ifdef BENCH_Zlib
#include <zlib.h>
#endif

namespace {

constexpr std::size_t blockSize = 4096;
constexpr std::size_t blockCount = 64;

const std::vector<std::uint64_t> data = qvBench::randomNumbers(blockCount * blockSize / 8, 1);

// The two sums differ by nature, so the result only tells that each block changed its sum.
template <class Sum>
void measure(benchmark::State& state, Sum sum) {
  std::uint64_t moved = 0;
  std::uint64_t blocks = 0;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(data.data());
  for (auto _ : state)
    for (std::size_t block = 0; block < blockCount; ++block, ++blocks)
      moved += sum(bytes + block * blockSize) != 0;
  qvBench::setResult(state, moved * blockCount / blocks);
}

void base(benchmark::State& state) {
  measure(state, [](const unsigned char* block) {
    ioChecksum checksum;
    checksum.add(block, blockSize);
    return std::uint64_t{checksum.sum()};
  });
}
BENCHMARK(base)->Name("checksum/Base");

#ifdef BENCH_Zlib
void zlib(benchmark::State& state) {
  measure(state, [](const unsigned char* block) { return crc32(0, block, blockSize); });
}
BENCHMARK(zlib)->Name("checksum/Zlib");
#endif

} // namespace
