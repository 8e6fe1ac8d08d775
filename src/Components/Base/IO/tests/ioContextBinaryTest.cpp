// The binary encoding: what each operation writes, byte by byte in either byte order, and what the two
// readers make of it; structure and damage.
#include "Base/IO/tests/ioContextObjects.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using namespace ioContextObjects;
using qvTest::readPackets;
using qvTest::writePackets;

const bool littleEndian = ioHeader::systemIsLittleEndian();

/// Lays out a file by hand, in this machine's byte order or in the other.
class Bytes {
public:
  explicit Bytes(bool swapped) : swapped_(swapped) {}

  Bytes& text(std::string_view text) {
    result_ += text;
    return *this;
  }
  template <class T>
  Bytes& value(T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    if (swapped_) std::reverse(bytes, bytes + sizeof value);
    return text({bytes, sizeof value});
  }
  /// The header and the type table with one type "t", which gets the number 2.
  Bytes& front(char method = '1') {
    text("^@\n1\n").text(littleEndian != swapped_ ? "1 " : "0 ").text({&method, 1});
    text(" 1\n1 2 4 8 4 8 8\n@\n");
    return text("   0 packetFile_string\n   1 packetFile_EOF\n   2 t\n@\n");
  }
  Bytes& packet(int type, int mode, const Bytes& body) {
    return value(type).value(mode).value(int(body.result_.size())).text(body.result_);
  }
  Bytes& end() { return packet(1, 0, Bytes(swapped_)); }
  operator const std::string&() const { return result_; }

private:
  bool swapped_;
  std::string result_;
};

TEST(ioContextBinary, everyValueHasItsBytesInEitherOrderAndForm) {
  int packets = 0;
  const auto read = [&](ioReadContext& c) { readValues(c), ++packets; };
  for (const bool tagged : {false, true})
    for (const bool swapped : {false, true}) {
      Bytes body(swapped);
      const auto put = [&](char tag, auto value) { body.text({&tag, tagged ? 1u : 0u}).value(value); };
      forEveryType([&](const auto& v) {
        put(v.tag, v.one);
        body.text({&v.arrayTag, tagged ? 1u : 0u});
        for (const auto value : v.many) // bools alone are tagged one by one
          v.tag == 'b' ? put(v.tag, value) : void(body.value(value));
      });
      put('s', '\0'), put('s', 't'), body.text({"\xC3\xBC\0", 3});
      if (tagged) body.text("r");
      put('I', 7);
      const std::string file = Bytes(swapped).front(tagged ? '3' : '1').packet(2, 0, body).end();
      if (!swapped) {
        EXPECT_EQ(writePackets(tagged ? ioWriteBinaryDebug : ioWriteBinary, {"t"}, writeValues), file);
      }
      EXPECT_EQ(readPackets(file, {{"t", read}}), ioOK);
    }
  EXPECT_EQ(packets, 4);
}

TEST(ioContextBinary, chunksAndSubPacketsStandAsLaidOut) {
  for (const bool tagged : {false, true}) {
    const int size = tagged ? 5 : 4;
    const auto put = [&](Bytes& b, char tag, auto value) { b.text({&tag, tagged ? 1u : 0u}).value(value); };
    Bytes body(false);
    if (tagged) body.text("r");
    put(body, 'I', 1), put(body, 'i', 1);
    put(body.text(","), 'i', size + size - 2), put(body, 'h', short(2));
    put(body.text(","), 'i', size);
    const int value = tagged ? 2 : 1, inner = size + size + 1 + size + value;
    put(body.text(","), 'i', size + 1 + inner + value);
    put(body.text("."), 'i', inner), put(body, 'i', 3);
    put(body.text(","), 'i', size + value), put(body, 'c', '4');
    put(body, 'c', '5');
    EXPECT_EQ(writePackets(tagged ? ioWriteBinaryDebug : ioWriteBinary, {"t"}, writeStructure),
              std::string(Bytes(false).front(tagged ? '3' : '1').packet(2, 1, body).end()));
  }
}

TEST(ioContextBinary, sizesThatLieStayInsideThePacket) {
  for (const int size : {INT_MIN, -1, 0, 3, 4, 5, 1000, INT_MAX}) {
    Bytes body(false);
    body.text(",").value(size).text("x.").value(size).text("y");
    int chunks = 0;
    const auto client = [&](ioReadContext& c) {
      for (c.nextChunk(); c.moreInChunk() && chunks < 10; c.nextChunk()) {
        ++chunks;
        (void)c.fetchChar();
        c.startSubPacket();
        c.endSubPacket();
      }
    };
    EXPECT_EQ(readPackets(Bytes(false).front().packet(2, 0, body).end(), {{"t", client}}), ioOK) << size;
    EXPECT_LT(chunks, 10) << size;
  }
}

TEST(ioContextBinary, badHeadsAndShortFilesAreBadData) {
  const Bytes five = Bytes(false).value(5);
  const std::pair<int, int> heads[] = {{-1, 3}, {INT_MIN, 3}, {3, 3},      {INT_MAX, 3},
                                       {2, -1}, {2, 4},       {2, INT_MAX}};
  for (const auto& [type, size] : heads)
    EXPECT_EQ(readPackets(Bytes(false).front().value(type).value(0).value(size).text("abc"), {}), ioBadData);
  int packets = 0;
  const qvTest::PacketReaders readers = {{"t", [&](ioReadContext& c) { packets += c.fetchInt(); }}};
  // A mode of a later version is passed over, and so is a text that names itself with a negative number.
  Bytes file = Bytes(false).front().packet(2, 2, five).packet(0, 1, Bytes(false).value(-1).text("a"));
  const std::string whole = file.packet(2, 0, five).end();
  for (std::size_t size = std::string(Bytes(false).front()).size(); size < whole.size(); ++size)
    EXPECT_EQ(readPackets(whole.substr(0, size), {}), ioBadData) << size;
  EXPECT_EQ(readPackets(whole, readers), ioOK);
  EXPECT_EQ(packets, 5);
}

} // namespace
