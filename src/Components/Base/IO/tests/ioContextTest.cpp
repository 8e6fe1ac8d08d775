// The contexts in every encoding: values, structure, order of calls, nesting, status, packet files one after
// another, large arrays, wrong tags, hooks.
#include "Base/IO/ioLargeArray.h"
#include "Base/IO/ioWriteContextAscii.h"
#include "Base/IO/ioWriteContextBinary.h"
#include "Base/IO/tests/ioContextObjects.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using namespace ioContextObjects;
using qvTest::PacketFileAbort;
using qvTest::PacketReading;
using qvTest::readPackets;
using qvTest::writePackets;

class ioContextTest : public testing::TestWithParam<ioWriteMethod> {
protected:
  static std::string write(const qvTest::PacketWriter& body, ioStatus* status = nullptr) {
    return writePackets(GetParam(), {"t"}, body, status);
  }
  /// The ints of the packets "t" in file order.
  static std::vector<int> values(const std::string& file) {
    std::vector<int> result;
    EXPECT_EQ(readPackets(file, {{"t", [&](ioReadContext& c) { result.push_back(c.fetchInt()); }}}), ioOK);
    return result;
  }
  static void packet(ioWriteContext& c, int value) {
    c.startPacket("t", nullptr);
    c.writeInt(value);
    c.endPacket();
  }
};

INSTANTIATE_TEST_SUITE_P(Methods, ioContextTest, testing::ValuesIn(qvTest::writeMethods));

TEST_P(ioContextTest, everyValueComesBack) {
  int packets = 0;
  const auto read = [&](ioReadContext& c) { readValues(c), ++packets; };
  EXPECT_EQ(readPackets(write([](auto& c) { writeValues(c), writeValues(c); }), {{"t", read}}), ioOK);
  EXPECT_EQ(packets, 2);
}

