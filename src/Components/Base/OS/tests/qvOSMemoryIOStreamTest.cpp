#include "Base/OS/qvOSMemoryIOStream.h"

#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using qvOS::MemoryIOStream;

TEST(MemoryIOStream, tellsTheEndTogetherWithTheLastBytes) {
  const char bytes[] = {'a', 'b', 'c', 'd', 'e'};
  MemoryIOStream stream(bytes, sizeof bytes);
  const struct {
    int line;
    std::uint64_t wanted;
    std::string got;
    int code;
  } rows[] = {
      {__LINE__, 2, "ab", 0}, {__LINE__, 3, "cde", 0},  {__LINE__, 0, "", 0},
      {__LINE__, 1, "", 3},   {__LINE__, ~0ull, "", 3},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    char buffer[8] = {};
    std::uint64_t count = 99;
    EXPECT_EQ(stream.read(buffer, row.wanted, &count).num(), row.code);
    EXPECT_EQ(std::string(buffer, count), row.got);
  }
  EXPECT_TRUE(stream.seek(3));
  EXPECT_FALSE(stream.seek(6));
  char buffer[8] = {};
  EXPECT_STREQ(stream.read(buffer, 8, nullptr).message(), "End Of File");
  EXPECT_STREQ(buffer, "de");
  EXPECT_EQ(stream.write("x", 1, nullptr).num(), 4) << "constant bytes";

  char block[] = "12345678"; // Lent memory takes what fits.
  MemoryIOStream lent(block, 5, 99);
  lent.truncate(2);
  ASSERT_TRUE(lent.seek(1));
  std::uint64_t count = 0;
  EXPECT_EQ(lent.write("abcdef", 6, &count).num(), 4);
  EXPECT_EQ(count, 4u);
  EXPECT_STREQ(block, "1abcd678");
}

TEST(MemoryIOStream, growsLikeAModelString) {
  qvTest::Random random(7);
  MemoryIOStream stream;
  std::string model;
  for (int i = 0; i < 2000; ++i) {
    const std::size_t at = random.below(model.size() + 1);
    const std::string piece(random.below(300), static_cast<char>('a' + random.below(26)));
    ASSERT_TRUE(stream.seek(at));
    ASSERT_FALSE(stream.write(piece.data(), piece.size(), nullptr));
    model.replace(at, std::min(piece.size(), model.size() - at), piece);
    ASSERT_EQ(stream.position(), at + piece.size());
    if (random.oneIn(50)) {
      const std::size_t cut = random.below(model.size() + 10);
      stream.truncate(cut);
      model.resize(std::min(cut, model.size()));
      ASSERT_LE(stream.position(), model.size());
    }
  }
  EXPECT_EQ(std::string(static_cast<const char*>(stream.data()), stream.size()), model);
  ASSERT_TRUE(stream.seek(0));
  EXPECT_EQ(stream.write("abc", ~0ull, nullptr).num(), 4) << "no such size";
}

} // namespace
