#include "Base/Containers/qvList.h"

#include "Base/Containers/qvPair.h"
#include "qvContainerCheck.h"
#include "testing/qvTestCounted.h"
#include "testing/qvTestSeed.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <ranges>
#include <vector>

namespace {

using qv::detail::ContainerCheck;
using qvTest::Pinned;
using List = qv::list<Pinned>;

static_assert(std::bidirectional_iterator<List::iterator>);
static_assert(std::bidirectional_iterator<List::const_iterator>);
static_assert(std::ranges::bidirectional_range<const List>);
static_assert(qv::detail::listRecord<int*>.nodeSize == 24 &&
              qv::detail::listRecord<int*>.elementOffset == 16);
static_assert(qv::detail::listRecord<qv::pair<int*, int*>>.nodeSize == 32);

std::vector<int> values(const List& list) {
  EXPECT_TRUE(ContainerCheck::isWellFormed(list));
  std::vector<int> result;
  for (const Pinned& element : list) result.push_back(element.value());
  return result;
}

class ListTest : public testing::Test {
protected:
  using Values = std::vector<int>;
  qvTest::NothingLeaks<Pinned> nothingLeaks_;
};

TEST_F(ListTest, UniqueKeepsTheLastOfARun) {
  const struct {
    int line;
    std::vector<int> in;
    std::vector<int> survivors; // places in the list as it was
  } rows[] = {
      {__LINE__, {}, {}},
      {__LINE__, {1}, {0}},
      {__LINE__, {1, 1, 2, 2, 2}, {1, 4}},
      {__LINE__, {1, 2, 1}, {0, 1, 2}},
      {__LINE__, {3, 3}, {1}},
      {__LINE__, {1, 2, 2, 3}, {0, 2, 3}},
  };
  for (const auto& row : rows) {
    List list(row.in.begin(), row.in.end());
    std::vector<const Pinned*> before;
    for (const Pinned& element : list) before.push_back(&element);
    list.unique();
    EXPECT_TRUE(ContainerCheck::isWellFormed(list)) << row.line;
    ASSERT_EQ(list.size(), static_cast<int>(row.survivors.size())) << row.line;
    auto survivor = row.survivors.begin();
    for (const Pinned& element : list)
      EXPECT_EQ(&element, before[static_cast<std::size_t>(*survivor++)]) << row.line;
  }
}

TEST_F(ListTest, SpliceMovesNodesAndCounts) {
  List list{1, 2, 3, 4};
  List other{5, 6, 7, 8};
  const Pinned* const six = &*std::next(other.begin());
  list.splice(std::next(list.begin()), other, std::next(other.begin()));
  EXPECT_EQ(values(list), (Values{1, 6, 2, 3, 4}));
  EXPECT_EQ(&*std::next(list.begin()), six);
  list.splice(list.end(), other, other.begin(), std::next(other.begin()));
  list.splice(list.end(), other, other.begin(), other.begin());
  EXPECT_EQ(values(list), (Values{1, 6, 2, 3, 4, 5}));
  list.splice(list.begin(), other);
  list.splice(list.begin(), other);
  EXPECT_EQ(values(list), (Values{7, 8, 1, 6, 2, 3, 4, 5}));
  EXPECT_EQ(values(other), Values{});
  list.splice(list.begin(), list, std::prev(list.end()));
  list.splice(list.end(), list, std::next(list.begin()), std::next(list.begin(), 3));
  EXPECT_EQ(values(list), (Values{5, 1, 6, 2, 3, 4, 7, 8}));
}

TEST_F(ListTest, SwapAndReverseRepairTheHeader) {
  List full{1, 2};
  List empty;
  const auto one = full.begin();
  const auto endOfEmpty = empty.end();
  swap(full, empty);
  EXPECT_EQ(values(empty), (Values{1, 2}));
  EXPECT_EQ(values(full), Values{});
  EXPECT_EQ(std::next(one, 2), endOfEmpty);
  full.reverse();
  full.swap(full);
  EXPECT_EQ(values(full), Values{});
  empty.reverse();
  empty.swap(empty);
  EXPECT_EQ(values(empty), (Values{2, 1}));
  List third{3};
  third.swap(empty);
  EXPECT_EQ(values(third), (Values{2, 1}));
  EXPECT_EQ(values(empty), Values{3});
}

TEST_F(ListTest, AssignReusesNodes) {
  List list{1, 2, 3};
  const Pinned* const first = &list.front();
  const int pair[] = {8, 9};
  const qvTest::ElementCounts before = Pinned::counts;
  list = List{7};
  list = List{6, 5};
  list.assign(pair, pair + 2);
  EXPECT_EQ(values(list), (Values{8, 9}));
  EXPECT_NE(Pinned::counts.destroyed, before.destroyed);
  List longer{4, 5, 6, 7};
  list.copy(longer);
  list.copy(list);
  EXPECT_EQ(values(list), (Values{4, 5, 6, 7}));
  const Pinned array[] = {1, 2};
  const Pinned* const reused = &list.front();
  list.assign(array, array + 2);
  EXPECT_EQ(&list.front(), reused);
  EXPECT_EQ(values(list), (Values{1, 2}));
  (void)first;
}

TEST_F(ListTest, SortsStablyInPlace) {
  qvTest::Random random(7);
  for (const int size : {0, 1, 2, 3, 7, 8, 100, 1000}) {
    qv::list<qv::pair<int, int>> list;
    std::vector<qv::pair<int, int>> model;
    for (int i = 0; i < size; ++i) model.push_back(list.append({random.between(0, 20), i}));
    const auto byFirst = [](const auto& a, const auto& b) { return a.first < b.first; };
    list.sort(byFirst);
    std::ranges::stable_sort(model, byFirst);
    ASSERT_TRUE(ContainerCheck::isWellFormed(list));
    EXPECT_TRUE(std::ranges::equal(list, model)) << size;
  }
  List odd{1, 3, 3, 5};
  List even{0, 3, 6};
  const Pinned* const three = &*std::next(even.begin());
  odd.merge(even);
  EXPECT_EQ(values(odd), (Values{0, 1, 3, 3, 3, 5, 6}));
  EXPECT_EQ(&*std::next(odd.begin(), 4), three);
  EXPECT_EQ(values(even), Values{});
}

TEST_F(ListTest, KeepsItsElementsWhenAComparisonThrows) {
  List list{5, 3, 8, 1, 9, 2, 7};
  for (int calls = 0; calls < 12; ++calls) {
    int left = calls;
    try {
      list.sort([&left](const Pinned& a, const Pinned& b) {
        if (left-- == 0) throw qvTest::CopyFailed();
        return a.value() > b.value();
      });
    } catch (const qvTest::CopyFailed&) {
    }
    std::vector<int> all = values(list);
    std::ranges::sort(all);
    EXPECT_EQ(all, (Values{1, 2, 3, 5, 7, 8, 9}));
  }
}

TEST_F(ListTest, RemovesFindsAndPrepends) {
  List list{1, 2, 1, 3, 1};
  EXPECT_EQ(list.remove(list.front()), 3);
  EXPECT_EQ(values(list), (Values{2, 3}));
  EXPECT_EQ(list.remove(4), 0);
  list.prepend(List{8, 9});
  list.prepend(List());
  list.push_front(7);
  EXPECT_EQ(list.remove_if([](const Pinned& e) { return e.value() > 8; }), 1);
  EXPECT_EQ(values(list), (Values{7, 8, 2, 3}));
  EXPECT_EQ(list.find(9), list.end());
  EXPECT_EQ(std::next(list.find(8), 2), std::prev(list.end()));
  list.eraseFront();
  list.erase(list.begin(), list.end());
  EXPECT_EQ(values(list), Values{});

  qv::list<std::unique_ptr<int>> owners;
  owners.append(std::make_unique<int>(4));
  const qv::list<std::unique_ptr<int>> moved(std::move(owners));
  EXPECT_EQ(*moved.front(), 4);
  EXPECT_TRUE(owners.empty());
}

/// The core as it is used without the face.
TEST_F(ListTest, CoreTakesFunctionsAndRelinks) {
  using qv::ListImpl;
  ListImpl list(&qv::detail::listRecord<int>);
  const auto make = [](void* element) { *static_cast<int*>(element) = 42; };
  const auto negate = [](void* dst, const void* src) {
    *static_cast<int*>(dst) = -*static_cast<const int*>(src);
  };
  const auto valueOf = [](const ListImpl::Node* node) { return qv::detail::ListElement<int>::of(node); };
  const int numbers[] = {1, 99, 2, 99};
  list.append(make);
  list.prepend(&numbers[0], negate);
  *static_cast<int*>(list.appendAndReturnPtr()) = 5;
  list.insert(list.begin(), &numbers[2]);
  list.insert(list.end(), numbers, numbers + 4, 2 * sizeof(int), negate);
  list.assign(numbers, numbers + 4, 2 * sizeof(int), negate);
  ASSERT_EQ(list.size(), 2);
  EXPECT_EQ(valueOf(list.begin()), -1);
  EXPECT_EQ(valueOf(list.end()->prev), -2);

  ListImpl other(&qv::detail::listRecord<int>);
  ListImpl::sTransferNode(other.end(), list.begin());
  EXPECT_EQ(list.size(), 2) << "the caller keeps the counts";
  --list.getReferenceToSize();
  ++other.size();
  ListImpl::sTransferNodes(list.end(), other.begin(), other.begin());
  EXPECT_TRUE(ContainerCheck::isWellFormed(list));
  EXPECT_TRUE(ContainerCheck::isWellFormed(other));
}

/// The bins of the sort fill one by one then, and must not run over.
TEST_F(ListTest, SortSurvivesAMergeFunctionThatLeavesItsSource) {
  using qv::ListImpl;
  ListImpl list(&qv::detail::listRecord<int>);
  for (int i = 0; i < 100; ++i) list.append(&i);
  list.sort(nullptr, [](ListImpl&, ListImpl&, const void*) {});
  EXPECT_EQ(list.size(), 100);
  EXPECT_TRUE(ContainerCheck::isWellFormed(list));
}

TEST_F(ListTest, CorePutsPointersAtBothEndsAndBetween) {
  using qv::ListImpl;
  ListImpl list(&qv::detail::listRecord<int*>);
  const auto valueOf = [](const ListImpl::Node* node) { return qv::detail::ListElement<int*>::of(node); };
  int x[5] = {};
  list.appendAndAssignPtr(x + 2);
  list.prependAndAssignPtr(x + 1);
  *static_cast<int**>(list.prependAndReturnPtr()) = x;
  qv::detail::ListElement<int*>::of(list.insertAndReturnNode(list.end())) = x + 4;
  EXPECT_EQ(valueOf(list.insertAndAssignPtr(list.end()->prev, x + 3)), x + 3);
  int* expected = x;
  for (const auto* node = list.begin(); node != list.end(); node = node->next)
    EXPECT_EQ(valueOf(node), expected++);
  EXPECT_EQ(list.size(), 5);
  ListImpl::Node* const taken = list.begin()->next;
  EXPECT_EQ(valueOf(list.unlink(taken)), x + 2);
  EXPECT_EQ(valueOf(taken), x + 1);
  EXPECT_EQ(list.size(), 4);
  std::free(taken);
}

} // namespace
