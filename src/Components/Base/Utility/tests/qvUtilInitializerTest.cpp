#include "Base/Utility/qvUtilInitializer.h"

#include "Base/Utility/qvUtilUnitTest.h"
#include "testing/qvTestStrings.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using qvUtil::Error;
using qvUtil::Initializer;

namespace {

std::string events;

class Unit : public Initializer {
public:
  explicit Unit(char name, Error result = Error()) : name_(name), result_(std::move(result)) {}
  Error initialize() override {
    events += name_;
    return result_;
  }
  void after(Unit& other) { dependsOn(&other); }

protected:
  void finalize() override { (events += '-') += name_; }

private:
  char name_;
  Error result_;
};

/// Begins with nothing registered and nothing to finalise. Units do not outlive a test, so each test calls
/// `end` itself.
class InitializerTest : public testing::Test {
protected:
  InitializerTest() { drain(); }
  static void drain() {
    static_cast<void>(Initializer::initializeAll());
    Initializer::finalizeAll();
    events.clear();
  }
  static std::string run() {
    events.clear();
    EXPECT_EQ(Initializer::initializeAll(), Error());
    return std::exchange(events, "");
  }
  static std::string end() {
    events.clear();
    Initializer::finalizeAll();
    return std::exchange(events, "");
  }
};

} // namespace

TEST_F(InitializerTest, NothingRegisteredIsSuccess) {
  Initializer::finalizeAll();
  EXPECT_EQ(run(), "");
  EXPECT_EQ(end(), "");
}

TEST_F(InitializerTest, UnitsRunInOrderAndEndInReverse) {
  Unit a('a'), b('b');
  EXPECT_EQ(run(), "ab");
  EXPECT_EQ(a.getCount(), 0);
  Unit c('c');
  const Unit copy(c); // a copy is not registered
  EXPECT_EQ(run(), "c");
  EXPECT_EQ(run(), "");
  EXPECT_EQ(end(), "-c-b-a");
  EXPECT_EQ(end(), "");
}

TEST_F(InitializerTest, ThirtyTwoUnitsKeepTheirOrder) {
  std::vector<std::unique_ptr<Unit>> units;
  std::string expected;
  for (char name = 'A'; name < 'A' + 32; ++name) {
    units.push_back(std::make_unique<Unit>(name));
    expected += name;
  }
  EXPECT_EQ(run(), expected);
  EXPECT_EQ(end().size(), 2 * expected.size());
}

TEST_F(InitializerTest, DependenciesRunFirstAndCountPaths) {
  Unit a('a'), b('b'), c('c'), d('d');
  a.after(b);
  a.after(c);
  b.after(d);
  c.after(d);
  EXPECT_EQ(run(), "dbca");
  EXPECT_EQ(a.getCount(), 1);
  EXPECT_EQ(b.getCount(), 2);
  EXPECT_EQ(c.getCount(), 2);
  EXPECT_EQ(d.getCount(), 5); // itself, from b and c themselves, and twice from a
  EXPECT_EQ(end(), "-a-c-b-d");
}

TEST_F(InitializerTest, DependencyOfAnEarlierBatchIsCountedButNotRunAgain) {
  Unit a('a');
  EXPECT_EQ(run(), "a");
  Unit b('b'), c('c');
  c.after(a);
  EXPECT_EQ(run(), "bc");
  EXPECT_EQ(a.getCount(), 1);
  EXPECT_EQ(b.getCount(), 1);
  EXPECT_EQ(end(), "-c-b-a");
}

TEST_F(InitializerTest, LastFailureIsReportedAndEveryUnitIsFinalised) {
  Unit a('a', Error(1, "a failed")), b('b', Error(2, "b failed")), c('c');
  EXPECT_EQ(Initializer::initializeAll(), Error(2, "b failed"));
  EXPECT_EQ(events, "abc");
  EXPECT_EQ(end(), "-c-b-a");
}

TEST_F(InitializerTest, UnitThatRegistersDuringARunWaitsForTheNext) {
  std::unique_ptr<Unit> late;
  struct Loader : Unit {
    explicit Loader(std::unique_ptr<Unit>& unit) : Unit('l'), unit_(unit) {}
    Error initialize() override {
      unit_ = std::make_unique<Unit>('x');
      return Unit::initialize();
    }
    std::unique_ptr<Unit>& unit_;
  } loader(late);
  Unit a('a');
  EXPECT_EQ(run(), "la");
  EXPECT_EQ(run(), "x");
  EXPECT_EQ(end(), "-x-a-l");
}

TEST(UnitTestFlag, StaysSet) {
  setThisIsAUnitTest();
  EXPECT_TRUE(isThisAUnitTest());
  setThisIsAUnitTest();
  EXPECT_TRUE(isThisAUnitTest());
}
