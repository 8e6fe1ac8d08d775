// Packets with a value of every type and with structure, for the tests of every encoding.
#pragma once

#include "testing/qvTestPacketFile.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <tuple>

namespace ioContextObjects {

/// A type's tags, a value, and an array.
template <class T>
struct Values {
  char tag, arrayTag;
  T one, many[3];
};
inline constexpr std::tuple everyType = {
    Values<bool>{'b', 'B', true, {true, false, true}},
    Values<char>{'c', '1', '\x80', {'a', '\0', '\x80'}},
    Values<unsigned char>{'C', '2', 255, {0, 127, 255}},
    Values<short>{'h', '3', -2, {SHRT_MIN, 0x1234, -1}},
    Values<unsigned short>{'H', '4', 0x1234, {0, 0x1234, 0xFFFF}},
    Values<int>{'i', '5', -3, {INT_MIN, 0x12345678, -1}},
    Values<unsigned int>{'I', '6', 0x12345678, {0, 0x12345678, UINT_MAX}},
    Values<std::int64_t>{'l', '7', -4, {INT64_MIN, 0x123456789ABCDEF0, -1}},
    Values<std::uint64_t>{'L', '8', 0x123456789ABCDEF0, {0, 0x123456789ABCDEF0, UINT64_MAX}},
    Values<float>{'f', '9', 0.1f, {1.5f, -HUGE_VALF, std::numeric_limits<float>::denorm_min()}},
    Values<double>{'d', '0', 0.1, {-1.0 / 3, 0x1p1023, -0.0}},
};
template <class Visit>
void forEveryType(Visit visit) {
  std::apply([&](const auto&... values) { (visit(values), ...); }, everyType);
}

inline void writeValues(ioWriteContext& c) {
  c.startPacket("t", nullptr);
  forEveryType([&](const auto& v) { qvTest::moveField(c, v.one), qvTest::moveField(c, v.many); });
  for (const char* text : {"", "t\xC3\xBC"}) c.writeCString(text);
  c.writeReference(7, false);
  c.endPacket();
}
inline void readValues(ioReadContext& c) {
  forEveryType([&](const auto& v) {
    std::decay_t<decltype(v)> found = {v.tag, v.arrayTag, {}, {}};
    qvTest::moveField(c, found.one), qvTest::moveField(c, found.many);
    EXPECT_EQ(found.one, v.one);
    EXPECT_EQ(std::memcmp(found.many, v.many, sizeof v.many), 0) << v.arrayTag;
  });
  EXPECT_STREQ(c.fetchCString(), "");
  EXPECT_STREQ(c.fetchCString(), "t\xC3\xBC");
  EXPECT_EQ(c.readReference(), 7);
}

/// Chunks with values, an empty chunk, and a sub-packet in a chunk with a chunk of its own.
inline void writeStructure(ioWriteContext& c) {
  c.startPacket("t", "object");
  c.writeInt(1);
  c.startChunk(), c.writeShort(2);
  c.startChunk();
  c.startChunk(), c.startSubPacket(), c.writeInt(3);
  c.startChunk(), c.writeChar('4'), c.endSubPacket(), c.writeChar('5');
  c.endPacket();
}

} // namespace ioContextObjects
