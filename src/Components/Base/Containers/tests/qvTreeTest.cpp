#include "Base/Containers/qvMap.h"
#include "Base/Containers/qvSet.h"
#include "qvContainerCheck.h"
#include "testing/qvTestCounted.h"
#include "testing/qvTestSeed.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <ranges>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using qv::RBTreeImpl;
using qv::detail::ContainerCheck;
using qvTest::Pinned;

static_assert(std::bidirectional_iterator<qv::set<int>::iterator>);
static_assert(std::bidirectional_iterator<qv::map<int, std::string>::const_iterator>);
static_assert(std::ranges::bidirectional_range<const qv::multimap<int, int>>);
static_assert(std::is_same_v<std::ranges::range_reference_t<qv::set<int>>, const int&>);
static_assert(qv::detail::treeRecord<int, void, qv::less<int>>.nodeSize == 32, "a small key costs nothing");

/// A tested container beside its model. Map values tell in which order equal keys came.
template <class Tested, class Model>
struct Both {
  using TestedContainer = Tested;
  using ModelContainer = Model;
};

template <class Pair>
class Ordered : public testing::Test {
protected:
  using Tested = typename Pair::TestedContainer;
  using Model = typename Pair::ModelContainer;
  static constexpr bool isMap = !std::is_same_v<typename Tested::key_type, typename Tested::value_type>;

  static auto element(int key, [[maybe_unused]] int value) {
    if constexpr (isMap)
      return typename Tested::value_type(key, value);
    else
      return typename Tested::value_type(key);
  }
  static auto modelElement(int key, [[maybe_unused]] int value) {
    if constexpr (isMap)
      return typename Model::value_type(key, value);
    else
      return key;
  }
  static bool same(const typename Tested::value_type& a, const typename Model::value_type& b) {
    if constexpr (isMap)
      return a.first == b.first && a.second == b.second;
    else
      return a == b;
  }
  static bool same(const Tested& a, const Model& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](auto& x, auto& y) { return same(x, y); });
  }
  auto distance(typename Tested::iterator place) { return std::distance(tested_.begin(), place); }
  auto distance(typename Model::iterator place) { return std::distance(model_.begin(), place); }

  qvTest::NothingLeaks<Pinned> nothingLeaks_;
  qvTest::Random random_{77};
  Tested tested_;
  Model model_;
};

using OrderedContainers =
    testing::Types<Both<qv::set<int>, std::set<int>>, Both<qv::multiset<Pinned>, std::multiset<int>>,
                   Both<qv::map<int, Pinned>, std::map<int, int>>,
                   Both<qv::map<Pinned, int>, std::map<int, int>>,
                   Both<qv::multimap<int, int>, std::multimap<int, int>>>;
TYPED_TEST_SUITE(Ordered, OrderedContainers);

TYPED_TEST(Ordered, BehavesAsTheModel) {
  auto& tested = this->tested_;
  auto& model = this->model_;
  int key = 0;
  int step = 0;
  const std::function<void()> operations[] = {
      [&] { tested.insert(this->element(key, step)), model.insert(this->modelElement(key, step)); },
      [&] {
        const auto element = this->element(key, step);
        tested.insert(element), model.insert(this->modelElement(key, step));
      },
      [&] {
        // A hint is only a hint: right ones and wrong ones give the same container.
        const auto hint = this->random_.oneIn(2) ? tested.upperBound(key) : tested.lowerBound(key + 9);
        tested.insert(hint, this->element(key, step)), model.insert(this->modelElement(key, step));
      },
      [&] { EXPECT_EQ(tested.erase(key), static_cast<int>(model.erase(key))); },
      [&] {
        const auto place = tested.find(key);
        const auto modelPlace = model.lower_bound(key);
        if (place == tested.end()) return;
        EXPECT_EQ(this->distance(tested.erase(place)), this->distance(model.erase(modelPlace)));
      },
      [&] {
        if (!this->random_.oneIn(8)) return;
        const auto last = tested.erase(tested.lowerBound(key), tested.upperBound(key + 10));
        const auto modelLast = model.erase(model.lower_bound(key), model.upper_bound(key + 10));
        EXPECT_EQ(this->distance(last), this->distance(modelLast));
      },
      [&] {
        auto copy(tested);
        EXPECT_TRUE(copy == tested);
        copy.erase(key);
        swap(copy, tested);
        EXPECT_TRUE(ContainerCheck::isWellFormed(copy));
        tested = std::move(copy);
      },
      [&] {
        EXPECT_EQ(tested.count(key), static_cast<int>(model.count(key)));
        EXPECT_EQ(tested.contains(key), model.count(key) > 0);
        EXPECT_EQ(this->distance(tested.lowerBound(key)), this->distance(model.lower_bound(key)));
        EXPECT_EQ(this->distance(tested.equalRange(key).second), this->distance(model.upper_bound(key)));
        if (this->random_.oneIn(50)) tested.clear(), model.clear();
      },
  };
  for (; step < 8000; ++step) {
    key = this->random_.between(0, step % 2000 < 1000 ? 60 : 2000);
    const bool grow = this->random_.oneIn(3);
    operations[grow ? 0 : this->random_.below(std::size(operations))]();
    ASSERT_TRUE(ContainerCheck::isWellFormed(tested)) << "step " << step;
    ASSERT_TRUE(this->same(tested, model)) << "step " << step;
  }
}

