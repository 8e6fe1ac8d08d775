#include "Base/Containers/qvVector.h"

#include "Base/Containers/qvPair.h"
#include "qvContainerCheck.h"
#include "testing/qvTestCounted.h"

#include <iterator>
#include <memory>
#include <ranges>
#include <string>

template <>
inline constexpr bool qv::isRelocatable<std::unique_ptr<int>> = true;

namespace {

using qvTest::Counted;

static_assert(std::contiguous_iterator<qv::vector<int>::iterator>);
static_assert(std::random_access_iterator<qv::vector<Counted>::const_iterator>);
static_assert(std::ranges::contiguous_range<const qv::vector<Counted>>);
static_assert(std::is_nothrow_move_constructible_v<qv::vector<int>>);
static_assert(!qv::isRelocatable<std::string>, "qv::vector<std::string> is refused");
static_assert(!qv::isRelocatable<qv::pair<int, std::string>>);
static_assert(qv::isRelocatable<qv::pair<int, qv::vector<int>>>);

TEST(Vector, GrowsByTheRule) {
  qv::vector<int> vector;
  for (const int capacity : {8, 16, 24, 32, 64, 128}) {
    while (vector.size() < capacity) vector.append(0);
    EXPECT_EQ(vector.capacity(), capacity);
    vector.append(0);
  }
  EXPECT_EQ(vector.capacity(), 256);
  vector.clear();
  EXPECT_EQ(vector.capacity(), 256);

  qv::vector<void*> pointers;
  pointers.reserve(10);
  EXPECT_EQ(pointers.capacity(), 10);
  pointers.setSize(10);
  pointers.append(&pointers);
  EXPECT_EQ(pointers.capacity(), 18);
  EXPECT_EQ(pointers.back(), &pointers);
  EXPECT_EQ(pointers.front(), nullptr);
}

TEST(Vector, TakesExactlyWhatIsAskedFor) {
  const int five[5] = {1, 2, 3, 4, 5};
  qv::vector<int> vector(3, 7);
  const struct {
    int line;
    void (*act)(qv::vector<int>&, const int*);
    int size;
    int capacity;
  } rows[] = {
      {__LINE__, [](auto& v, const int*) { v.setSize(4); }, 4, 4},
      {__LINE__, [](auto& v, const int* f) { v.insert(v.end(), f, f + 5); }, 9, 9},
      {__LINE__, [](auto& v, const int*) { v.insert(v.begin(), 2, 6); }, 11, 11},
      {__LINE__, [](auto& v, const int*) { v.reserve(100); }, 11, 100},
      {__LINE__, [](auto& v, const int* f) { v.assign(f, f + 3); }, 3, 100},
      {__LINE__,
       [](auto& v, const int*) {
         v.append(qv::vector<int>{8, 9});
       },
       5, 5},
      {__LINE__, [](auto& v, const int*) { v.append(v); }, 10, 10},
      {__LINE__, [](auto& v, const int*) { v.setSize(2); }, 2, 10},
      {__LINE__, [](auto& v, const int*) { v.copy(v); }, 2, 10},
      {__LINE__,
       [](auto& v, const int*) {
         v.copy(qv::vector<int>{1, 2, 3});
       },
       3, 3},
      {__LINE__, [](auto& v, const int*) { v.copy(qv::vector<int>()); }, 0, 0},
      {__LINE__, [](auto& v, const int*) { v.append(qv::vector<int>()); }, 0, 0},
      {__LINE__, [](auto& v, const int* f) { v.assign(f, f); }, 0, 0},
  };
  for (const auto& row : rows) {
    row.act(vector, five);
    EXPECT_EQ(vector.size(), row.size) << row.line;
    EXPECT_EQ(vector.capacity(), row.capacity) << row.line;
    EXPECT_EQ(vector.data() == nullptr, row.capacity == 0) << row.line;
  }
}

TEST(Vector, MovesElementsWithoutCallingThem) {
  const qvTest::NothingLeaks<Counted> nothingLeaks;
  qv::vector<Counted> vector;
  vector.setSize(31);
  const qvTest::ElementCounts before = Counted::counts;
  vector.reserve(1000);
  vector.emplace(vector.begin(), 5);
  qv::vector<Counted> other(std::move(vector));
  other.erase(other.begin() + 7);
  EXPECT_EQ(Counted::counts.copied, before.copied);
  EXPECT_EQ(Counted::counts.destroyed, before.destroyed + 1);
  other.append(Counted(3));
  EXPECT_EQ(Counted::counts.copied, before.copied + 1);
}

TEST(Vector, HoldsWhatCanOnlyBeMovedOrHoldsItself) {
  struct Tree {
    int value;
    qv::vector<qv::vector<int>> rows;
  };
  qv::vector<std::unique_ptr<int>> owners;
  for (int i = 0; i < 100; ++i) owners.insert(owners.begin(), std::make_unique<int>(i));
  owners.erase(owners.begin() + 1, owners.end() - 1);
  EXPECT_EQ(*owners[0] - *owners[1], 99);

  Tree tree{1, {{1, 2}, {}, {3}}};
  const Tree copy = tree;
  tree.rows[0][1] = 9;
  EXPECT_EQ(copy.rows[0][1], 2);
  EXPECT_EQ(copy.rows[2].back(), 3);
}

/// The core as it is used without the face: null functions, and elements of another type.
TEST(Vector, CoreTakesFunctions) {
  using qv::VectorImpl;
  static const VectorImpl::TypeUtil& record = qv::detail::vectorRecord<int>;
  const auto make = [](void* element) { *static_cast<int*>(element) = 42; };
  const auto makeRange = [](void* first, int count) { std::fill_n(static_cast<int*>(first), count, 6); };
  const auto negate = [](void* dst, const void* src) {
    *static_cast<int*>(dst) = -*static_cast<const int*>(src);
  };
  VectorImpl raw(4, static_cast<VectorImpl::ConstructRange>(nullptr), &record);
  EXPECT_EQ(raw.capacity(), 4);
  EXPECT_EQ(VectorImpl(0, makeRange, &record).capacity(), 0);

  struct Open : VectorImpl {
    using VectorImpl::data_;
    using VectorImpl::VectorImpl;
    [[nodiscard]] int* at(int index) const { return static_cast<int*>(data_) + index; }
  };
  Open vector(2, makeRange, &record);
  const int seven = 7;
  vector.append(make);
  vector.append(static_cast<VectorImpl::Construct>(nullptr));
  *vector.at(3) = 8;
  vector.append(&seven, negate);
  vector.insert(vector.at(0), &seven, negate);
  vector.insert(vector.at(1), make);
  vector.insert(vector.at(2), &seven);
  const float floats[2] = {1.5F, 2.5F};
  vector.insert(
      vector.at(3), floats, floats + 2,
      [](const void* last, const void* first) -> std::int64_t {
        return static_cast<const float*>(last) - static_cast<const float*>(first);
      },
      [](void* dst, const void* src, int count) {
        std::copy_n(static_cast<const float*>(src), count, static_cast<int*>(dst));
      });
  const int expected[] = {-7, 42, 7, 1, 2, 6, 6, 42, 8, -7};
  ASSERT_EQ(vector.size(), 10);
  EXPECT_TRUE(std::equal(expected, expected + 10, vector.at(0)));
  vector.assign(&seven, &seven + 1, record.distance, [](void* dst, const void* src, int) {
    *static_cast<int*>(dst) = *static_cast<const int*>(src) + 1;
  });
  EXPECT_EQ(vector.size(), 1);
  EXPECT_EQ(vector.capacity(), 10);
  EXPECT_EQ(*vector.at(0), 8);
}

TEST(Vector, CorePutsPointersWithoutCalls) {
  qv::VectorImpl::TypeUtil silent = qv::VectorImpl::sPointerTypeUtil;
  silent.copyConstruct = nullptr;
  struct Open : qv::VectorImpl {
    using VectorImpl::data_;
    using VectorImpl::growByOneAndAssignPtr;
    using VectorImpl::setCapacity;
    using VectorImpl::size_;
    using VectorImpl::VectorImpl;
    [[nodiscard]] void*& at(int index) const { return static_cast<void**>(data_)[index]; }
  };
  Open vector(&silent);
  char x[40] = {};
  for (int i = 2; i < 34; ++i) vector.appendAndAssignPtr(x + i);
  EXPECT_EQ(vector.capacity(), 32);
  ++vector.size_;
  vector.growByOneAndAssignPtr(x + 34);
  EXPECT_EQ(vector.capacity(), 64);
  EXPECT_EQ(vector.insertAndAssignPtr(&vector.at(0), x), &vector.at(0));
  EXPECT_EQ(vector.insertAndAssignPtr(&vector.at(1), x + 1), &vector.at(1));
  for (int i = 0; i < 35; ++i) EXPECT_EQ(vector.at(i), x + i);
  vector.setCapacity(0);
  EXPECT_EQ(vector.data_, nullptr);
  EXPECT_EQ(vector.size(), 35) << "the size is left alone";
}

#if GTEST_HAS_DEATH_TEST
TEST(VectorDeathTest, EndsTheProcessBeforeASizeWraps) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  struct Wide {
    char bytes[65536];
  };
  EXPECT_DEATH(qv::vector<Wide>().reserve(65536), "");
  EXPECT_DEATH(qv::vector<void*>().reserve(INT32_MAX), "");
}
#endif

TEST(Pair, ConvertsComparesAndTakesApart) {
  using Result = qv::pair<std::string, long>;
  const Result result = qv::pair<const char*, int>("text", 5);
  const auto& [text, number] = result;
  EXPECT_EQ(text, "text");
  EXPECT_EQ(number, 5);
  EXPECT_EQ(qv::make_pair(std::string("text"), 5L), result);
  EXPECT_LT(result, Result("text", 6));
  EXPECT_LT(Result("s", 9), result);
  EXPECT_GE(result, result);
  const auto moved = [](qv::pair<std::unique_ptr<int>, int> owner) { return owner; }({nullptr, 3});
  EXPECT_EQ(moved.second, 3);
  EXPECT_EQ((qv::pair<int, int>()), qv::pair(0, 0));
}

} // namespace
