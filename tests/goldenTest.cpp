// The golden files: one for every write method, filter and package shape. Every version, on every platform,
// must read them all to the same values; on a little-endian platform the writer's bytes are the same too.
// With QV_GOLDEN_WRITE in the environment the files are written anew, which only a change of a format
// justifies.
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioClientReadContext.h"
#include "Base/IO/ioEncryptKey.h"
#include "Base/IO/ioHeader.h"
#include "Base/IO/ioPackageFile.h"
#include "Base/IO/ioPacketRegistry.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"
#include "testing/qvTestDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using qvString::IString;

namespace {

IString wide(const std::string& utf8) { return IString(utf8.c_str(), qvString::UTF8Encoding); }

std::string fileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool fixedKey(unsigned char* key) {
  for (int i = 0; i < ioEncryptKeySize; ++i) key[i] = static_cast<unsigned char>(7 * i + 1);
  return true;
}

// ---- what the packet files hold ----

struct Item {
  bool yes = true;
  char c = -5;
  unsigned char uc = 250;
  short s = -30000;
  unsigned short us = 60000;
  int i = -2000000000;
  unsigned int ui = 4000000000U;
  std::int64_t l = INT64_MIN + 5;
  std::uint64_t ul = UINT64_MAX - 7;
  float f = -1.5e-30f;
  double d = 6.02214076e23;
  std::string text = "text with \xC3\xBC, a\ttab and \"quotes\"";
  bool yeses[3] = {true, false, true};
  char chars[4] = {'a', '\n', -1, 0};
  unsigned char bytes[3] = {0, 128, 255};
  short shorts[2] = {-1, 257};
  unsigned short ushorts[2] = {1, 65535};
  int ints[3] = {1, -1, 0x01020304};
  unsigned int uints[2] = {0xA0B0C0D0U, 0};
  std::int64_t longs[2] = {-1, 0x0102030405060708};
  std::uint64_t ulongs[1] = {0xF0E0D0C0B0A09080U};
  float floats[3] = {0.0f, 1.0f, -3.25f};
  double doubles[2] = {1.0 / 3.0, -0.0};
  int later = 42;    // in a chunk of its own
  int nested = 4711; // in a sub-packet's chunk
  Item* next = nullptr;