TEST(Map, IndexesMovesAndKeepsWhatIsThere) {
  qv::map<std::string, std::unique_ptr<int>> owners;
  EXPECT_EQ(owners["a"], nullptr);
  EXPECT_TRUE(owners.emplace("b", std::make_unique<int>(2)).second);
  EXPECT_FALSE(owners.emplace("b", std::make_unique<int>(3)).second);
  EXPECT_EQ(*owners["b"], 2);
  EXPECT_FALSE(owners.insert_or_assign("b", std::make_unique<int>(4)).second);
  EXPECT_EQ(*owners.find("b")->second, 4);

  qv::map<int, int> map{{3, 1}, {1, 2}, {3, 5}};
  EXPECT_EQ(map.size(), 2);
  EXPECT_EQ(map[3], 1) << "a present key keeps its value";
  EXPECT_EQ(map[7], 0);
  EXPECT_EQ(map.erase(map.begin()->first), 1);
  for (auto& [key, value] : map) value = key;
  EXPECT_EQ(map, (qv::map<int, int>{{3, 3}, {7, 7}}));
  const qv::map<int, int> moved(std::move(map));
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(map.begin(), map.end());
  EXPECT_EQ(moved.rbegin()->second, 7);
}

/// A record whose searches are counted.
struct Counting {
  static inline int searches = 0;
  static bool find(RBTreeImpl* tree, const void* key, RBTreeImpl::Node** parent) {
    ++searches;
    return qv::detail::TreeRecord<int, int, qv::less<int>>::findInsertPosition(tree, key, parent);
  }
  static RBTreeImpl::TypeUtil record() {
    RBTreeImpl::TypeUtil result = qv::detail::treeRecord<int, int, qv::less<int>>;
    result.findInsertPosition = &find;
    return result;
  }
};

TEST(RBTreeImpl, TakesAnOrderedFeedWithoutASearch) {
  const RBTreeImpl::TypeUtil record = Counting::record();
  RBTreeImpl tree(&record);
  RBTreeImpl::Node* hint = tree.end();
  for (int key = 0; key < 1000; ++key) hint = tree.insertNodeUnique(hint, &key, &key)->next();
  for (int key = -1; key > -1000; --key) hint = tree.insertNodeUnique(tree.begin(), &key);
  for (int key = 0; key < 1000; ++key) hint = tree.insertNodeNonUnique(hint, &key)->next();
  EXPECT_LE(Counting::searches, 2) << "only the first one, and the one after the feed turned";
  EXPECT_EQ(tree.size(), 2999);
  EXPECT_TRUE(ContainerCheck::isWellFormed(tree));
}

