// The contexts: order of calls, nesting, status, packet files one after another, large arrays, hooks.
#include "Base/IO/ioClientWriteContext.h"
#include "Base/IO/ioLargeArray.h"
#include "testing/qvTestPacketFile.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using qvTest::PacketFileAbort;
using qvTest::PacketReading;
using qvTest::readPackets;
using qvTest::writePackets;

class ioContextTest : public testing::TestWithParam<ioWriteMethod> {
protected:
  std::string write(const std::vector<std::string>& names, const std::function<void(ioWriteContext&)>& body,
                    ioStatus* status = nullptr) {
    return writePackets(GetParam(), names, body, status);
  }
  /// The ints of the packets "t" in file order.
  static std::vector<int> values(const std::string& file, ioStatus expected = ioOK) {
    std::vector<int> result;
    EXPECT_EQ(readPackets(file, {{"t", [&](ioReadContext& c) { result.push_back(c.fetchInt()); }}}),
              expected);
    return result;
  }
  static void packet(ioWriteContext& c, int value) {
    c.startPacket("t", nullptr);
    c.writeInt(value);
    c.endPacket();
  }
};

INSTANTIATE_TEST_SUITE_P(Methods, ioContextTest, testing::Values(ioWriteBinary, ioWriteBinaryDebug));

TEST_P(ioContextTest, aNestedPacketStandsBeforeItsParent) {
  EXPECT_EQ(values(write({"t"},
                         [](ioWriteContext& c) {
                           for (int depth = 0; depth < 25; ++depth) {
                             c.startPacket("t", nullptr);
                             c.writeInt(depth);
                           }
                           for (int depth = 0; depth < 25; ++depth) c.endPacket();
                           packet(c, 99);
                         })),
            [] {
              std::vector<int> expected(26, 99);
              std::iota(expected.rbegin() + 1, expected.rend(), 0);
              return expected;
            }());
}

TEST_P(ioContextTest, anAbandonedPacketLeavesNoTrace) {
  const auto file = [&](bool abandon) {
    return write({"t"}, [&](ioWriteContext& c) {
      packet(c, 1);
      if (abandon) {
        c.startPacket("t", nullptr);
        c.startChunk();
        packet(c, 2);
        c.invalidPacket();
        c.endPacket();
      } else {
        packet(c, 2);
      }
      packet(c, 3);
    });
  };
  EXPECT_EQ(file(true), file(false));
  EXPECT_EQ(values(file(true)), (std::vector{1, 2, 3}));
}

TEST_P(ioContextTest, manyChunksAndDeepSubPacketsKeepTheirPlaces) {
  constexpr int depth = 200;
  const std::string file = write({"t"}, [](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    for (int i = 0; i < depth; ++i) {
      c.startChunk();
      c.writeInt(i);
      c.startSubPacket();
    }
    for (int i = 0; i < depth; ++i) {
      c.endSubPacket();
      c.writeInt(-i);
    }
    c.endPacket();
  });
  const auto client = [](ioReadContext& c) {
    for (int i = 0; i < depth; ++i) {
      c.nextChunk();
      EXPECT_TRUE(c.moreInChunk());
      EXPECT_EQ(c.fetchInt(), i);
      c.startSubPacket();
    }
    for (int i = 0; i < depth; ++i) {
      c.endSubPacket();
      EXPECT_EQ(c.fetchInt(), -i);
    }
  };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
}

TEST_P(ioContextTest, anOlderReaderReadsANewerFile) {
  const std::string file = write({"new", "t", "newer"}, [](ioWriteContext& c) {
    for (const char* name : {"new", "t", "newer", "t"}) {
      static const int objects[2] = {};
      c.startPacket(name, name[0] == 'n' ? &objects[name[3] == 'e'] : nullptr);
      c.writeInt(name[0]);
      c.startChunk(); // the later version's
      c.writeDouble(1);
      c.endPacket();
    }
  });
  EXPECT_EQ(values(file), (std::vector<int>{'t', 't'}));
}

TEST_P(ioContextTest, misuseFailsAndWritesNothing) {
  const std::string empty = write({"t"}, [](ioWriteContext&) {});
  const std::function<void(ioWriteContext&)> misuses[] = {
      [](ioWriteContext& c) { c.writeInt(1); },
      [](ioWriteContext& c) { c.writeCString("x"); },
      [](ioWriteContext& c) { c.startChunk(); },
      [](ioWriteContext& c) { c.startSubPacket(); },
      [](ioWriteContext& c) { c.endSubPacket(); },
      [](ioWriteContext& c) { c.endPacket(); },
      [](ioWriteContext& c) {
        c.startPacket("unknown", nullptr);
        c.startChunk();
        c.startSubPacket();
        c.writeInt(1);
        c.endSubPacket();
        c.endPacket();
      },
  };
  const std::size_t endPacket = 12;
  for (const auto& misuse : misuses) {
    ioStatus status = ioOK;
    EXPECT_EQ(write({"t"}, misuse, &status), empty.substr(0, empty.size() - endPacket));
    EXPECT_EQ(status, ioFailed);
  }
  ioStatus status = ioOK; // a packet that is still open: the end packet is written all the same
  EXPECT_EQ(write(
                {"t"}, [](ioWriteContext& c) { c.startPacket("t", nullptr); }, &status),
            empty);
  EXPECT_EQ(status, ioFailed);
}