  bool operator==(const Item&) const = default;
};

void write(ioWriteContext& out, const Item& item) {
  out.startPacket("golden.item", &item);
  out.startChunk();
  out.writeBool(item.yes);
  out.writeChar(item.c);
  out.writeUChar(item.uc);
  out.writeShort(item.s);
  out.writeUShort(item.us);
  out.writeInt(item.i);
  out.writeUInt(item.ui);
  out.writeInt64(item.l);
  out.writeUInt64(item.ul);
  out.writeFloat(item.f);
  out.writeDouble(item.d);
  out.writeCString(item.text.c_str());
  out.writeReference(item.next, false);
  out.startChunk();
  out.writeBoolArray(item.yeses, 3);
  out.writeCharArray(item.chars, 4);
  out.writeUCharArray(item.bytes, 3);
  out.writeShortArray(item.shorts, 2);
  out.writeUShortArray(item.ushorts, 2);
  out.writeIntArray(item.ints, 3);
  out.writeUIntArray(item.uints, 2);
  out.writeInt64Array(item.longs, 2);
  out.writeUInt64Array(item.ulongs, 1);
  out.writeFloatArray(item.floats, 3);
  out.writeDoubleArray(item.doubles, 2);
  out.startChunk();
  out.startSubPacket();
  out.startChunk();
  out.writeInt(item.nested);
  out.endSubPacket();
  out.startChunk();
  out.writeInt(item.later);
  out.endPacket();
}

class Reader : public ioClientReadContext {
public:
  using ioClientReadContext::ioClientReadContext;
  std::vector<std::unique_ptr<Item>> items;
};

void readItem(ioClientReadContext& client) {
  auto& items = static_cast<Reader&>(client).items;
  ioReadContext& in = client.getContext();
  items.push_back(std::make_unique<Item>());
  Item& item = *items.back();
  item.yes = false;
  item.yeses[0] = false;
  in.definePacketReference(&item);
  in.nextChunk();
  in.readBool(item.yes);
  in.readChar(item.c);
  in.readUChar(item.uc);
  in.readShort(item.s);
  in.readUShort(item.us);
  in.readInt(item.i);
  in.readUInt(item.ui);
  in.readInt64(item.l);
  in.readUInt64(item.ul);
  in.readFloat(item.f);
  in.readDouble(item.d);
  item.text = in.fetchCString();
  in.readReferenceUsage(&item.next, 0);
  in.nextChunk();
  in.fetchBoolArray(item.yeses, 3);
  in.fetchCharArray(item.chars, 4);
  in.fetchUCharArray(item.bytes, 3);
  in.fetchShortArray(item.shorts, 2);
  in.fetchUShortArray(item.ushorts, 2);
  in.fetchIntArray(item.ints, 3);
  in.fetchUIntArray(item.uints, 2);
  in.fetchInt64Array(item.longs, 2);
  in.fetchUInt64Array(item.ulongs, 1);
  in.fetchFloatArray(item.floats, 3);
  in.fetchDoubleArray(item.doubles, 2);
  in.nextChunk();
  in.startSubPacket();
  in.nextChunk();
  in.readInt(item.nested);
  in.endSubPacket();
  in.nextChunk();
  in.readInt(item.later);
}

class Registry : public ioPacketRegistry {
public:
  explicit Registry(bool forReading) : ioPacketRegistry(forReading) {}

protected:
  void registerAllTypes() override { supportedType(new ioReadPacketByFunction("golden.item", readItem)); }
};

constexpr int itemCount = 40;

std::vector<Item> makeItems() {
  std::vector<Item> items(itemCount);
  for (int i = 0; i < itemCount; ++i) {
    items[i].i += i;
    items[i].text += std::to_string(i);
    items[i].next = &items[(i + 7) % itemCount];
  }
  return items;
}

// ---- the set ----

struct Golden {
  const char* name;
  ioWriteMethod method;
  const char* filters; // z compresses, s sums, e encrypts; in the order in which they are pushed
};

constexpr Golden packetFiles[] = {
    {"plain.packets", ioWriteBinary, ""},       {"tagged.packets", ioWriteBinaryDebug, ""},
    {"compressed.packets", ioWriteBinary, "z"}, {"summed.packets", ioWriteBinary, "s"},
    {"both.packets", ioWriteBinary, "zs"},      {"summedBelow.packets", ioWriteBinary, "sz"},
    {"encrypted.packets", ioWriteBinary, "e"},
};

void push(ioBufferedStream& stream, const char* filters) {
  for (; *filters; ++filters) {
    if (*filters == 'z') stream.compress(true);
    if (*filters == 's') stream.checksum(true);
    if (*filters == 'e') stream.encrypt(true);
  }
}

void writePackets(const std::string& path, const Golden& golden) {
  const std::vector<Item> items = makeItems();
  ioBufferedStreamOutput stream;
  stream.openFile(wide(path));
  push(stream, golden.filters);
  Registry registry(false);
  const std::unique_ptr<ioWriteContext> out(ioWriteContextAlloc(stream, golden.method, &registry));
  out->startFile();
  for (const Item& item : items) write(*out, item);
  out->writeCStringPacket("a string of its own");
  out->endFile();
  stream.close();
  ASSERT_TRUE(out->good() && stream.good());
}

void expectPackets(const std::string& path, const Golden& golden) {
  ioBufferedStreamInput stream;
  stream.openFile(wide(path));
  push(stream, golden.filters);
  Registry registry(true);
  const std::unique_ptr<ioReadContext> in(ioReadContextAlloc(stream, &registry));
  ASSERT_TRUE(in);
  Reader reader(in.get());
  EXPECT_EQ(in->readFile(reader), ioOK);
  stream.close();
  const std::vector<Item> items = makeItems();
  ASSERT_EQ(reader.items.size(), items.size());
  for (int i = 0; i < itemCount; ++i) {
    EXPECT_EQ(reader.items[i]->next, reader.items[(i + 7) % itemCount].get());
    reader.items[i]->next = items[i].next;
    EXPECT_TRUE(*reader.items[i] == items[i]) << "item " << i;
  }
}

const std::vector<std::pair<std::string, std::string>>& packageEntries() {
  static const std::vector<std::pair<std::string, std::string>> entries = {
      {"empty", ""},
      {"directory/file with blank.txt", "stored as it is"},
      {"compressed", std::string(3000, 'x') + std::string(3000, 'y')},
      {"\xD0\xBF\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82/\xE6\xBC\xA2\xE5\xAD\x97/\xF0\x9F\x98\x80",
       "any script"},
  };
  return entries;
}

void writePackage(const std::string& path) {
  const qvTest::Directory scratch;
  ioPackageFile package;
  ASSERT_FALSE(package.open(wide(path)));
  const auto add = [&](const std::string& name, const std::string& bytes) {
    const std::string source = scratch.write("source", bytes);
    const auto moment = std::chrono::sys_seconds(std::chrono::seconds(1000000000));
    fs::last_write_time(source, std::chrono::file_clock::from_sys(moment));
    ASSERT_FALSE(package.addEntry(wide(source), wide(name), bytes.size() > 1000));
  };
  add("hole", std::string(50, 'h'));
  for (const auto& [name, bytes] : packageEntries()) add(name, bytes);
  ASSERT_FALSE(package.deleteEntry(IString("hole")));
  ASSERT_FALSE(package.update());
}

void expectPackage(const std::string& path) {
  ioPackageFile package;
  ASSERT_FALSE(package.open(wide(path)));
  EXPECT_EQ(package.size(), static_cast<int>(packageEntries().size()));
  const qvTest::Directory scratch;
  for (const auto& [name, bytes] : packageEntries()) {
    const ioPackageFileEntry* entry = package.getEntry(wide(name));
    ASSERT_TRUE(entry) << name;
    EXPECT_EQ(entry->getTimeStamp(), 1000000000);
    EXPECT_EQ(entry->getCompressed(), bytes.size() > 1000);
    ASSERT_FALSE(package.extractEntry(entry, wide(scratch.path("out"))));
    EXPECT_EQ(scratch.read("out"), bytes);
  }
}

class GoldenFiles : public testing::Test {
protected:
  void SetUp() override { ioEncryptKeyInit(fixedKey); }
  void TearDown() override { ioEncryptKeyInit(nullptr); }
};

} // namespace

