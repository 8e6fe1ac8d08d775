// The binary encoding: what each operation writes, byte by byte in either byte order, and what the two
// readers make of it; structure, damage and the fatal path of the tagged form.
#include "Base/IO/ioWriteContextBinary.h"
#include "testing/qvTestPacketFile.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace {

using qvTest::PacketFileAbort;
using qvTest::PacketReading;
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
    text("^@\n1\n")
        .text(littleEndian != swapped_ ? "1 " : "0 ")
        .text({&method, 1})
        .text(" 1\n1 2 4 8 4 8 8\n@\n");
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

/// One operation of each of the eleven types, single and as an array, and a text.
const bool bools[] = {true, false, true};
const char chars[] = {'a', '\0', '\x80'};
const unsigned char uchars[] = {0, 127, 255};
const short shorts[] = {SHRT_MIN, 0x1234, -1};
const unsigned short ushorts[] = {0, 0x1234, 0xFFFF};
const int ints[] = {INT_MIN, 0x12345678, -1};
const unsigned int uints[] = {0, 0x12345678, UINT_MAX};
const std::int64_t int64s[] = {INT64_MIN, 0x123456789ABCDEF0, -1};
const std::uint64_t uint64s[] = {0, 0x123456789ABCDEF0, UINT64_MAX};
const float floats[] = {1.5f, -std::numeric_limits<float>::infinity(),
                        std::numeric_limits<float>::denorm_min()};
const double doubles[] = {-1.0 / 3, std::numeric_limits<double>::max(), -0.0};

void writeAll(ioWriteContext& c) {
  c.writeBool(true);
  c.writeChar('\x80');
  c.writeUChar(255);
  c.writeShort(-2);
  c.writeUShort(0x1234);
  c.writeInt(-3);
  c.writeUInt(0x12345678);
  c.writeInt64(-4);
  c.writeUInt64(0x123456789ABCDEF0);
  c.writeFloat(0.1f);
  c.writeDouble(0.1);
  c.writeCString("");
  c.writeCString("t\xC3\xBC");
  c.writeReference(7, false);
  c.writeBoolArray(bools, 3);
  c.writeCharArray(chars, 3);
  c.writeUCharArray(uchars, 3);
  c.writeShortArray(shorts, 3);
  c.writeUShortArray(ushorts, 3);
  c.writeIntArray(ints, 3);
  c.writeUIntArray(uints, 3);
  c.writeInt64Array(int64s, 3);
  c.writeUInt64Array(uint64s, 3);
  c.writeFloatArray(floats, 3);
  c.writeDoubleArray(doubles, 3);
}

/// The body that `writeAll` makes. A tag stands before each value, or nowhere.
Bytes allBytes(bool swapped, bool tagged) {
  Bytes b(swapped);
  const auto tag = [&](char code) { b.text({&code, tagged ? 1u : 0u}); };
  const auto one = [&](char code, auto value) { tag(code), b.value(value); };
  const auto all = [&](char code, const auto& values) {
    tag(code);
    for (const auto value : values) b.value(value);
  };
  one('b', char(1)), one('c', '\x80'), one('C', '\xFF'), one('h', short(-2)), one('H', short(0x1234));
  one('i', -3), one('I', 0x12345678), one('l', std::int64_t(-4)), one('L', 0x123456789ABCDEF0);
  one('f', 0.1f), one('d', 0.1);
  one('s', '\0'), tag('s'), b.text({"t\xC3\xBC\0", 4});
  tag('r'), one('I', 7);
  tag('B'), one('b', '\1'), one('b', '\0'), one('b', '\1'); // bools alone are tagged one by one
  all('1', chars), all('2', uchars), all('3', shorts), all('4', ushorts), all('5', ints), all('6', uints);
  all('7', int64s), all('8', uint64s), all('9', floats), all('0', doubles);
  return b;
}

template <class T, std::size_t n>
void expectArray(const T (&expected)[n], ioReadContext& c, void (ioReadContext::*fetch)(T*, int)) {
  T values[n];
  (c.*fetch)(values, n);
  EXPECT_EQ(std::memcmp(values, expected, sizeof values), 0);
}

void readAll(ioReadContext& c) {
  bool b;
  c.readBool(b);
  EXPECT_TRUE(b);
  EXPECT_EQ(c.fetchChar(), '\x80');
  EXPECT_EQ(c.fetchUChar(), 255);
  EXPECT_EQ(c.fetchShort(), -2);
  EXPECT_EQ(c.fetchUShort(), 0x1234);
  EXPECT_EQ(c.fetchInt(), -3);
  EXPECT_EQ(c.fetchUInt(), 0x12345678u);
  EXPECT_EQ(c.fetchInt64(), -4);
  EXPECT_EQ(c.fetchUInt64(), 0x123456789ABCDEF0u);
  EXPECT_EQ(c.fetchFloat(), 0.1f);
  EXPECT_EQ(c.fetchDouble(), 0.1);
  EXPECT_STREQ(c.fetchCString(), "");
  EXPECT_STREQ(c.fetchCString(), "t\xC3\xBC");
  EXPECT_EQ(c.readReference(), 7);
  expectArray(bools, c, &ioReadContext::fetchBoolArray);
  expectArray(chars, c, &ioReadContext::fetchCharArray);
  expectArray(uchars, c, &ioReadContext::fetchUCharArray);
  expectArray(shorts, c, &ioReadContext::fetchShortArray);
  expectArray(ushorts, c, &ioReadContext::fetchUShortArray);
  expectArray(ints, c, &ioReadContext::fetchIntArray);
  expectArray(uints, c, &ioReadContext::fetchUIntArray);
  expectArray(int64s, c, &ioReadContext::fetchInt64Array);
  expectArray(uint64s, c, &ioReadContext::fetchUInt64Array);
  expectArray(floats, c, &ioReadContext::fetchFloatArray);
  expectArray(doubles, c, &ioReadContext::fetchDoubleArray);
}

