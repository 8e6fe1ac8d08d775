#include "Base/Containers/qvHashFunction.h"
#include "Base/Containers/qvHashMap.h"
#include "Base/Containers/qvHashSet.h"
#include "qvContainerCheck.h"
#include "testing/qvTestCounted.h"
#include "testing/qvTestSeed.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <ranges>
#include <set>
#include <string>
#include <vector>

namespace qvTest {

/// Few different hashes, so that chains grow long.
unsigned int hashfunction(const Pinned& key) { return static_cast<unsigned int>(key.value() % 17); }

} // namespace qvTest

namespace {

using qv::HashTableImpl;
using qv::detail::ContainerCheck;
using qvTest::Pinned;

static_assert(std::forward_iterator<qv::hash_map<int, int>::iterator>);
static_assert(std::forward_iterator<qv::hash_set<int>::const_iterator>);
static_assert(std::ranges::forward_range<const qv::hash_map<int, int>>);
static_assert(qv::isRelocatable<qv::hash_map<int, int>>);

template <class Map>
class HashMapTest : public testing::Test {};
using Maps =
    testing::Types<qv::hash_map<int, Pinned>, qv::hash_map<Pinned, int>, qv::hash_map<Pinned, Pinned>>;
TYPED_TEST_SUITE(HashMapTest, Maps);

template <class Map>
bool same(const Map& tested, const std::map<int, int>& model) {
  std::size_t found = 0;
  for (const auto& element : tested) {
    const auto place =
        std::find_if(model.begin(), model.end(), [&](const auto& e) { return element.first == e.first; });
    if (place == model.end() || !(element.second == place->second)) return false;
    ++found;
  }
  return found == model.size();
}

TYPED_TEST(HashMapTest, BehavesAsTheModel) {
  const qvTest::NothingLeaks<Pinned> nothingLeaks;
  qvTest::Random random(5);
  TypeParam tested;
  std::map<int, int> model;
  int key = 0;
  int step = 0;
  const std::function<void()> operations[] = {
      [&] {
        const auto [place, isNew] = tested.insert({key, step});
        EXPECT_EQ(isNew, model.insert({key, step}).second);
        EXPECT_EQ(place->second, model[key]);
      },
      [&] {
        const typename TypeParam::value_type element(key, step);
        tested.insert(element), model.insert({key, step});
      },
      [&] { tested[key] = step, model[key] = step; },
      [&] { tested.insert_or_assign(key, step), model[key] = step; },
      [&] { EXPECT_EQ(tested.erase(key), static_cast<int>(model.erase(key))); },
      [&] {
        const auto place = tested.find(key);
        EXPECT_EQ(place == tested.end(), model.count(key) == 0);
        if (place == tested.end()) return;
        EXPECT_EQ(tested.erase(place->first), 1) << "the key lies in the element";
        model.erase(key);
      },
      [&] {
        if (tested.empty()) return;
        const auto first = tested.begin();
        const auto second = std::next(first);
        for (auto it = model.begin(); it != model.end(); ++it)
          if (first->first == it->first) {
            model.erase(it);
            break;
          }
        EXPECT_EQ(tested.erase(first), second);
      },
      [&] {
        TypeParam copy(tested);
        EXPECT_EQ(copy, tested);
        copy[key] = -1;
        EXPECT_FALSE(copy == tested);
        swap(copy, tested);
        tested = std::move(copy);
        EXPECT_TRUE(ContainerCheck::isWellFormed(copy));
        tested.rehash(random.between(0, 300));
      },
      [&] {
        if (random.oneIn(40)) tested.clear(), model.clear();
        EXPECT_EQ(tested.contains(key), model.count(key) > 0);
      },
  };
  for (; step < 4000; ++step) {
    key = random.between(0, 200);
    operations[random.oneIn(4) ? 0 : random.below(std::size(operations))]();
    ASSERT_TRUE(ContainerCheck::isWellFormed(tested)) << "step " << step;
    ASSERT_TRUE(same(tested, model)) << "step " << step;
  }
}

TEST(HashTableImpl, GrowsAlongThePrimes) {
  const struct {
    int line;
    float load;
    int wanted;
    int buckets;
  } rows[] = {
      {__LINE__, 1.0F, 0, 0},    {__LINE__, 1.0F, 1, 7},       {__LINE__, 1.0F, 7, 7},
      {__LINE__, 1.0F, 8, 13},   {__LINE__, 0.5F, 7, 29},      {__LINE__, 0.5F, 6, 13},
      {__LINE__, 2.0F, 1, 7},    {__LINE__, 2.0F, 15, 7},      {__LINE__, 2.0F, 16, 13},
      {__LINE__, 1.0F, 54, 97},  {__LINE__, 1.0F, 6151, 6151}, {__LINE__, 1.0F, 6152, 12289},
      {__LINE__, 100.0F, 99, 7},
  };
  for (const auto& row : rows) {
    qv::hash_set<int> set;
    set.max_load_factor(row.load);
    set.rehash(row.wanted);
    EXPECT_EQ(set.bucket_count(), row.buckets) << row.line;
    set.insert(1);
    set.rehash(1);
    set.max_load_factor(1000.0F);
    EXPECT_GE(set.bucket_count(), row.buckets) << "a table never shrinks, line " << row.line;
  }
  EXPECT_EQ(qv::hash_set<int>().max_bucket_count(), 1610612741);
  EXPECT_EQ(qv::hash_set<int>().load_factor(), 0.0F);
}

TEST(HashTableImpl, DividesByMultiplying) {
  // The walker divides, the table multiplies: every node has to be in its bucket, at every size.
  qvTest::Random random(3);
  qv::hash_set<std::uint64_t> set;
  const std::uint64_t edges[] = {
      0, 1, 6, 7, 8, UINT32_MAX, UINT64_MAX, UINT64_MAX - 1, std::uint64_t{1} << 63};
  set.insert(std::begin(edges), std::end(edges));
  while (set.bucket_count() < 3000000) {
    for (int i = 0; i < 40; ++i) {
      set.insert(random.bits() >> random.below(64));
      set.insert(static_cast<std::uint64_t>(set.bucket_count()) * (random.bits() >> 32) - random.below(2));
    }
    ASSERT_TRUE(ContainerCheck::isWellFormed(set)) << set.bucket_count();
    set.rehash(set.bucket_count() + 1);
  }
  const HashTableImpl table(&qv::detail::hashRecord<int, void, qv::equal_to<int>>);
  EXPECT_EQ(table.bucketNum(UINT64_MAX, 10), 5);
}

/// A record that counts the keys it destroys.
struct Counting {
  static inline int destroyed = 0;
  static HashTableImpl::TypeUtil record() {
    HashTableImpl::TypeUtil result = qv::detail::hashRecord<int, int, qv::equal_to<int>>;
    result.destructKey = [](void*) { ++destroyed; };
    return result;
  }
};

/// Equal keys stay together, the new one behind the first; a copy and a growth keep them.
TEST(HashTableImpl, KeepsEqualKeysTogether) {
  HashTableImpl table(&qv::detail::hashRecord<int, int, qv::equal_to<int>>);
  EXPECT_EQ(table.findNode(1, nullptr), nullptr);
  EXPECT_EQ(table.count(1, nullptr), 0);
  EXPECT_EQ(table.eraseKey(1, nullptr), 0);
  table.eraseNode(nullptr);
  EXPECT_DEATH(table.insert_unique_noresize(1, "", nullptr), "") << "there is no bucket";
  EXPECT_DEATH(table.insert_non_unique_noresize(1, "", nullptr), "");
  table.rehash(1);
  const int keys[] = {1, 2, 1, 2, 1};
  HashTableImpl::HashNodeImpl* nodes[5];
  for (int i = 0; i < 5; ++i) nodes[i] = table.insert_non_unique_noresize(7, &keys[i], &i);
  EXPECT_EQ(table.insert_unique_noresize(7, &keys[1], nullptr), nodes[1]);
  EXPECT_EQ(table.insert_unique_noresize(14, &keys[1], nullptr), nodes[1]) << "the key alone decides";
  EXPECT_EQ(table.firstNode(), nodes[1]);
  EXPECT_EQ(nodes[1]->next, nodes[3]);
  EXPECT_EQ(nodes[3]->next, nodes[0]);
  EXPECT_EQ(nodes[0]->next, nodes[4]);
  EXPECT_EQ(table.count(7, &keys[0]), 3);
  EXPECT_EQ(table.findNode(14, &keys[0]), nullptr) << "the whole hash has to match";

  static const HashTableImpl::TypeUtil counting = Counting::record();
  HashTableImpl copy(&counting);
  table.max_load_factor(0.25F);
  EXPECT_EQ(table.firstNode(), nodes[2]) << "growth turns a chain round";
  copy.copy(&table);
  copy.copy(&copy);
  EXPECT_EQ(copy.max_load_factor(), 0.25F);
  EXPECT_EQ(copy.max_bucket_size(), 5);
  EXPECT_EQ(copy.bucket_size(-1) + copy.bucket_size(copy.bucket_count()), 0);
  EXPECT_EQ(copy.eraseKey(7, &keys[0]), 3);
  EXPECT_EQ(copy.get(7, &keys[1])->next->nextItem(&copy), nullptr);
  EXPECT_EQ(copy.size(), 2);
  table.eraseNode(copy.firstNode());
  EXPECT_EQ(table.size(), 5) << "a foreign node is left alone";
  table.swap(copy);
  Counting::destroyed = 0;
  table.clear();
  EXPECT_EQ(Counting::destroyed, 2) << "the records are exchanged too";
  EXPECT_EQ(table.bucket_count(), 29);
  EXPECT_TRUE(ContainerCheck::isWellFormed(table));
  EXPECT_TRUE(ContainerCheck::isWellFormed(copy));
}

TEST(HashMap, HoldsWhatCanOnlyBeMoved) {
  qv::hash_map<const char*, std::unique_ptr<int>> owners;
  const char* const key = "key";
  EXPECT_TRUE(owners.emplace(key, std::make_unique<int>(1)).second);
  EXPECT_FALSE(owners.emplace(key, std::make_unique<int>(2)).second);
  EXPECT_EQ(*owners[key], 1);
  const auto moved = std::move(owners);
  EXPECT_TRUE(owners.empty());
  EXPECT_EQ(owners.begin(), owners.end());
  EXPECT_EQ(moved.size(), 1);
}

/// Values worked out by another program: every entry of the last round, several rounds, and more words than
/// a table has.
TEST(HashFunction, TakesItsStepsInOrder) {
  const struct {
    int line;
    int length;
    unsigned int counted, terminated, ofWords;
  } rows[] = {
      {__LINE__, 1, 0x12C3C522U, 0x690FF352U, 0x833C6D5DU},
      {__LINE__, 2, 0x6E5BCBE1U, 0xAC8AA0EDU, 0x85B95091U},
      {__LINE__, 3, 0xF75B1E8CU, 0xDAC4C818U, 0xD1E42480U},
      {__LINE__, 4, 0x6EDB8CECU, 0x7704AB02U, 0x9A5E94A3U},
      {__LINE__, 5, 0x656CF4F8U, 0xEFD45441U, 0xA9EE30F6U},
      {__LINE__, 6, 0xC0ABA747U, 0x90E31762U, 0x4C81052FU},
      {__LINE__, 7, 0xD34E0B0BU, 0xCBEC17D9U, 0xC9270091U},
      {__LINE__, 8, 0xF7A835DAU, 0x39ED94BCU, 0x95EE39B3U},
      {__LINE__, 9, 0x01E507A9U, 0xC1AE3A13U, 0x79B82C96U},
      {__LINE__, 10, 0xE633B879U, 0xDB22FF43U, 0x84289268U},
      {__LINE__, 11, 0x7199A7BEU, 0x89582957U, 0x990F3AC0U},
      {__LINE__, 12, 0xC6D6A00EU, 0x293DEA71U, 0x50ED0B5AU},
      {__LINE__, 13, 0x149B277AU, 0x22C47597U, 0x5B9C4314U},
      {__LINE__, 14, 0xCE8509DCU, 0xEFD04620U, 0x98B65AA8U},
      {__LINE__, 15, 0xBC2F8E87U, 0xEFE83D2BU, 0xA87EC6BEU},
      {__LINE__, 30, 0x1996C169U, 0xB40BD3D8U, 0x0026C407U},
      {__LINE__, 301, 0xA86D2AB8U, 0x49876DBFU, 0xB2F1B93CU},
  };
  for (const auto& row : rows) {
    std::string text;
    std::vector<unsigned int> words;
    for (int i = 0; i < row.length; ++i) {
      text.push_back(static_cast<char>((i * 37 + 200) % 255 + 1));
      words.push_back(0x9E3779B9U * static_cast<unsigned int>(i + 1));
    }
    EXPECT_EQ(qv::hashfunction(text.data(), text.data() + row.length), row.counted) << row.line;
    EXPECT_EQ(qv::hashfunction(text.c_str()), row.terminated) << row.line;
    EXPECT_EQ(qv::hashfunction(words.data(), row.length), row.ofWords) << row.line;
  }
}

TEST(HashFunction, TellsTextsApart) {
  qvTest::Random random(11);
  std::set<unsigned int> counted;
  std::set<unsigned int> terminated;
  std::set<unsigned int> ofWords;
  std::string text;
  std::vector<unsigned int> words;
  for (int length = 1; length <= 64; ++length) {
    text.push_back(static_cast<char>(length * 37 % 127 + 1)); // no byte twice: equal ones may trade places
    words.push_back(static_cast<unsigned int>(random.bits()));
    for (std::size_t at = 0; at < text.size(); ++at) { // each byte and word counts, at each length
      const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
      text[at] ^= static_cast<char>(0x80);
      const unsigned int word = words[at];
      words[at] = static_cast<unsigned int>(random.bits());
      EXPECT_TRUE(counted.insert(qv::hashfunction(bytes, length)).second) << length << ' ' << at;
      EXPECT_TRUE(terminated.insert(qv::hashfunction(text.c_str())).second) << length << ' ' << at;
      EXPECT_TRUE(ofWords.insert(qv::hashfunction(words.data(), length)).second) << length << ' ' << at;
      EXPECT_EQ(qv::hashfunction(text.data(), text.data() + length), qv::hashfunction(bytes, length));
      text[at] ^= static_cast<char>(0x80);
      words[at] = word;
    }
  }
  const auto* const abc = reinterpret_cast<const unsigned char*>("abc");
  EXPECT_NE(qv::hashfunction("abc"), qv::hashfunction(abc, 3));
  EXPECT_EQ(qv::hashfunction(""), 0U);
  EXPECT_EQ(qv::hashfunction(abc, 0), 0U);
  EXPECT_EQ(qv::hashfunction(abc, -1), 0U);
  const qv::WChar* const wide = QV_W("wide");
  EXPECT_EQ(qv::hashfunction(wide, 4), qv::hashfunction(reinterpret_cast<const unsigned char*>(wide), 8));
}

} // namespace