TEST_P(ioContextTest, aClientMayReadAsLittleAsItLikes) {
  const std::string two = write([](auto& c) { writeStructure(c), writeStructure(c); });
  int object = 0;
  std::vector<qvTest::PacketReader> clients = {
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
  };
  const std::vector<qvTest::PacketReader> astray = {
      // where tags do not stop them
      [](ioReadContext& c) { // far too much
        for (int i = 0; i < 100; ++i) (void)c.fetchInt64();
        EXPECT_EQ(c.fetchInt(), 0);
        const char* const text = c.fetchCString();
        EXPECT_TRUE(qvTest::isText(GetParam()) ? !text : !*text);
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
  if (!qvTest::isTagged(GetParam())) clients.insert(clients.end(), astray.begin(), astray.end());
  for (const auto& client : clients) {
    int packets = 0;
    const auto read = [&](ioReadContext& c) {
      EXPECT_FALSE(c.moreInChunk());
      c.definePacketReference(&object), client(c), ++packets;
    };
    EXPECT_EQ(readPackets(two, {{"t", read}}), ioOK);
    EXPECT_EQ(packets, 2);
  }
}

TEST_P(ioContextTest, bodiesGrowPastTheFirstBlock) {
  std::vector<double> values(3'000'000 / sizeof(double));
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = double(i) / 8;
  const int count = int(values.size());
  const std::string text(200'000, 'x');
  const std::string file = write([&](ioWriteContext& c) {
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
    c.fetchDoubleArray(nullptr, -1);
    for (double& value : read) value = c.fetchDouble();
    EXPECT_EQ(read, values);
  };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
}

TEST_P(ioContextTest, packetsNestAndAnAbandonedOneLeavesNoTrace) {
  const std::string nested = write([](ioWriteContext& c) {
    for (int depth = 0; depth < 25; ++depth) {
      c.startPacket("t", nullptr);
      c.writeInt(depth);
    }
    for (int depth = 0; depth < 25; ++depth) c.endPacket();
    packet(c, 99);
  });
  std::vector<int> expected(26, 99);
  std::iota(expected.rbegin() + 1, expected.rend(), 0);
  EXPECT_EQ(values(nested), expected);
  const std::string abandoned = write([](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    c.startChunk();
    packet(c, 2);
    c.invalidPacket();
    c.endPacket();
  });
  EXPECT_EQ(abandoned, write([](ioWriteContext& c) { packet(c, 2); }));
}

TEST_P(ioContextTest, manyChunksAndDeepSubPacketsKeepTheirPlaces) {
  const auto move = [](auto& c, int expected) {
    int value = expected;
    qvTest::moveField(c, value);
    EXPECT_EQ(value, expected);
  };
  const auto walk = [&](auto& c) {
    for (int i = 0; i < 200; ++i) qvTest::moveChunk(c), move(c, i), c.startSubPacket();
    for (int i = 0; i < 200; ++i) c.endSubPacket(), move(c, -i);
  };
  const std::string file = write([&](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    walk(c);
    c.endPacket();
  });
  EXPECT_EQ(readPackets(file, {{"t", [&](ioReadContext& c) { walk(c); }}}), ioOK);
}

TEST_P(ioContextTest, anOlderReaderReadsANewerFile) {
  const std::string file = writePackets(GetParam(), {"new", "t", "newer"}, [](ioWriteContext& c) {
    for (const char* name : {"new", "t", "newer", "t"}) {
      c.startPacket(name, name[0] == 'n' ? name : nullptr);
      c.writeInt(name[0]);
      c.startChunk(); // the later version's
      c.writeDouble(1);
      c.endPacket();
    }
  });
  EXPECT_EQ(values(file), (std::vector<int>{'t', 't'}));
}

TEST_P(ioContextTest, misuseFailsAndWritesNothing) {
  const struct {
    int line;
    qvTest::PacketWriter misuse;
    bool endPacket = false; // is written
  } rows[] = {
      {__LINE__, [](ioWriteContext& c) { c.writeInt(1); }},
      {__LINE__, [](ioWriteContext& c) { c.writeCString("x"); }},
      {__LINE__, [](ioWriteContext& c) { c.startChunk(); }},
      {__LINE__, [](ioWriteContext& c) { c.startSubPacket(); }},
      {__LINE__, [](ioWriteContext& c) { c.endSubPacket(); }},
      {__LINE__, [](ioWriteContext& c) { c.endPacket(); }},
      {__LINE__,
       [](ioWriteContext& c) {
         c.startPacket("unknown", nullptr);
         c.startChunk(), c.startSubPacket(), c.writeInt(1), c.endSubPacket();
         c.endPacket();
       }},
      {__LINE__, [](ioWriteContext& c) { c.startPacket("t", nullptr); }, true}, // is still open
  };
  const std::string empty = write([](ioWriteContext&) {});
  const std::size_t endPacket = qvTest::isText(GetParam()) ? 8 : 12;
  for (const auto& row : rows) {
    ioStatus status = ioOK;
    EXPECT_EQ(write(row.misuse, &status), empty.substr(0, empty.size() - (row.endPacket ? 0 : endPacket)))
        << row.line;
    EXPECT_EQ(status, ioFailed) << row.line;
  }
  qvTest::MemoryOutput out;
  const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(out.stream, GetParam(), nullptr));
  context->startFile(); // without a registry
  EXPECT_EQ(context->getStatus(), ioFailed);
  context->endFile();
  EXPECT_EQ(out.bytes(), "");
  PacketReading reading(empty, {});
  reading.context->associateRegistry(nullptr);
  EXPECT_EQ(reading.read(), ioFailed);
}

TEST_P(ioContextTest, clientsHearOfEachPacketAndHaltBeforeTheNext) {
  static std::string log;
  log.clear();
  class Client final : public ioClientReadContext {
  public:
    using ioClientReadContext::ioClientReadContext;
    void prePacketRead() override { log += '<'; }
    void postPacketRead() override { log += '>'; }
  };
  PacketReading reading(write([](ioWriteContext& c) { packet(c, 1), packet(c, 2), packet(c, 3); }),
                        {{"t", [](ioReadContext& c) {
                            log += std::to_string(c.fetchInt());
                            if (log == "<1><2") c.halt();
                          }}});
  Client client(reading.context.get());
  EXPECT_EQ(reading.context->readFile(client), ioHalted);
  EXPECT_EQ(log, "<1><2>");
}

TEST_P(ioContextTest, filesStandOneAfterAnother) {
  // A reader of text leaves the newline behind the end packet, and no header begins with that.
  const std::string gap = qvTest::isText(GetParam()) ? "\n" : "";
  const auto file = [&](int value) {
    const std::string whole = write([&](ioWriteContext& c) { packet(c, value); });
    EXPECT_TRUE(whole.ends_with(gap));
    return whole.substr(0, whole.size() - gap.size());
  };
  PacketReading apart(file(1) + gap + file(2), {{"t", nullptr}});
  EXPECT_EQ(apart.read(), ioOK);
  EXPECT_EQ(apart.context->reusePacketFile(), gap.empty());
  const std::string other = writePackets(GetParam() == ioWriteBinary ? ioWriteBinaryDebug : ioWriteBinary,
                                         {"t"}, [](ioWriteContext& c) { packet(c, 3); });
  for (const std::string& last : {other, std::string()}) { // encoded in another way, or nothing
    std::vector<int> read;
    PacketReading reading(file(1) + file(2) + last,
                          {{"t", [&](ioReadContext& c) { read.push_back(c.fetchInt()); }}});
    EXPECT_EQ(reading.read(), ioOK);
    EXPECT_TRUE(reading.context->reusePacketFile());
    EXPECT_EQ(reading.read(), ioOK);
    EXPECT_FALSE(reading.context->reusePacketFile());
    EXPECT_EQ(reading.read(), last.empty() ? ioBadData : ioHalted);
    EXPECT_EQ(read, (std::vector{1, 2}));
  }
}

template <class T>
void expectParcels(ioWriteMethod method, int count, const std::vector<int>& lengths) {
  const auto array = std::make_unique<T[]>(2500), read = std::make_unique<T[]>(2500);
  for (int i = 0; i < 2500; ++i) array[i] = T(i % 97 + 1);
  const std::string file = writePackets(
      method, {"t"}, [&](ioWriteContext& c) { ioWriteLargeArray(c, "t", array.get(), count, array.get()); });
  std::size_t parcels = 0;
  int known = 0;
  const auto client = [&](ioReadContext& c) {
    c.readReference();
    known += lengths.at(parcels++);
    if (count % 2) // both forms
      ioReadArrayParcel(c, read.get());
    else
      EXPECT_TRUE(ioReadArrayParcel(c, read.get(), known)); // the run ends here at the latest
    EXPECT_TRUE(std::equal(read.get(), read.get() + known, array.get()));
  };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
  EXPECT_EQ(parcels, lengths.size());
}

TEST_P(ioContextTest, largeArraysOfEveryTypeGoInParcels) {
  const std::pair<int, std::vector<int>> rows[] = {
      {-1, {}}, {0, {}}, {1, {1}}, {1024, {1024}}, {1025, {1024, 1}}, {2500, {1024, 1024, 452}}};
  for (const auto& [count, lengths] : rows)
    [&, count = count, &lengths = lengths]<class... T>(std::tuple<T...>*) {
      (expectParcels<T>(GetParam(), count, lengths), ...);
    }(static_cast<std::tuple<bool, char, unsigned char, short, unsigned short, int, unsigned int,
                             std::int64_t, std::uint64_t, float, double>*>(nullptr));
}

TEST_P(ioContextTest, aParcelOutsideItsArrayIsLeftOut) {
  const std::pair<int, int> rows[] = {{-1, 1}, {10, 1},   {0, 11},        {0, -1},
                                      {8, 3},  {0, 1025}, {INT32_MAX, 2}, {INT32_MIN, INT32_MAX}};
  const std::string file = write([&](ioWriteContext& c) {
    for (const auto& [first, length] : rows) {
      c.startPacket("t", nullptr);
      c.writeInt(first);
      c.writeInt(length);
      c.endPacket();
    }
  });
  int packets = 0;
  const auto client = [&](ioReadContext& c) {
    short array[10];
    EXPECT_FALSE(ioReadArrayParcel(c, array, 10)) << "row " << packets;
    ++packets;
  };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
  EXPECT_EQ(packets, int(std::size(rows)));
}

TEST_P(ioContextTest, textPacketsDefineACopy) {
  static const char text[] = "a text with \"marks\"\n";
  char* copy = nullptr;
  const std::string file = write([](ioWriteContext& c) {
    c.writeCStringPacket(nullptr);
    c.startPacket("t", nullptr);
    c.writeReference(text, false);
    c.endPacket();
    c.writeCStringPacket(text);
  });
  EXPECT_EQ(readPackets(file, {{"t", [&](ioReadContext& c) { c.readReferenceUsage(&copy, 0); }}}), ioOK);
  EXPECT_STREQ(copy, text);
  std::free(copy);
}

TEST_P(ioContextTest, aWrongTagIsFatal) {
  if (!qvTest::isTagged(GetParam())) return;
  const PacketFileAbort abort;
  const std::string five = write([](ioWriteContext& c) { packet(c, 5); });
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
    std::string file = five;
    file.at(file.rfind('i')) = row.tag;
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

/// A writer whose packet can be made to look large.
template <class Context, class Buffer>
class NearlyFull final : public Context {
public:
  using Context::Context;
  void fill() { static_cast<Buffer*>(this->currentBuffer())->setCursor(INT_MAX - 3); }
};
template <class Writer>
void expectGivenUp() {
  qvTest::PacketTypes registry(false, {{"t", nullptr}});
  qvTest::MemoryOutput out;
  Writer context(out.stream);
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
TEST(ioContext, aPacketOf2GiBIsGivenUpAndTheContextFails) {
  expectGivenUp<NearlyFull<ioWriteContextBinary, ioPacketFileBinaryBuffer>>();
  expectGivenUp<NearlyFull<ioWriteContextAscii, ioPacketFileAsciiBuffer>>();
}

TEST_P(ioContextTest, streamStatusesRise) {
  const ioStatus expected[] = {ioOK,       ioOpenFailed,  ioBadData, ioBadData,
                               ioDiskFull, ioBadChecksum, ioFailed,  ioFailed};
  for (std::size_t status = 0; status < std::size(expected); ++status) {
    qvTest::PacketTypes registry(false, {});
    qvTest::MemoryOutput out;
    const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(out.stream, GetParam(), &registry));
    out.stream.setStatus(ioStreamStatus(status));
    context->startFile();
    EXPECT_EQ(context->getStatus(), expected[status]) << status;
  }
}

TEST(ioContext, onlyKnownMethodsHaveContexts) {
  ioBufferedStreamOutput out;
  for (const int method : {-1, 4, 99})
    EXPECT_EQ(ioWriteContextAlloc(out, ioWriteMethod(method), nullptr), nullptr);
  for (const char* header :
       {"", "^@", "^@\n1\n1 9 1\n1 2 4 8 4 8 8\n@\n", "^@\n1\n1 1 1\n1 2 4 4 4 8 8\n@\n"})
    EXPECT_EQ(PacketReading(header, {}).context, nullptr) << header;
}

TEST_P(ioContextTest, fatalFaultsAreReportedBeforeTheEnd) {
  const PacketFileAbort hooks;
  ioPacketFileError("%s %d", std::string(2000, 'x').c_str(), 1);
  EXPECT_EQ(hooks.report(), std::string(1023, 'x'));
  writePackets(GetParam(), {"s", "t"}, [](ioWriteContext& c) {
    for (const char* name : {"t", "s", "s"}) c.startPacket(name, nullptr);
    EXPECT_THROW(c.fatalError(), PacketFileAbort::Thrown);
    for (int i = 0; i < 3; ++i) c.endPacket();
  });
  EXPECT_EQ(hooks.report(), "ioPacketFile: Fatal error.  Aborting.\n  0: 3\n  1: 2\n");
  const std::string file = write([](ioWriteContext& c) {
    c.startPacket("t", "object");
    c.endPacket();
  });
  EXPECT_THROW(readPackets(file, {{"t", nullptr}}), PacketFileAbort::Thrown); // does not define its reference
  EXPECT_EQ(hooks.report(), "ioPacketFile: A packet type: 't'\n"
                            "  had a reference associated with it but no \n"
                            "  definition was provided by the client code.\n"
                            "  The undefined reference is: 0.\n"
                            "ioPacketFile: Fatal error.  Aborting.\n");
  EXPECT_EQ(readPackets(file, {{"t", [](ioReadContext& c) { c.invalidPacket(); }}}), ioOK);
}

} // namespace
