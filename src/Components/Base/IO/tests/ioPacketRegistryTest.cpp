// The type table, numbering, and what makes a table bad.
#include "Base/IO/ioSimplePacketRegistry.h"
#include "testing/qvTestPacketFile.h"

#include <gtest/gtest.h>

namespace {

using qvTest::PacketReading;
using qvTest::PacketTypes;

std::string tableOf(const ioPacketRegistry& registry, bool withNames) {
  qvTest::MemoryOutput out;
  registry.writeRegistry(out.stream, withNames);
  return out.bytes();
}

ioStatus readTable(ioPacketRegistry& registry, const std::string& table) {
  qvOS::MemoryIOStream memory(static_cast<const void*>(table.data()), table.size());
  ioBufferedStreamInput stream;
  stream.openIOStream(&memory);
  return registry.readRegistry(stream);
}

TEST(ioPacketRegistry, aWriterNumbersInOrderOfRegistration) {
  // A type of the same name takes the place of the first.
  PacketTypes registry(false, {{"b", nullptr}, {"a", nullptr}, {"b", nullptr}, {"c", nullptr}});
  EXPECT_EQ(registry.numTypes(), 0);
  for (int i = 0; i < 2; ++i) {
    registry.init();
    EXPECT_EQ(registry.numTypes(), 5);
    EXPECT_EQ(registry.lookup(2), registry.lookup("b"));
    EXPECT_EQ(tableOf(registry, true),
              "   0 packetFile_string\n   1 packetFile_EOF\n   2 b\n   3 a\n   4 c\n@\n");
    EXPECT_EQ(tableOf(registry, false), "@\n");
  }
  for (const int id : {-1, 5, INT32_MIN, INT32_MAX}) EXPECT_EQ(registry.lookup(id), nullptr);
  EXPECT_EQ(registry.lookup("d"), nullptr);
}

TEST(ioPacketRegistry, aReaderLearnsTheNumbersFromTheFile) {
  PacketTypes registry(true, {{"a", nullptr}, {"b", nullptr}});
  registry.init();
  EXPECT_EQ(registry.numTypes(), 0);
  EXPECT_EQ(readTable(registry, "   0 b\n   1 new\n 2 packetFile_EOF\n@\n"), ioOK);
  EXPECT_EQ(registry.lookup(0), registry.lookup("b"));
  EXPECT_STREQ(registry.lookup(1)->getName(), "new");
  EXPECT_EQ(registry.lookup("a")->getId(), -1);
  // A second file keeps the numbers of the first, whatever its table says.
  EXPECT_EQ(readTable(registry, "   0 new\n   1 b\n   2 a\n@\n"), ioOK);
  EXPECT_EQ(registry.lookup("b")->getId(), 0);
  EXPECT_EQ(registry.lookup("a")->getId(), 3);
}

TEST(ioPacketRegistry, badTablesAreFoundOut) {
  const std::string longest(84, 'n');
  const struct {
    int line;
    std::string table;
    ioStatus status;
  } rows[] = {
      {__LINE__, "@\n", ioOK},
      {__LINE__, "@", ioFailed},
      {__LINE__, "", ioFailed},
      {__LINE__, "   0 a\n", ioFailed},
      {__LINE__, "   7 a\n   8 b\n@\n", ioOK},
      {__LINE__, "   0 a\n   2 b\n@\n", ioBadData},
      {__LINE__, "   0 a\n   0 a\n@\n", ioBadData},
      {__LINE__, "2147483647 a\n-2147483648 b\n@\n", ioBadData},
      {__LINE__, "2147483648 a\n@\n", ioBadData},
      {__LINE__, "a\n@\n", ioBadData},
      {__LINE__, "   0\n@\n", ioBadData},
      {__LINE__, "\n@\n", ioBadData},
      {__LINE__, "   0 " + longest.substr(0, 83) + "\n@\n", ioOK},
      {__LINE__, "   0 " + longest + "n\n@\n", ioBadData}, // the rest of it is taken for a line
      {__LINE__, std::string("   0 a\0b\n@\n", 11), ioOK},
  };
  for (const auto& row : rows) {
    PacketTypes registry(true, {{"a", nullptr}});
    registry.init();
    EXPECT_EQ(readTable(registry, row.table), row.status) << row.line;
  }
  EXPECT_EQ(qvTest::readPackets("^@\n1\n1 1 1\n1 2 4 8 4 8 8\n@\n   0 a\n   9 b\n@\n", {}), ioBadData);
}

TEST(ioPacketRegistry, withoutNamesBothSidesNumberThemselves) {
  for (const ioWriteMethod method : qvTest::writeMethods) {
    int value = 0;
    PacketTypes types(false, {{"t", [&](ioReadContext& c) { c.readInt(value); }}});
    qvTest::MemoryOutput out;
    const std::unique_ptr<ioWriteContext> writer(ioWriteContextAlloc(out.stream, method, &types));
    writer->writePacketRegistry(false);
    writer->startFile();
    writer->startPacket(types.lookup(2), nullptr);
    writer->writeInt(5);
    writer->endPacket();
    writer->endFile();
    PacketReading reading(out.bytes(), {});
    reading.context->associateRegistry(&types);
    EXPECT_EQ(reading.read(), ioOK);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(types.type("t").getNumUsages(), 2); // written and read
  }
}

int simpleReads = 0;

TEST(ioSimplePacketRegistry, asksItsSignalForTypesOnce) {
  ioSimplePacketRegistry registry(true);
  int asked = 0;
  registry.signal().connect([&](ioSimplePacketRegistry& r) {
    ++asked;
    r.add("read", [] { ++simpleReads; });
    r.add("declared");
  });
  registry.signal().block(registry.signal().connect([](ioSimplePacketRegistry& r) { r.add("blocked"); }));
  const std::string file = qvTest::writePackets(ioWriteBinary, {"read", "declared"}, [](ioWriteContext& c) {
    for (const char* name : {"read", "declared", "read"}) c.startPacket(name, nullptr), c.endPacket();
  });
  PacketReading reading(file + file, {});
  reading.context->associateRegistry(&registry);
  EXPECT_EQ(reading.read(), ioOK);
  EXPECT_TRUE(reading.context->reusePacketFile());
  EXPECT_EQ(reading.read(), ioOK);
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(simpleReads, 4);
  EXPECT_EQ(registry.lookup("blocked"), nullptr);
}

} // namespace
