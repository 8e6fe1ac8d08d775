#include "Base/IO/ioBufferCompress.h"

#include "Base/IO/ioLzwTable.h"
#include "Base/IO/tests/ioLinkTest.h"
#include "Base/IO/tests/ioLzwModel.h"

#include <gtest/gtest.h>

using namespace ioLinkTest;
using namespace std::string_literals;

namespace {

using Compressed = Reading<ioBufferCompress>;

/// Data that needs all code widths, clear codes, and both halves of the ratio check.
std::string longData(qvTest::Random& random, std::size_t size) {
  std::string data;
  while (data.size() < size)
    data += mixed(random, 20000 + random.below(400000), 1 << random.between(0, 8),
                  static_cast<char>(random.bits()));
  return data;
}

/// Text without zeros that enters a string of `code` and the byte `code >> 8`, so that slot 0 of the table is
/// taken, and then zeros: their string then has a slot where others push it out.
std::string dataThatLosesZeros(qvTest::Random& random, int code) {
  std::string data = mixed(random, 2000 + static_cast<std::size_t>(code) * 6, 200, 1);
  std::vector<std::string> strings;
  (void)ioLzwModel::compress(data, &strings);
  const std::string string = strings.at(static_cast<std::size_t>(code)) + static_cast<char>(code >> 8);
  for (int i = 0; i < 40; ++i) data += string + mixed(random, 3, 200, 1);
  for (int i = 0; i < 3000; ++i)
    data += std::string(random.below(5), '\0') + mixed(random, 1 + random.below(30), 250, 1);
  return data;
}

TEST(ioBufferCompress, WritesTheseBytes) {
  const struct {
    int line;
    std::string data, stream;
  } rows[] = {
      {__LINE__, "A", "\x1F\x9D\x90\x41\x02\x02\0\0\0\0\0\0"s},
      {__LINE__, "\xFF"s, "\x1F\x9D\x90\xFF\x02\x02\0\0\0\0\0\0"s},
      // 'a' 258 257: a run is the string that is only being defined.
      {__LINE__, "aaa", "\x1F\x9D\x90\x61\x04\x06\x04\0\0\0\0\0"s},
      // Nothing was written: no magic, and the codes 0 and 257.
      {__LINE__, "", "\0\x02\x02\0\0\0\0\0\0"s},
      // Eight codes fill a group; its last bytes fill up the next one.
      {__LINE__, "01234567",
       "\x1F\x9D\x90\x30\x62\xC8\x98\x41\xA3\x86\x8D\x1B\x01\x01\xC8\x98\x41\xA3\x86\x8D\x1B"s},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(written<ioBufferCompress>(row.data), row.stream) << row.line;
    EXPECT_EQ(ioLzwModel::compress(row.data), row.stream) << row.line;
  }
}

TEST(ioBufferCompress, WritesWhatTheModelWritesAndReadsItBack) {
  qvTest::Random random(1);
  std::vector<std::string> inputs = {std::string(3000000, 'x'), longData(random, 12000000),
                                     longData(random, 500000)};
  for (const int letters : {2, 3, 20, 256})
    for (const std::size_t size : {2, 300, 5000, 300000}) inputs.push_back(mixed(random, size, letters));
  for (const int code : {512, 8192, 25856}) inputs.push_back(dataThatLosesZeros(random, code));
  for (const std::string& data : inputs) {
    const std::string stream = written<ioBufferCompress>(data, 1 + random.below(20000));
    ASSERT_TRUE(stream == ioLzwModel::compress(data)) << data.size();
    Compressed reading(stream + "after");
    ASSERT_TRUE(reading.all(random.between(1, 20000)) == data) << data.size();
    EXPECT_EQ(reading.link.getStatus(), ioBufferCompressedEnd);
    char rest[6] = {};
    EXPECT_EQ(reading.link.nextLink()->readBytes(rest, 5), 5);
    EXPECT_STREQ(rest, "after"); // what follows the end code's group stays unread
  }
}

TEST(ioLzwTable, FindsStringsThatCrowdInOnePlace) {
  ioLzwTable table;
  std::vector<std::uint32_t> keys;
  for (std::uint32_t key = 1; key < 0x1000000; ++key)
    if ((key * 0x9E3779B1U & 0xFFFFFF) >> 7 < 6) keys.push_back(key);
  ASSERT_GT(keys.size(), 700U); // some stand further than 511 slots from their place
  for (std::uint32_t i = 0; i < keys.size(); ++i) {
    ASSERT_EQ(table.find(keys[i]), 0U);
    table.insert(keys[i], 258 + i);
    for (std::uint32_t j = 0; j <= i; j += 50) ASSERT_EQ(table.find(keys[j]), 258 + j) << i;
  }
  table.clear();
  for (const std::uint32_t key : keys) ASSERT_EQ(table.find(key), 0U);
}

/// Every stream, however broken, ends in a status, and gives what the model gives on the way.
void expectAsModel(const std::string& stream, int piece) {
  std::string expected;
  const bool endsWell = ioLzwModel::decompress(stream, expected);
  Compressed reading(stream);
  const std::string got = reading.all(piece);
  EXPECT_EQ(reading.link.getStatus(), endsWell ? ioBufferCompressedEnd : ioBufferFailed);
  // A string without end keeps back what is left of its 4096 bytes.
  EXPECT_EQ(got, endsWell ? expected : expected.substr(0, got.size()));
  EXPECT_GT(got.size() + 4096, expected.size());
}

TEST(ioBufferCompress, ReadsBrokenStreamsAsTheModelDoes) {
  qvTest::Random random(2);
  const std::string stream = written<ioBufferCompress>(mixed(random, 700, 20));
  for (std::size_t i = 0; i < stream.size(); ++i) {
    std::string flipped = stream;
    flipped[i] = static_cast<char>(flipped[i] ^ 1 << random.below(8));
    expectAsModel(flipped, 100);
    expectAsModel(stream.substr(0, i), 100);
  }
  expectAsModel(written<ioBufferCompress>(""), 100);
  expectAsModel("\x1F\x9D\x90\x01\x01\0\0\0\0\0\0\0"s, 100); // the end code alone
  ioLzwModel::Packer cycle; // the code 259 before it is defined becomes its own prefix
  for (const int code : {65, 259, 66, 259, 259, 67, 259, -1}) {
    cycle.emit(code);
    ++cycle.freeCode;
  }
  expectAsModel(cycle.out, 1000);
  for (int n = 0; n < 1500; ++n) {
    ioLzwModel::Packer packer;
    const int codes = random.between(1, n % 10 == 0 ? 6000 : 600);
    for (int i = 0; i < codes; ++i) {
      const int kind = random.between(0, n % 3 == 0 ? 3 : 40);
      int code = kind == 0   ? packer.freeCode + random.between(-2, 2)
                 : kind == 1 ? random.between(0, packer.maxCode - 1)
                 : kind == 2 ? 256 + random.between(0, 1) * 44
                 : kind < 10 ? random.between(0, 255)
                             : random.between(0, packer.freeCode - 1);
      if (code == 257 || code >= 1 << packer.codeBits) code = 300;
      packer.clearPending = code == 256;
      packer.emit(code);
      if (code == 256)
        packer.freeCode = 257;
      else if (i > 0 && packer.freeCode < 65536)
        ++packer.freeCode;
    }
    if (random.oneIn(2)) packer.emit(257);
    packer.emit(-1);
    expectAsModel(packer.out, random.between(1, 5000));
  }
  ioBufferCompress alone(true);
  EXPECT_EQ(readAll(alone), "");
  EXPECT_EQ(alone.getStatus(), ioBufferFailed);
}

} // namespace
