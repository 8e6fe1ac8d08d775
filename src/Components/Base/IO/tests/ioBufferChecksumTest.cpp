#include "Base/IO/ioBufferChecksum.h"

#include "Base/IO/ioBufferCompress.h"
#include "Base/IO/ioHeader.h"
#include "Base/IO/tests/ioLinkTest.h"

#include <gtest/gtest.h>

using namespace ioLinkTest;
using namespace std::string_literals;

namespace {

using Checked = Reading<ioBufferChecksum>;

/// A block as a machine of either byte order writes it.
std::string block(const std::string& data, std::uint32_t& sum, bool littleEndian) {
  for (std::size_t i = 0; i < data.size(); i += 2) {
    const auto at = [&](std::size_t k) {
      return static_cast<std::uint32_t>(static_cast<unsigned char>(data[k]));
    };
    const bool odd = i + 1 == data.size();
    sum += odd ? at(i) : littleEndian ? at(i) | at(i + 1) << 8 : at(i) << 8 | at(i + 1);
    if (sum & 0x80000000U) sum = (sum & 0xFFFF) + (sum >> 16);
  }
  while (sum >> 16) sum = (sum & 0xFFFF) + (sum >> 16);
  std::string out;
  const auto size = static_cast<std::uint32_t>(data.size());
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(size >> shift);
  for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(~size >> shift);
  out += static_cast<char>(littleEndian ? sum : sum >> 8);
  out += static_cast<char>(littleEndian ? sum >> 8 : sum);
  return out + data;
}

/// A stream of blocks with these sizes.
std::string blocks(const std::string& data, const std::vector<std::size_t>& sizes, bool littleEndian) {
  std::string out;
  std::uint32_t sum = 0;
  std::size_t at = 0;
  for (const std::size_t size : sizes) {
    out += block(data.substr(at, size), sum, littleEndian);
    at += size;
  }
  return out;
}

TEST(ioBufferChecksum, WritesTheseBytes) {
  const std::string expected = ioHeader::systemIsLittleEndian() ? "\0\0\0\x03\xFF\xFF\xFF\xFC\xC4\x62"
                                                                  "abc"s
                                                                : "\0\0\0\x03\xFF\xFF\xFF\xFC\x61\xC5"
                                                                  "abc"s;
  EXPECT_EQ(written<ioBufferChecksum>("abc"), expected);
  EXPECT_EQ(written<ioBufferChecksum>(""), "");
}

TEST(ioBufferChecksum, FramesOneBlockForEachFlushOfTheBuffer) {
  qvTest::Random random(3);
  const std::string data = mixed(random, 10001, 256);
  const std::string expected = blocks(data, {4096, 4096, 1809}, ioHeader::systemIsLittleEndian());
  for (const int piece : {1, 4096, 5000, 20000})
    EXPECT_TRUE(written<ioBufferChecksum>(data, piece) == expected);
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
    const std::string data = n % 5 == 0   ? std::string(total, '\xFF')
                             : n % 5 == 1 ? std::string(total, '\0')
                                          : mixed(random, total, 256);
    Checked reading(blocks(data, sizes, n % 2 == 0));
    ASSERT_TRUE(reading.all(random.between(1, 10000)) == data) << n;
    ASSERT_EQ(reading.link.getStatus(), ioBufferAtEnd);
  }
}

TEST(ioBufferChecksum, FindsEveryFlippedBit) {
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
}

TEST(ioBufferChecksum, EndsInAStatusWhereverItIsCut) {
  const std::string data = "never lose data";
  const std::string stream = written<ioBufferChecksum>(data) + written<ioBufferChecksum>(data);
  for (std::size_t size = 0; size < 25; ++size) {
    Checked reading(stream.substr(0, size));
    EXPECT_EQ(reading.all(), "");
    // Without any byte of data the link below decides.
    EXPECT_EQ(reading.link.getStatus(), size <= 10 ? ioBufferAtEnd : ioBufferBadChecksum) << size;
  }
}

TEST(ioBufferChecksum, TakesNoFalseSizeForGranted) {
  const struct {
    int line;
    std::string header;
  } rows[] = {
      {__LINE__, "\0\0\0\0\xFF\xFF\xFF\xFF\0\0"s},   // nothing
      {__LINE__, "\x7F\xFF\xFF\xFF\x80\0\0\0\0\0"s}, // 2 GiB that do not come
      {__LINE__, "\x80\0\0\0\x7F\xFF\xFF\xFF\0\0"s}, // a negative size
      {__LINE__, "\xFF\xFF\xFF\xFF\0\0\0\0\0\0"s},
  };
  for (const auto& row : rows) {
    Checked reading(row.header + "data");
    EXPECT_EQ(reading.all(), "") << row.line;
    EXPECT_EQ(reading.link.getStatus(), ioBufferBadChecksum) << row.line;
  }
}

} // namespace