TEST(ioContextBinary, everyValueHasItsBytesInEitherOrderAndForm) {
  for (const bool tagged : {false, true}) {
    const char method = tagged ? '3' : '1';
    const auto file = [&](bool swapped) {
      return std::string(Bytes(swapped).front(method).packet(2, 0, allBytes(swapped, tagged)).end());
    };
    const std::string written = writePackets(tagged ? ioWriteBinaryDebug : ioWriteBinary, {"t"}, [](auto& c) {
      c.startPacket("t", nullptr);
      writeAll(c);
      c.endPacket();
    });
    EXPECT_EQ(written, file(false));
    for (const bool swapped : {false, true}) {
      int packets = 0;
      EXPECT_EQ(readPackets(file(swapped), {{"t", [&](ioReadContext& c) { readAll(c), ++packets; }}}), ioOK);
      EXPECT_EQ(packets, 1);
    }
  }
}

/// Chunks with values, an empty chunk, and a sub-packet in a chunk with a chunk of its own.
void writeStructure(ioWriteContext& c) {
  static const int object = 0;
  c.startPacket("t", &object);
  c.writeInt(1);
  c.startChunk();
  c.writeShort(2);
  c.startChunk();
  c.startChunk();
  c.startSubPacket();
  c.writeInt(3);
  c.startChunk();
  c.writeChar('4');
  c.endSubPacket();
  c.writeChar('5');
  c.endPacket();
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

TEST(ioContextBinary, aClientMayReadAsLittleAsItLikes) {
  const std::string two =
      writePackets(ioWriteBinary, {"t"}, [](auto& c) { writeStructure(c), writeStructure(c); });
  int object = 0;
  const std::vector<qvTest::PacketReader> clients = {
      [](ioReadContext&) {},
      [](ioReadContext& c) { EXPECT_EQ(c.fetchInt(), 1); },
      [](ioReadContext& c) { // everything
        EXPECT_EQ(c.fetchInt(), 1);
        c.nextChunk();
        EXPECT_TRUE(c.moreInChunk());
        EXPECT_EQ(c.fetchShort(), 2);
        EXPECT_TRUE(c.moreInChunk()); // only nextChunk changes it
        c.nextChunk();
        EXPECT_FALSE(c.moreInChunk()); // an empty chunk
        c.nextChunk();
        EXPECT_TRUE(c.moreInChunk());
        c.startSubPacket();
        EXPECT_EQ(c.fetchInt(), 3);
        c.nextChunk();
        EXPECT_EQ(c.fetchChar(), '4');
        c.nextChunk();
        EXPECT_FALSE(c.moreInChunk());
        c.endSubPacket();
        EXPECT_EQ(c.fetchChar(), '5');
        c.nextChunk();
        EXPECT_FALSE(c.moreInChunk());
      },
      [](ioReadContext& c) { // nothing of the chunks and of the sub-packet
        EXPECT_EQ(c.fetchInt(), 1);
        c.nextChunk(), c.nextChunk(), c.nextChunk();
        EXPECT_TRUE(c.moreInChunk());
        c.startSubPacket();
        c.endSubPacket();
        EXPECT_EQ(c.fetchChar(), '5');
      },
      [](ioReadContext& c) { // far too much
        for (int i = 0; i < 100; ++i) c.fetchInt64();
        EXPECT_EQ(c.fetchInt(), 0);
        EXPECT_STREQ(c.fetchCString(), "");
        double zeros[3] = {1, 1, 1};
        c.fetchDoubleArray(zeros, 3);
        EXPECT_EQ(zeros[0] + zeros[1] + zeros[2], 0);
        c.nextChunk();
        EXPECT_FALSE(c.moreInChunk());
        c.startSubPacket();
        c.endSubPacket();
      },
      [](ioReadContext& c) { c.startSubPacket(); }, // and never leaves it
  };
  for (const auto& client : clients) {
    int packets = 0;
    EXPECT_EQ(readPackets(two, {{"t",
                                 [&](ioReadContext& c) {
                                   c.definePacketReference(&object);
                                   client(c);
                                   ++packets;
                                 }}}),
              ioOK);
    EXPECT_EQ(packets, 2);
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
        c.fetchChar();
        c.startSubPacket();
        c.endSubPacket();
      }
    };
    EXPECT_EQ(readPackets(Bytes(false).front().packet(2, 0, body).end(), {{"t", client}}), ioOK) << size;
    EXPECT_LT(chunks, 10) << size;
  }
}