TEST_F(GoldenFiles, AreReadByEveryVersion) {
  const std::string folder = QV_GOLDEN_FOLDER;
  if (std::getenv("QV_GOLDEN_WRITE")) {
    for (const Golden& golden : packetFiles) writePackets(folder + "/" + golden.name, golden);
    fs::remove(folder + "/mixed.package");
    writePackage(folder + "/mixed.package");
  }
  for (const Golden& golden : packetFiles) {
    SCOPED_TRACE(golden.name);
    expectPackets(folder + "/" + golden.name, golden);
  }
  expectPackage(folder + "/mixed.package");
}

TEST_F(GoldenFiles, AreWrittenAgainByteForByte) {
  const qvTest::Directory scratch;
  const std::string folder = QV_GOLDEN_FOLDER;
  for (const Golden& golden : packetFiles) {
    SCOPED_TRACE(golden.name);
    writePackets(scratch.path(golden.name), golden);
    expectPackets(scratch.path(golden.name), golden);
    // An encrypted stream begins with a random number, and numbers have the writer's byte order.
    if (golden.filters == std::string("e") || !ioHeader::systemIsLittleEndian()) continue;
    EXPECT_TRUE(fileBytes(scratch.path(golden.name)) == fileBytes(folder + "/" + golden.name));
  }
  writePackage(scratch.path("mixed.package"));
  expectPackage(scratch.path("mixed.package"));
  if (!ioHeader::systemIsLittleEndian()) return;
  EXPECT_TRUE(fileBytes(scratch.path("mixed.package")) == fileBytes(folder + "/mixed.package"));
}