TEST(RBTreeImpl, FindsCopiesAndSwaps) {
  const RBTreeImpl::TypeUtil& record = qv::detail::treeRecord<int, int, qv::less<int>>;
  RBTreeImpl tree(&record);
  const int keys[] = {5, 1, 3, 3};
  EXPECT_EQ(tree.findNode(&keys[0]), tree.end());
  EXPECT_EQ(tree.count(&keys[0]), 0);
  for (const int& key : keys) tree.insertNodeNonUnique(&key, &key);
  EXPECT_EQ(tree.count(&keys[2]), 2);
  EXPECT_EQ(tree.equalRange(&keys[2]).second, tree.findNode(&keys[0]));
  EXPECT_EQ(*static_cast<int*>(tree.getValuePtr(&keys[0])), 5);
  RBTreeImpl::Node* const one = tree.begin();
  RBTreeImpl copy(tree);
  tree.eraseNodesMatching(&keys[2]);
  EXPECT_EQ(copy.size(), 4);

  static const RBTreeImpl::TypeUtil counting = Counting::record();
  RBTreeImpl empty(&counting);
  empty.swap(tree);
  tree.swap(tree);
  copy.copy(copy);
  EXPECT_EQ(empty.begin(), one) << "nodes keep their addresses";
  EXPECT_EQ(one->next()->next(), empty.end());
  EXPECT_EQ(tree.begin(), tree.end());
  Counting::searches = 0;
  tree.insertNodeUnique(&keys[0]);
  EXPECT_EQ(Counting::searches, 1) << "the records are exchanged too";
  for (const RBTreeImpl* each : {&tree, &copy, &empty}) EXPECT_TRUE(ContainerCheck::isWellFormed(*each));

  alignas(RBTreeImpl) unsigned char memory[sizeof(RBTreeImpl)];
  auto* const raw = reinterpret_cast<RBTreeImpl*>(memory);
  raw->initialize(copy);
  EXPECT_EQ(raw->size(), 4);
  EXPECT_TRUE(ContainerCheck::isWellFormed(*raw));
  std::destroy_at(raw);
  raw->initialize(&record);
  EXPECT_EQ(raw->findNode(&keys[0]), raw->end());
  EXPECT_TRUE(ContainerCheck::isWellFormed(*raw));
  std::destroy_at(raw);

  // What a cleared tree held is used again, before there is a new block.
  const int blocks = ContainerCheck::numBlocks(ContainerCheck::allocator(copy));
  copy.clear();
  copy.copy(empty);
  EXPECT_EQ(ContainerCheck::numBlocks(ContainerCheck::allocator(copy)), blocks);
}

TEST(BlockAllocator, ReusesAndHoldsItsBlocks) {
  qv::BlockAllocator pool(4, 3);
  EXPECT_EQ(ContainerCheck::elementSize(pool), 8U);
  std::vector<void*> elements;
  pool.setNumElementsInBlock(5);
  for (int i = 0; i < 11; ++i) elements.push_back(pool.alloc());
  EXPECT_EQ(ContainerCheck::numBlocks(pool), 3);
  pool.free(nullptr);
  pool.free(elements[3]);
  pool.free(elements[8]);
  EXPECT_EQ(pool.numAllocated(), 9);
  EXPECT_EQ(pool.numFreed(), 2);
  EXPECT_TRUE(ContainerCheck::isWellFormed(pool));
  EXPECT_EQ(pool.alloc(), elements[8]) << "the last one freed comes first";
  EXPECT_EQ(pool.alloc(), elements[3]);
  for (void* element : elements) pool.free(element);
  pool.setNumElementsInBlock(1000);
  EXPECT_EQ(ContainerCheck::numBlocks(pool), 3);
  for (int i = 0; i < 16; ++i) elements.push_back(pool.alloc());
  EXPECT_EQ(ContainerCheck::numBlocks(pool), 4) << "the number of elements changes only in an unused pool";
  qv::BlockAllocator other(24, 1);
  other.swap(pool);
  EXPECT_EQ(pool.numAllocated() + pool.numFreed(), 0);
  EXPECT_TRUE(ContainerCheck::isWellFormed(other));
  other.freeEverything();
  EXPECT_EQ(ContainerCheck::numBlocks(other), 0);
  EXPECT_EQ(other.numAllocated() + other.numFreed(), 0);
  EXPECT_NE(qv::BlockAllocator(12, 0).alloc(), nullptr);
}

} // namespace
