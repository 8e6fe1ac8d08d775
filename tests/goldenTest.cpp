// The golden files: one for every write method, filter and package shape, as written by a little-endian and
// by a big-endian machine. Every version, on every platform, must read them all to the same values, and write
// those of its own byte order to the same bytes. With QV_GOLDEN_WRITE in the environment these are written
// anew, which only a change of a format justifies.
#include "Base/IO/ioEncryptKey.h"
#include "Base/IO/ioHeader.h"
#include "Base/IO/ioPackageFile.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestPacketFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;
using qvString::IString;

namespace {

IString wide(const std::string& utf8) { return IString(utf8.c_str(), qvString::UTF8Encoding); }

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
  char chars[4] = {'a', '\n', '\xFF', 0};
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
const Item blank = {false, 0,  0,  0,  0,  0,  0,  0,  0,  0,  0, "", {},
                    {},    {}, {}, {}, {}, {}, {}, {}, {}, {}, 0, 0};

/// Writes or reads the fields.
template <class Context>
void move(Context& c, Item& o) {
  const auto all = [&](auto&... fields) { (qvTest::moveField(c, fields), ...); };
  qvTest::moveChunk(c);
  all(o.yes, o.c, o.uc, o.s, o.us, o.i, o.ui, o.l, o.ul, o.f, o.d, o.text, o.next);
  qvTest::moveChunk(c);
  all(o.yeses, o.chars, o.bytes, o.shorts, o.ushorts, o.ints, o.uints, o.longs, o.ulongs, o.floats,
      o.doubles);
  qvTest::moveChunk(c);
  c.startSubPacket();
  qvTest::moveChunk(c);
  all(o.nested);
  c.endSubPacket();
  qvTest::moveChunk(c);
  all(o.later);
}

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
    {"plain.packets", ioWriteBinary, ""},          {"tagged.packets", ioWriteBinaryDebug, ""},
    {"compressed.packets", ioWriteBinary, "z"},    {"summed.packets", ioWriteBinary, "s"},
    {"both.packets", ioWriteBinary, "zs"},         {"summedBelow.packets", ioWriteBinary, "sz"},
    {"encrypted.packets", ioWriteBinary, "e"},     {"text.packets", ioWriteAscii, ""},
    {"taggedText.packets", ioWriteAsciiDebug, ""},
};

void push(ioBufferedStream& stream, const char* filters) {
  for (; *filters; ++filters) {
    if (*filters == 'z') stream.compress(true);
    if (*filters == 's') stream.checksum(true);
    if (*filters == 'e') stream.encrypt(true);
  }
}

void writePackets(const std::string& path, const Golden& golden) {
  std::vector<Item> items = makeItems();
  ioBufferedStreamOutput stream;
  stream.openFile(wide(path));
  push(stream, golden.filters);
  qvTest::PacketTypes registry(false, {{"golden.item", nullptr}});
  const std::unique_ptr<ioWriteContext> out(ioWriteContextAlloc(stream, golden.method, &registry));
  out->startFile();
  for (Item& item : items) {
    out->startPacket("golden.item", &item);
    move(*out, item);
    out->endPacket();
  }
  out->writeCStringPacket("a string of its own");
  out->endFile();
  stream.close();
  ASSERT_TRUE(out->good() && stream.good());
}

void expectPackets(const std::string& path, const Golden& golden) {
  std::vector<std::unique_ptr<Item>> read;
  const auto readItem = [&](ioReadContext& in) {
    read.push_back(std::make_unique<Item>(blank));
    in.definePacketReference(read.back().get());
    move(in, *read.back());
  };
  ioBufferedStreamInput stream;
  stream.openFile(wide(path));
  push(stream, golden.filters);
  qvTest::PacketTypes registry(true, {{"golden.item", readItem}});
  const std::unique_ptr<ioReadContext> in(ioReadContextAlloc(stream, &registry));
  ASSERT_TRUE(in);
  ioClientReadContext client(in.get());
  EXPECT_EQ(in->readFile(client), ioOK);
  // The packet behind the items is a string; who takes it owns it.
  char* const text = static_cast<char*>(in->getReferenceDefinition(itemCount + 1));
  EXPECT_STREQ(text, "a string of its own");
  std::free(text);
  const std::vector<Item> items = makeItems();
  ASSERT_EQ(read.size(), items.size());
  for (int i = 0; i < itemCount; ++i) {
    EXPECT_EQ(read[i]->next, read[(i + 7) % itemCount].get());
    read[i]->next = items[i].next;
    EXPECT_TRUE(*read[i] == items[i]) << "item " << i;
  }
}

const std::pair<std::string, std::string> packageEntries[] = {
    {"empty", ""},
    {"directory/file with blank.txt", "stored as it is"},
    {"compressed", std::string(3000, 'x') + std::string(3000, 'y')},
    {"\xD0\xBF\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82/\xE6\xBC\xA2\xE5\xAD\x97/\xF0\x9F\x98\x80",
     "any script"},
};

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
  for (const auto& [name, bytes] : packageEntries) add(name, bytes);
  ASSERT_FALSE(package.deleteEntry(IString("hole")));
  ASSERT_FALSE(package.update());
}

void expectPackage(const std::string& path) {
  ioPackageFile package;
  ASSERT_FALSE(package.open(wide(path)));
  EXPECT_EQ(package.size(), static_cast<int>(std::size(packageEntries)));
  const qvTest::Directory scratch;
  for (const auto& [name, bytes] : packageEntries) {
    const ioPackageFileEntry* entry = package.getEntry(wide(name));
    ASSERT_TRUE(entry) << name;
    EXPECT_EQ(entry->getTimeStamp(), 1000000000);
    EXPECT_EQ(entry->getCompressed(), bytes.size() > 1000);
    ASSERT_FALSE(package.extractEntry(entry, wide(scratch.path("out"))));
    EXPECT_EQ(scratch.read("out"), bytes);
  }
}

void expectAll(const std::string& folder) {
  for (const Golden& golden : packetFiles) {
    SCOPED_TRACE(golden.name);
    expectPackets(folder + golden.name, golden);
  }
  expectPackage(folder + "mixed.package");
}

void writeAll(const std::string& folder) {
  for (const Golden& golden : packetFiles) writePackets(folder + golden.name, golden);
  fs::remove(folder + "mixed.package");
  writePackage(folder + "mixed.package");
}

} // namespace

TEST(GoldenFiles, AreReadByEveryVersionOnEveryMachineAndWrittenAgainByteForByte) {
  ioEncryptKeyInit(fixedKey);
  const std::string byteOrders[] = {QV_GOLDEN_FOLDER "/littleEndian/", QV_GOLDEN_FOLDER "/bigEndian/"};
  const std::string& own = byteOrders[ioHeader::systemIsLittleEndian() ? 0 : 1];
  if (std::getenv("QV_GOLDEN_WRITE")) writeAll(own);
  for (const std::string& golden : byteOrders) {
    SCOPED_TRACE(golden);
    expectAll(golden);
  }
  const qvTest::Directory scratch;
  writeAll(scratch.path(""));
  expectAll(scratch.path(""));
  for (const fs::directory_entry& file : fs::directory_iterator(own)) {
    const std::string name = file.path().filename().string();
    if (name == "encrypted.packets") continue; // begins with a random number
    EXPECT_TRUE(scratch.read(name) == qvTest::fileBytes(file.path().string())) << name;
  }
}
