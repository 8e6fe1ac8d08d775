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

/// A type's tags, a value, and an array.
template <class T>
struct Values {
  char tag, arrayTag;
  T one, many[3];
};
constexpr std::tuple everyType = {
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
    Values<double>{'d', '0', 0.1, {-1.0 / 3, std::numeric_limits<double>::max(), -0.0}},
};
template <class Visit>
void forEveryType(Visit visit) {
  std::apply([&](const auto&... values) { (visit(values), ...); }, everyType);
}

TEST(ioContextBinary, everyValueHasItsBytesInEitherOrderAndForm) {
  const auto write = [](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    forEveryType([&](const auto& v) { qvTest::moveField(c, v.one), qvTest::moveField(c, v.many); });
    for (const char* text : {"", "t\xC3\xBC"}) c.writeCString(text);
    c.writeReference(7, false);
    c.endPacket();
  };
  int packets = 0;
  const auto read = [&](ioReadContext& c) {
    forEveryType([&](const auto& v) {
      std::decay_t<decltype(v)> found = {v.tag, v.arrayTag, {}, {}};
      qvTest::moveField(c, found.one), qvTest::moveField(c, found.many);
      EXPECT_EQ(found.one, v.one);
      EXPECT_EQ(std::memcmp(found.many, v.many, sizeof v.many), 0) << v.arrayTag;
    });
    EXPECT_STREQ(c.fetchCString(), "");
    EXPECT_STREQ(c.fetchCString(), "t\xC3\xBC");
    EXPECT_EQ(c.readReference(), 7);
    ++packets;
  };
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
        EXPECT_EQ(writePackets(tagged ? ioWriteBinaryDebug : ioWriteBinary, {"t"}, write), file);
      }
      EXPECT_EQ(readPackets(file, {{"t", read}}), ioOK);
    }
  EXPECT_EQ(packets, 4);
}

/// Chunks with values, an empty chunk, and a sub-packet in a chunk with a chunk of its own.
void writeStructure(ioWriteContext& c) {
  c.startPacket("t", "object");
  c.writeInt(1);
  c.startChunk(), c.writeShort(2);
  c.startChunk();
  c.startChunk(), c.startSubPacket(), c.writeInt(3);
  c.startChunk(), c.writeChar('4'), c.endSubPacket(), c.writeChar('5');
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
        const auto next = [&] { return c.nextChunk(), c.moreInChunk(); };
        EXPECT_EQ(c.fetchInt(), 1);
        EXPECT_TRUE(next());
        EXPECT_EQ(c.fetchShort(), 2);
        EXPECT_TRUE(c.moreInChunk()); // only nextChunk changes it
        EXPECT_FALSE(next());         // an empty chunk
        EXPECT_TRUE(next());
        c.startSubPacket();
        EXPECT_EQ(c.fetchInt(), 3);
        EXPECT_TRUE(next());
        EXPECT_EQ(c.fetchChar(), '4');
        EXPECT_FALSE(next());
        c.endSubPacket();
        EXPECT_EQ(c.fetchChar(), '5');
        EXPECT_FALSE(next());
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
        for (int i = 0; i < 100; ++i) (void)c.fetchInt64();
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
    const auto read = [&](ioReadContext& c) { c.definePacketReference(&object), client(c), ++packets; };
    EXPECT_EQ(readPackets(two, {{"t", read}}), ioOK);
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
  qvTest::MemoryOutput out;
  NearlyFull context(out.stream);
  context.associateRegistry(&registry);
  context.startFile();
  out.stream.flush();
  const std::size_t front = out.memory.size();
  context.startPacket("t", nullptr);
  context.fill();
  context.writeInt(1);
  context.writeCString("text");
  context.startChunk();
  EXPECT_TRUE(context.good());
  context.endPacket();
  EXPECT_EQ(context.getStatus(), ioFailed);
  EXPECT_EQ(out.bytes().size(), front);
}

TEST(ioContextBinary, aWrongTagIsFatal) {
  const PacketFileAbort abort;
  const struct {
    int line;
    char tag;
    const char* got;
  } rows[] = {
      {__LINE__, 'd', "Double (64)"}, {__LINE__, 0, "(invalid type) (00)"},
      {__LINE__, 'i', nullptr},       {__LINE__, '\x80', nullptr}, // no tag at all
      {__LINE__, '\xFF', nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    const std::string file = Bytes(false).front('3').packet(2, 0, Bytes(false).value(row.tag).value(5)).end();
    const auto read = [&] {
      return readPackets(file, {{"t", [](ioReadContext& c) { EXPECT_EQ(c.fetchInt(), 5); }}});
    };
    if (!row.got) {
      EXPECT_EQ(read(), ioOK);
      continue;
    }
    EXPECT_THROW(read(), PacketFileAbort::Thrown);
    EXPECT_EQ(abort.report(), std::string("Packet file type mismatch:\n   got: ") + row.got +
                                  "\n   expected: Int (69)\nioPacketFile: Fatal error.  Aborting.\n");
  }
}

} // namespace