TEST_P(ioContextTest, withoutARegistryNothingIsWrittenOrRead) {
  qvOS::MemoryIOStream memory;
  ioBufferedStreamOutput stream;
  stream.openIOStream(&memory);
  const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(stream, GetParam(), nullptr));
  context->startFile();
  EXPECT_EQ(context->getStatus(), ioFailed);
  context->endFile();
  stream.close();
  EXPECT_EQ(memory.size(), 0u);
  PacketReading reading(write({"t"}, [](ioWriteContext&) {}), {});
  reading.context->associateRegistry(nullptr);
  EXPECT_EQ(reading.read(), ioFailed);
}

TEST_P(ioContextTest, haltStopsBeforeTheNextPacket) {
  PacketReading* reading = nullptr;
  int packets = 0;
  PacketReading r(write({"t"}, [](ioWriteContext& c) { packet(c, 1), packet(c, 2); }),
                  {{"t", [&](ioReadContext&) { ++packets, reading->context->halt(); }}});
  reading = &r;
  EXPECT_EQ(r.read(), ioHalted);
  EXPECT_EQ(packets, 1);
}

TEST_P(ioContextTest, clientsHearOfEachPacketBeforeAndAfter) {
  class Client final : public ioClientReadContext {
  public:
    using ioClientReadContext::ioClientReadContext;
    void prePacketRead() override { log += '<'; }
    void postPacketRead() override { log += '>'; }
    std::string log;
  };
  std::string* log = nullptr;
  PacketReading reading(write({"t"}, [](ioWriteContext& c) { packet(c, 1), packet(c, 2); }),
                        {{"t", [&](ioReadContext& c) { *log += std::to_string(c.fetchInt()); }}});
  Client client(reading.context.get());
  log = &client.log;
  EXPECT_EQ(reading.context->readFile(client), ioOK);
  EXPECT_EQ(client.log, "<1><2>");
}

TEST_P(ioContextTest, filesStandOneAfterAnother) {
  const std::string one = write({"t"}, [](ioWriteContext& c) { packet(c, 1); });
  const std::string two = write({"t"}, [](ioWriteContext& c) { packet(c, 2); });
  const std::string other = writePackets(GetParam() == ioWriteBinary ? ioWriteBinaryDebug : ioWriteBinary,
                                         {"t"}, [](ioWriteContext& c) { packet(c, 3); });
  std::vector<int> values;
  PacketReading reading(one + two + other,
                        {{"t", [&](ioReadContext& c) { values.push_back(c.fetchInt()); }}});
  EXPECT_EQ(reading.read(), ioOK);
  EXPECT_TRUE(reading.context->reusePacketFile());
  EXPECT_EQ(reading.read(), ioOK);
  EXPECT_EQ(values, (std::vector{1, 2}));
  EXPECT_FALSE(reading.context->reusePacketFile()); // encoded in another way
  EXPECT_EQ(reading.read(), ioHalted);
  EXPECT_EQ(values, (std::vector{1, 2}));
  PacketReading last(one, {{"t", nullptr}});
  EXPECT_EQ(last.read(), ioOK);
  EXPECT_FALSE(last.context->reusePacketFile()); // nothing follows
}

TEST_P(ioContextTest, largeArraysGoInParcels) {
  const struct {
    int count;
    std::vector<int> parcels;
  } rows[] = {{-1, {}}, {0, {}}, {1, {1}}, {1024, {1024}}, {1025, {1024, 1}}, {2500, {1024, 1024, 452}}};
  for (const auto& row : rows) {
    std::vector<double> array(2500), read(2500);
    std::iota(array.begin(), array.end(), 0.5);
    std::vector<int> parcels;
    const std::string file =
        write({"t"}, [&](ioWriteContext& c) { ioWriteLargeArray(c, "t", &array, row.count, array.data()); });
    const auto client = [&](ioReadContext& c) {
      c.readReference();
      if (parcels.size() % 2) // both forms
        ioReadArrayParcel(c, read.data());
      else
        EXPECT_TRUE(ioReadArrayParcel(c, read.data(), int(read.size())));
      parcels.push_back(int(std::count_if(read.begin(), read.end(), [](double d) { return d != 0; })));
    };
    EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
    std::adjacent_difference(parcels.begin(), parcels.end(), parcels.begin());
    EXPECT_EQ(parcels, row.parcels);
    EXPECT_TRUE(std::equal(read.begin(), read.begin() + std::max(row.count, 0), array.begin()));
  }
}

