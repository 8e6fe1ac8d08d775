#include "Base/IO/ioBufferChecksum.h"

#include "Base/IO/ioHeader.h"
#include "Base/IO/tests/ioLinkTest.h"

#include <gtest/gtest.h>

using namespace ioLinkTest;
using namespace std::string_literals;

namespace {

using Checked = Reading<ioBufferChecksum>;

/// A stream of blocks with these sizes, as a machine of either byte order writes it.
std::string blocks(const std::string& data, const std::vector<std::size_t>& sizes, bool littleEndian) {
  std::string out;
  std::uint32_t sum = 0;
  std::size_t at = 0;
  for (const std::size_t size : sizes) {
    const std::size_t end = at + size;
    const auto byte = [&](std::size_t k) {
      return static_cast<std::uint32_t>(static_cast<unsigned char>(data[k]));
    };
    for (std::size_t i = at; i < end; i += 2) {
      sum += i + 1 == end ? byte(i) : littleEndian ? byte(i) | byte(i + 1) << 8 : byte(i) << 8 | byte(i + 1);
      if (sum & 0x80000000U) sum = (sum & 0xFFFF) + (sum >> 16);
    }
    while (sum >> 16) sum = (sum & 0xFFFF) + (sum >> 16);
    for (const std::size_t number : {size, ~size})
      for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(number >> shift);
    for (const int shift : {0, 8}) out += static_cast<char>(sum >> (littleEndian ? shift : 8 - shift));
    out += data.substr(at, size);
    at = end;
  }
  return out;
}

TEST(ioBufferChecksum, FramesOneBlockForEachFlushOfTheBuffer) {
  const bool little = ioHeader::systemIsLittleEndian();
  EXPECT_EQ(written<ioBufferChecksum>("abc"),
            "\0\0\0\x03\xFF\xFF\xFF\xFC"s + (little ? "\xC4\x62" : "\x61\xC5") + "abc");
  EXPECT_EQ(written<ioBufferChecksum>(""), "");
  qvTest::Random random(3);
  const std::string data = mixed(random, 10001, 256);
  for (const std::size_t piece : {1, 4096, 5000, 20000})
    EXPECT_TRUE(written<ioBufferChecksum>(data, piece) == blocks(data, {4096, 4096, 1809}, little));
}

TEST(ioBufferChecksum, ReadsWritersOfBothByteOrders) {
  qvTest::Random random(4);
  for (int n = 0; n < 200; ++n) {
    std::vector<std::size_t> sizes;
    std::size_t total = 0;
    for (int i = random.between(1, 9); i > 0; --i) {
      sizes.push_back(1 + random.below(random.oneIn(4) ? 200000 : 60));
      total += sizes.back();
    }
    const std::string data =
        n % 5 < 2 ? std::string(total, n % 5 ? '\0' : '\xFF') : mixed(random, total, 256);
    Checked reading(blocks(data, sizes, n % 2 == 0));
    ASSERT_TRUE(reading.all(random.between(1, 10000)) == data) << n;
    ASSERT_EQ(reading.link.getStatus(), ioBufferAtEnd);
  }
}

TEST(ioBufferChecksum, FindsEveryFlippedBitCutAndFalseSize) {
  const std::string data = "never lose data";
  const std::string stream = written<ioBufferChecksum>(data);
  for (std::size_t bit = 0; bit < stream.size() * 8; ++bit) {
    Checked reading(stream);
    reading.bytes[bit / 8] = static_cast<char>(reading.bytes[bit / 8] ^ 1 << bit % 8);
    EXPECT_EQ(reading.all(), "") << bit;
    EXPECT_EQ(reading.link.getStatus(), ioBufferBadChecksum) << bit;
    // Bytes of a damaged block are still there for those who want them.
    EXPECT_EQ(reading.link.heldBytes(), bit / 8 < 8 ? 0 : static_cast<int>(data.size())) << bit;
  }
  for (std::size_t size = 0; size < stream.size(); ++size) {
    Checked reading(stream.substr(0, size));
    EXPECT_EQ(reading.all(), "");
    // Without any byte of data the link below decides.
    EXPECT_EQ(reading.link.getStatus(), size <= 10 ? ioBufferAtEnd : ioBufferBadChecksum) << size;
  }
  // No data, 2 GiB that do not come, and sizes that would be negative.
  for (const std::string& size : {"\0\0\0\0\xFF\xFF\xFF\xFF"s, "\x7F\xFF\xFF\xFF\x80\0\0\0"s,
                                  "\x80\0\0\0\x7F\xFF\xFF\xFF"s, "\xFF\xFF\xFF\xFF\0\0\0\0"s}) {
    Checked reading(size + "\0\0data"s);
    EXPECT_EQ(reading.all(), "");
    EXPECT_EQ(reading.link.getStatus(), ioBufferBadChecksum);
  }
}

} // namespace
