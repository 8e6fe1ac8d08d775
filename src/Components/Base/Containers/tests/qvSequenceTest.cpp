// Thousands of random operations on vectors and lists of several element types, beside a model from the
// standard library. The structure is walked after each.
#include "Base/Containers/qvList.h"
#include "Base/Containers/qvVector.h"
#include "qvContainerCheck.h"
#include "testing/qvTestCounted.h"
#include "testing/qvTestSeed.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <list>
#include <vector>

namespace {

using qv::detail::ContainerCheck;

template <class Container>
class Sequence : public testing::Test {
protected:
  using T = typename Container::value_type;

  static T element(int value) {
    if constexpr (std::is_pointer_v<T>)
      return texts + value;
    else
      return T(value);
  }
  auto at(int index) { return std::next(tested_.begin(), index); }
  auto modelAt(int index) { return std::next(model_.begin(), index); }
  [[nodiscard]] int size() const { return static_cast<int>(model_.size()); }

  void expectSame(const Container& container) {
    ASSERT_TRUE(ContainerCheck::isWellFormed(container));
    ASSERT_EQ(container.size(), size());
    ASSERT_TRUE(std::equal(container.begin(), container.end(), model_.begin(),
                           [](const T& a, int b) { return a == element(b); }));
    ASSERT_TRUE(std::equal(container.rbegin(), container.rend(), model_.rbegin(),
                           [](const T& a, int b) { return a == element(b); }));
  }

  qvTest::NothingLeaks<qvTest::Counted> counted_;
  qvTest::NothingLeaks<qvTest::Pinned> pinned_;
  static inline char texts[100];
  qvTest::Random random_{20240611};
  Container tested_;
  std::vector<int> model_;
};

using Containers =
    testing::Types<qv::vector<qvTest::Counted>, qv::vector<char>, qv::vector<std::int64_t>, qv::vector<char*>,
                   qv::list<qvTest::Pinned>, qv::list<int>, qv::list<char*>>;
TYPED_TEST_SUITE(Sequence, Containers);

TYPED_TEST(Sequence, BehavesAsTheModel) {
  using Value = typename TypeParam::value_type;
  int value = 0;
  int place = 0;
  int upTo = 0;
  std::vector<int> numbers;
  std::list<Value> some;
  const auto insertNumbers = [&](int index) {
    this->model_.insert(this->modelAt(index), numbers.begin(), numbers.end());
  };
  const std::function<void()> operations[] = {
      [&] { this->tested_.append(this->element(value)), this->model_.push_back(value); },
      [&] {
        EXPECT_EQ(*this->tested_.insert(this->at(place), this->element(value)), this->element(value));
        this->model_.insert(this->modelAt(place), value);
      },
      [&] {
        if (this->model_.empty()) return;
        const int last = this->model_.back();
        this->tested_.insert(this->at(place), this->tested_.back()); // an element of the container itself
        this->model_.insert(this->modelAt(place), last);
        this->tested_.append(this->tested_.front());
        this->model_.push_back(int(this->model_.front()));
      },
      [&] {
        const auto first = this->tested_.insert(this->at(place), some.begin(), some.end());
        EXPECT_EQ(std::distance(this->tested_.begin(), first), place);
        insertNumbers(place);
      },
      [&] {
        const TypeParam other(some.begin(), some.end());
        this->tested_.insert(this->at(place), other.begin(), other.end());
        insertNumbers(place);
        this->tested_.append(other);
        insertNumbers(this->size());
      },
      [&] {
        if (this->size() > 300) return;
        numbers = this->model_;
        this->tested_.append(this->tested_);
        insertNumbers(this->size());
      },
      [&] {
        if (place == this->size()) return;
        const auto following = this->tested_.erase(this->at(place));
        EXPECT_EQ(std::distance(this->tested_.begin(), following), place);
        this->model_.erase(this->modelAt(place));
      },
      [&] {
        const auto following = this->tested_.erase(this->at(place), this->at(upTo));
        EXPECT_EQ(std::distance(this->tested_.begin(), following), place);
        this->model_.erase(this->modelAt(place), this->modelAt(upTo));
      },
      [&] {
        if (!this->model_.empty()) this->tested_.eraseBack(), this->model_.pop_back();
      },
      [&] {
        TypeParam copy(this->tested_);
        EXPECT_EQ(copy, this->tested_);
        copy.append(this->element(value));
        EXPECT_TRUE(this->tested_ < copy);
        swap(copy, this->tested_);
        this->tested_ = copy;
        EXPECT_EQ(copy, this->tested_);
        this->tested_ = std::move(copy);
        EXPECT_TRUE(copy.empty());
      },
      [&] {
        if (!this->random_.oneIn(10)) return;
        this->tested_.assign(some.begin(), some.end());
        this->model_ = numbers;
      },
      [&] {
        if (this->random_.oneIn(10)) this->tested_.clear(), this->model_.clear();
        EXPECT_EQ(this->tested_.contains(this->element(value)),
                  std::count(this->model_.begin(), this->model_.end(), value) > 0);
      },
  };
  for (int step = 0; step < 6000; ++step) {
    value = this->random_.between(0, 99);
    place = this->random_.between(0, this->size());
    upTo = this->random_.between(place, std::min(place + 9, this->size()));
    numbers.assign(this->random_.below(7), value);
    some.clear();
    for (const int number : numbers) some.push_back(this->element(number));
    operations[this->random_.below(std::size(operations))]();
    if (this->size() > 500) this->tested_.erase(this->at(5), this->tested_.end()), this->model_.resize(5);
    ASSERT_NO_FATAL_FAILURE(this->expectSame(this->tested_)) << "step " << step;
  }
}

/// Whichever copy throws, every element is destroyed once.
TYPED_TEST(Sequence, SurvivesACopyThatThrows) {
  using Value = typename TypeParam::value_type;
  if constexpr (std::is_class_v<Value>) {
    const qvTest::NothingLeaks<Value> nothingLeaks;
    const TypeParam source{1, 2, 3, 4, 5};
    const std::function<void(TypeParam&)> operations[] = {
        [&](TypeParam& c) { c.append(source.front()); },
        [&](TypeParam& c) { c.append(source); },
        [&](TypeParam& c) { c.insert(std::next(c.begin()), source.front()); },
        [&](TypeParam& c) { c.insert(std::next(c.begin()), source.begin(), source.end()); },
        [&](TypeParam& c) { c.assign(source.begin(), source.end()); },
        [&](TypeParam& c) { c.copy(source); },
        [&](TypeParam& c) { TypeParam(source).swap(c); },
    };
    for (const auto& operation : operations) {
      bool done = false;
      for (int copies = 0; !done && copies < 20; ++copies) {
        TypeParam container(source.begin(), std::next(source.begin(), 3));
        try {
          Value::counts.copiesUntilThrow = copies;
          operation(container);
          done = true;
        } catch (const qvTest::CopyFailed&) {
        }
        Value::counts.copiesUntilThrow = -1;
        EXPECT_TRUE(ContainerCheck::isWellFormed(container));
        for (const Value& element : container) EXPECT_TRUE(element.value() >= 1 && element.value() <= 5);
      }
      EXPECT_TRUE(done);
    }
  }
}

} // namespace
