// References: forward, cyclic, aliased, undefined and left over; the address table beside a model.
#include "Base/IO/ioAddressTable.h"
#include "testing/qvTestPacketFile.h"
#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <unordered_map>

namespace {

using qvTest::PacketReading;
using qvTest::readPackets;
using qvTest::writePackets;

struct Node {
  int value = 0;
  Node* next = nullptr;
};

void writeNode(ioWriteContext& c, const Node& node) {
  c.startPacket("node", &node);
  c.writeInt(node.value);
  c.writeReference(node.next, false);
  c.endPacket();
}

/// Reads nodes into the places of `nodes`, one after the other.
qvTest::PacketReaders nodeReader(std::vector<Node>& nodes, std::size_t& count) {
  return {{"node", [&](ioReadContext& c) {
             Node& node = nodes.at(count++);
             c.definePacketReference(&node);
             c.readInt(node.value);
             c.readReferenceUsage(&node.next, node.value);
           }}};
}

TEST(ioReference, objectsComeBackWithTheirPointers) {
  constexpr int million = 1'000'000;
  const struct {
    int line, count;
    int (*next)(int index, int count); // -1 for null
  } shapes[] = {
      {__LINE__, million, [](int i, int n) { return i + 1 < n ? i + 1 : -1; }}, // a chain, each link forward
      {__LINE__, 100'000, [](int i, int) { return i - 1; }},
      {__LINE__, 300'000, [](int, int n) { return n - 1; }}, // all to one that comes last, itself too
      {__LINE__, 1000, [](int i, int n) { return (i + 1) % n; }},
      {__LINE__, 100'000, [](int i, int n) { return int(std::int64_t(i) * 7919 % n); }},
  };
  for (const auto& shape : shapes)
    for (const ioWriteMethod method : qvTest::writeMethods) {
      if (shape.count == million && method != ioWriteBinary) continue; // once is enough
      std::vector<Node> nodes(shape.count), read(shape.count);
      for (int i = 0; i < shape.count; ++i) {
        const int next = shape.next(i, shape.count);
        nodes[i] = {i, next < 0 ? nullptr : &nodes[next]};
      }
      std::size_t count = 0;
      const std::string file = writePackets(method, {"node"}, [&](ioWriteContext& c) {
        for (const Node& node : nodes) writeNode(c, node);
      });
      ASSERT_EQ(readPackets(file, nodeReader(read, count)), ioOK);
      ASSERT_EQ(count, nodes.size());
      for (int i = 0; i < shape.count; ++i) {
        ASSERT_EQ(read[i].value, i);
        const int next = shape.next(i, shape.count);
        ASSERT_EQ(read[i].next, next < 0 ? nullptr : &read[next]) << shape.line;
      }
    }
}

class ioReferenceTest : public testing::TestWithParam<ioWriteMethod> {};
INSTANTIATE_TEST_SUITE_P(Methods, ioReferenceTest, testing::ValuesIn(qvTest::writeMethods));

TEST_P(ioReferenceTest, theEndReportsWhatNeverCameAndWhatNobodyUsed) {
  Node nodes[4];
  nodes[0] = {10, &nodes[3]}; // never written
  nodes[1] = {11, &nodes[3]};
  nodes[2] = {12, &nodes[0]};
  const std::string file = writePackets(GetParam(), {"node"}, [&](ioWriteContext& c) {
    for (int i = 0; i < 3; ++i) writeNode(c, nodes[i]);
  });
  std::vector<Node> read(3);
  std::size_t count = 0;
  PacketReading reading(file, nodeReader(read, count));
  ASSERT_EQ(reading.read(), ioOK);
  const qvTest::PacketType& type = reading.registry.type("node");
  EXPECT_TRUE(type.isUnresolved() && type.isUnreferenced());
  EXPECT_EQ(std::set(type.waiting.begin(), type.waiting.end()), (std::set{10, 11}));
  EXPECT_EQ(type.unused, (std::vector<void*>{&read[1], &read[2]}));
  static std::set<void*> slots; // for a function without a context
  slots.clear();
  reading.context->reportUnresolvedPtrs(&type, [](void* slot, int) { slots.insert(slot); });
  EXPECT_EQ(slots, (std::set<void*>{&read[0].next, &read[1].next}));
  EXPECT_FALSE(reading.registry.lookup("packetFile_string")->isUnresolved());
}

TEST(ioReference, filesShareAMap) {
  Node first{1, nullptr}, second{2, &first};
  std::string file;
  const auto map = ioPacketFileNewReferenceMap();
  for (Node* const node : {&second, &first})
    file += writePackets(ioWriteBinary, {"node"}, [&](ioWriteContext& c) {
      c.associateReferenceMap(map.get());
      writeNode(c, *node);
    });
  std::vector<Node> read(2);
  std::size_t count = 0;
  PacketReading reading(file, nodeReader(read, count));
  EXPECT_EQ(reading.read(), ioOK);
  EXPECT_EQ(read[0].next, nullptr);
  EXPECT_TRUE(reading.context->reusePacketFile());
  EXPECT_EQ(reading.read(), ioOK);
  EXPECT_EQ(read[0].next, &read[1]);
}

TEST_P(ioReferenceTest, theWaysToReadAReference) {
  static Node object, other;
  const std::string file = writePackets(GetParam(), {"t"}, [](ioWriteContext& c) {
    c.startPacket("t", nullptr);
    EXPECT_EQ(c.writeReference(nullptr, false), 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(c.writeReference(&object, false), 1);
    c.undefineReference(&object);
    EXPECT_EQ(c.writeReference(&object, false), 2);
    c.endPacket();
    EXPECT_EQ(c.getReferenceMap()->newReference(&other), 3);
    c.undefineReference(2);
    EXPECT_EQ(c.getReference(&object), -1);
  });
  int packets = 0;
  const auto client = [&](ioReadContext& c) {
    ++packets;
    int reference = -1;
    EXPECT_EQ(c.readReferenceUsage(reference), nullptr);
    EXPECT_EQ(reference, 0);
    EXPECT_EQ(c.readReferenceUsage(reference), nullptr); // not defined yet
    void *slot = &c, *late = &c;
    c.resolveReference(reference, &slot, 0);
    EXPECT_EQ(slot, nullptr);
    EXPECT_FALSE(c.isReferenceDefined(&object));
    EXPECT_EQ(c.readReferenceDefinition(&object), 1);
    EXPECT_EQ(slot, &object);
    EXPECT_TRUE(c.isReferenceDefined(&object) && c.isReferenceDefined(1));
    EXPECT_EQ(c.readReferenceUsage(), &object);
    c.resolveReference(1, &late, 0);
    EXPECT_EQ(late, &object);
    c.defineReferenceAlias(50, &object);
    EXPECT_EQ(c.getReferenceDefinition(50), &object);
    EXPECT_EQ(c.getReference(&object), 50);
    c.useReference(&object);
    c.undefineReference(&object);
    EXPECT_EQ(c.getReferenceDefinition(50), nullptr);
    EXPECT_EQ(c.getReference(&object), -1);
    EXPECT_TRUE(c.isReferenceDefined(1));
    c.defineReference(50, &other); // an undefined number stays so
    EXPECT_FALSE(c.isReferenceDefined(50));
  };
  EXPECT_EQ(readPackets(file, {{"t", client}}), ioOK);
  EXPECT_EQ(packets, 1);
}

TEST(ioReferenceMap, numbersOfAnyHeightAndSign) {
  const auto map = ioPacketFileNewReferenceMap();
  Node object;
  for (const int reference : {0, -1, INT_MIN}) {
    map->defineAddress(reference, &object, false);
    map->markDefined(reference, nullptr);
    map->useDefinition(reference, nullptr);
    map->undefineNumber(reference);
    void* slot = &object;
    map->resolveUsage(reference, &slot, nullptr, 0);
    EXPECT_EQ(slot, nullptr);
    EXPECT_FALSE(map->isDefined(reference));
    EXPECT_EQ(map->definitionOf(reference), nullptr);
  }
  EXPECT_EQ(map->referenceOf(&object), -1);
  // Far numbers wait in the tree, and keep what waits for them when the blocks reach them, which may be while
  // a type hears of them.
  static constexpr int far[] = {INT_MAX, 1'000'000, 30'000, 20'001, 1000, 9, 10};
  struct Growing final : ioPacketType {
    explicit Growing(ioReferenceMap& m) : ioPacketType("growing"), map(m), nodes(200'000) {}
    void hasUnresolvedPointer(ioClientReadContext&, void*, int extra) override {
      for (int i = 0; extra == 30'000 && i < int(nodes.size()); ++i)
        EXPECT_EQ(map.newReference(&nodes[i]), i + 1);
      ++waiting;
    }
    ioReferenceMap& map;
    std::vector<Node> nodes;
    int waiting = 0;
  } type(*map);
  void* slots[std::size(far)];
  for (std::size_t i = 0; i < std::size(far); ++i) map->resolveUsage(far[i], &slots[i], &type, far[i]);
  ioClientReadContext client(nullptr);
  map->reportRemaining(client);
  EXPECT_EQ(type.waiting, int(std::size(far)));
  map->defineAddress(INT_MAX, &object, false);
  map->defineAddress(1'000'000, &object, true);
  for (std::size_t i = 0; i < std::size(far); ++i) {
    EXPECT_FALSE(map->isDefined(far[i]));
    map->markDefined(far[i], nullptr);
    EXPECT_EQ(slots[i], far[i] > 200'000 ? &object : &type.nodes[far[i] - 1]) << far[i];
    EXPECT_EQ(map->definitionOf(far[i]), slots[i]);
  }
  EXPECT_FALSE(map->isDefined(INT_MAX - 1));
  EXPECT_EQ(map->referenceOf(&object), 1'000'000);
  // Scattered ones cost memory by their count.
  qvTest::Random random(1);
  std::vector<std::pair<int, void*>> scattered(100'000);
  for (auto& [reference, slot] : scattered) {
    reference = 1'000'001 + int(random.below(2'000'000'000));
    map->resolveUsage(reference, &slot, nullptr, 0);
  }
  for (auto& [reference, slot] : scattered) {
    map->defineAddress(reference, &reference, false);
    map->markDefined(reference, nullptr);
  }
  for (const auto& [reference, slot] : scattered) ASSERT_EQ(*static_cast<int*>(slot), reference);
}

TEST(ioAddressTable, agreesWithAModelForAnySpacing) {
  qvTest::Random random(2);
  for (const std::uint64_t stride : {1ull, 16ull, 48ull, 4096ull, 1ull << 20, 1ull << 32, 0ull}) {
    ioAddressTable table;
    std::vector<const void*> records(20'001);
    const auto addressOf = [&](int number) { return records[number]; };
    std::unordered_map<std::uint64_t, int> model;
    for (int i = 1; i < int(records.size()); ++i) {
      const std::uint64_t address = stride ? 0x10000 + i / 2 * stride : random.bits() | 1;
      records[i] = reinterpret_cast<const void*>(address);
      table.set(records[i], i, addressOf); // every other one again
      model[address] = i;
      if (i % 6 != 1) continue;
      records[i] = nullptr; // and some are taken away again
      if (i > 1 && records[i - 1] == reinterpret_cast<const void*>(address)) records[i - 1] = nullptr;
      model.erase(address);
    }
    for (const auto& [address, number] : model) {
      ASSERT_EQ(table.find(reinterpret_cast<const void*>(address), addressOf), number);
      if (!model.contains(address + 1)) {
        ASSERT_EQ(table.find(reinterpret_cast<const void*>(address + 1), addressOf), 0);
      }
    }
  }
}

} // namespace