TEST_P(ioContextTest, aParcelOutsideItsArrayIsLeftOut) {
  const struct {
    int line, first, length;
  } rows[] = {
      {__LINE__, -1, 1}, {__LINE__, 10, 1},   {__LINE__, 0, 11},        {__LINE__, 0, -1},
      {__LINE__, 8, 3},  {__LINE__, 0, 1025}, {__LINE__, INT32_MAX, 2}, {__LINE__, INT32_MIN, INT32_MAX}};
  for (const auto& row : rows) {
    const std::string file = write({"t"}, [&](ioWriteContext& c) {
      c.startPacket("t", nullptr);
      c.writeInt(row.first);
      c.writeInt(row.length);
      c.endPacket();
    });
    const auto client = [&](ioReadContext& c) {
      short array[10];
      EXPECT_FALSE(ioReadArrayParcel(c, array, 10)) << row.line;
    };
    EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
  }
}

template <class T>
void expectParcelOf(ioWriteMethod method) {
  const T values[3] = {T(1), T(0), T(1)};
  T read[3] = {};
  const std::string file =
      writePackets(method, {"t"}, [&](ioWriteContext& c) { ioWriteLargeArray(c, "t", nullptr, 3, values); });
  const auto client = [&](ioReadContext& c) { c.readReference(), ioReadArrayParcel(c, read); };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
  EXPECT_TRUE(std::equal(read, read + 3, values));
}

TEST_P(ioContextTest, parcelsHoldEveryType) {
  [&]<class... T>(std::tuple<T...>*) {
    (expectParcelOf<T>(GetParam()), ...);
  }(static_cast<std::tuple<bool, char, unsigned char, short, unsigned short, int, unsigned int, std::int64_t,
                           std::uint64_t, float, double>*>(nullptr));
}

TEST_P(ioContextTest, textPacketsDefineACopy) {
  static const char text[] = "a text with \"marks\"\n";
  char* copy = nullptr;
  const std::string file = write({"t"}, [](ioWriteContext& c) {
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

TEST(ioContext, streamStatusesRise) {
  const std::pair<ioStreamStatus, ioStatus> rows[] = {{ioStreamOK, ioOK},
                                                      {ioStreamOpenFailed, ioOpenFailed},
                                                      {ioStreamAtEnd, ioBadData},
                                                      {ioStreamCompressedEnd, ioBadData},
                                                      {ioStreamDiskFull, ioDiskFull},
                                                      {ioStreamBadChecksum, ioBadChecksum},
                                                      {ioStreamFailed, ioFailed},
                                                      {ioStreamStatus(7), ioFailed}};
  for (const auto& [status, expected] : rows) {
    qvTest::PacketTypes registry(false, {});
    qvOS::MemoryIOStream memory;
    ioBufferedStreamOutput stream;
    stream.openIOStream(&memory);
    const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(stream, ioWriteBinary, &registry));
    stream.setStatus(status);
    context->startFile();
    EXPECT_EQ(context->getStatus(), expected) << status;
    stream.close();
  }
}

TEST(ioContext, onlyKnownMethodsHaveContexts) {
  ioBufferedStreamOutput out;
  for (const int method : {-1, 4, 99})
    EXPECT_EQ(ioWriteContextAlloc(out, ioWriteMethod(method), nullptr), nullptr);
  const char* const headers[] = {"", "^@", "^@\n1\n1 9 1\n1 2 4 8 4 8 8\n@\n",
                                 "^@\n1\n1 1 1\n1 2 4 4 4 8 8\n@\n"};
  for (const char* header : headers) EXPECT_EQ(PacketReading(header, {}).context, nullptr) << header;
}

TEST(ioContext, reportsGoToTheHookCutToSize) {
  const PacketFileAbort hooks;
  ioPacketFileError("%s %d", std::string(2000, 'x').c_str(), 1);
  EXPECT_EQ(hooks.report(), std::string(1023, 'x'));
}

TEST(ioContext, aFatalErrorListsThePacketsAroundTheInnermost) {
  const PacketFileAbort hooks;
  writePackets(ioWriteBinary, {"s", "t"}, [](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    c.startPacket("s", nullptr);
    c.startPacket("s", nullptr);
    EXPECT_THROW(c.fatalError(), PacketFileAbort::Thrown);
    for (int i = 0; i < 3; ++i) c.endPacket();
  });
  EXPECT_EQ(hooks.report(), "ioPacketFile: Fatal error.  Aborting.\n  0: 3\n  1: 2\n");
}

TEST(ioContext, aPacketThatDoesNotDefineItsReferenceIsFatal) {
  const PacketFileAbort hooks;
  static const int object = 0;
  const std::string file = writePackets(ioWriteBinary, {"t"}, [](ioWriteContext& c) {
    c.startPacket("t", &object);
    c.endPacket();
  });
  EXPECT_THROW(readPackets(file, {{"t", nullptr}}), PacketFileAbort::Thrown);
  EXPECT_EQ(hooks.report(), "ioPacketFile: A packet type: 't'\n"
                            "  had a reference associated with it but no \n"
                            "  definition was provided by the client code.\n"
                            "  The undefined reference is: 0.\n"
                            "ioPacketFile: Fatal error.  Aborting.\n");
  EXPECT_EQ(readPackets(file, {{"t", [](ioReadContext& c) { c.invalidPacket(); }}}), ioOK);
}

} // namespace