TEST(ioContextBinary, badHeadsAndShortFilesAreBadData) {
  const auto file = [](int type, int size) {
    return std::string(Bytes(false).front().value(type).value(0).value(size).text("abc"));
  };
  const std::pair<int, int> heads[] = {{-1, 3}, {INT_MIN, 3}, {3, 3},      {INT_MAX, 3},
                                       {2, -1}, {2, 4},       {2, INT_MAX}};
  for (const auto& [type, size] : heads)
    EXPECT_EQ(readPackets(file(type, size), {{"t", nullptr}}), ioBadData);
  const std::string whole = Bytes(false).front().packet(2, 0, Bytes(false).value(5)).end();
  const std::size_t front = std::string(Bytes(false).front()).size();
  for (std::size_t size = front; size < whole.size(); ++size)
    EXPECT_EQ(readPackets(whole.substr(0, size), {{"t", nullptr}}), ioBadData) << size;
  EXPECT_EQ(readPackets(whole, {{"t", nullptr}}), ioOK);
}

TEST(ioContextBinary, aModeOfALaterVersionIsPassedOver) {
  int packets = 0;
  Bytes file =
      Bytes(false).front().packet(2, 2, Bytes(false).value(5)).packet(2, 0, Bytes(false).value(6)).end();
  const auto client = [&](ioReadContext& c) {
    ++packets;
    EXPECT_EQ(c.fetchInt(), 6);
  };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
  EXPECT_EQ(packets, 1);
}

TEST(ioContextBinary, bodiesGrowPastTheFirstBlock) {
  std::vector<double> values(3'000'000 / sizeof(double));
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = std::sqrt(double(i));
  const int count = int(values.size());
  const std::string text(200'000, 'x');
  const std::string file = writePackets(ioWriteBinary, {"t"}, [&](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    c.writeDoubleArray(values.data(), count);
    c.writeCString(text.c_str());
    c.writeDoubleArray(values.data(), -1);
    for (const double value : values) c.writeDouble(value);
    c.endPacket();
  });
  const auto client = [&](ioReadContext& c) {
    std::vector<double> read(values.size());
    c.fetchDoubleArray(read.data(), count);
    EXPECT_EQ(read, values);
    EXPECT_EQ(c.fetchCString(), text);
    for (double& value : read) value = c.fetchDouble();
    EXPECT_EQ(read, values);
  };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
}

/// A writer whose packet can be made to look large.
class NearlyFull final : public ioWriteContextBinary {
public:
  using ioWriteContextBinary::ioWriteContextBinary;
  void fill() { static_cast<ioPacketFileBinaryBuffer*>(currentBuffer())->setCursor(INT_MAX - 3); }
};

TEST(ioContextBinary, aPacketOf2GiBIsGivenUpAndTheContextFails) {
  qvTest::PacketTypes registry(false, {{"t", nullptr}});
  qvOS::MemoryIOStream memory;
  ioBufferedStreamOutput stream;
  stream.openIOStream(&memory);
  NearlyFull context(stream);
  context.associateRegistry(&registry);
  context.startFile();
  stream.flush();
  const std::size_t front = memory.size();
  context.startPacket("t", nullptr);
  context.fill();
  context.writeInt(1);
  context.writeIntArray(ints, 3);
  context.startChunk();
  EXPECT_TRUE(context.good());
  context.endPacket();
  EXPECT_EQ(context.getStatus(), ioFailed);
  stream.close();
  EXPECT_EQ(memory.size(), front);
}

TEST(ioContextBinary, aWrongTagIsFatal) {
  const PacketFileAbort abort;
  const struct {
    int line;
    char tag;
    const char* report;
  } rows[] = {
      {__LINE__, 'd', "Packet file type mismatch:\n   got: Double (64)\n   expected: Int (69)\n"},
      {__LINE__, 0, "Packet file type mismatch:\n   got: (invalid type) (00)\n   expected: Int (69)\n"},
      {__LINE__, 'i', nullptr},
      {__LINE__, '\x80', nullptr}, // no tag at all
      {__LINE__, '\xFF', nullptr},
  };
  for (const auto& row : rows) {
    const std::string file = Bytes(false).front('3').packet(2, 0, Bytes(false).value(row.tag).value(5)).end();
    const qvTest::PacketReaders readers = {{"t", [](ioReadContext& c) { EXPECT_EQ(c.fetchInt(), 5); }}};
    if (!row.report) {
      EXPECT_EQ(readPackets(file, readers), ioOK) << row.line;
      continue;
    }
    EXPECT_THROW(readPackets(file, readers), PacketFileAbort::Thrown) << row.line;
    EXPECT_EQ(abort.report(), row.report + std::string("ioPacketFile: Fatal error.  Aborting.\n"))
        << row.line;
  }
}

} // namespace
