#include "Base/String/qvStringIntern.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using namespace qvString;

namespace {

std::mutex tableMutex;
int lockCalls = 0;

void lock() {
  tableMutex.lock();
  ++lockCalls;
}
void unlock() { tableMutex.unlock(); }
void increment(int& count) { std::atomic_ref<int>(count).fetch_add(1); }
int decrement(int& count) { return std::atomic_ref<int>(count).fetch_sub(1) - 1; }

class Intern : public testing::Test {
protected:
  void SetUp() override { deleteStringTables(); }
  void TearDown() override {
    deleteStringTables();
    sharedStringThreading(nullptr, nullptr, nullptr, nullptr);
  }
};

TEST_F(Intern, OneRecordForEachText) {
  EXPECT_EQ(numInternedCStrings(), 0);
  const ConstantCString a = intern("text");
  EXPECT_EQ(a, intern(CString("text")));
  EXPECT_FALSE(a == intern("other"));
  EXPECT_EQ(numInternedCStrings(), 2);
  EXPECT_TRUE(a.string() == CString("text"));
  EXPECT_TRUE(a.record()->constant && a.record()->refs == 0);
  EXPECT_TRUE(ConstantCString().isNull() && !a.isNull());
  const ConstantIString wide = intern(QV_W("text"));
  EXPECT_EQ(wide, intern(IString(QV_W("text"))));
  EXPECT_EQ(numInternedIStrings(), 1);
  EXPECT_EQ(intern(static_cast<const char*>(nullptr)), intern(""));
  // A wide text ends at its first NUL, as every copy of one does; bytes are counted.
  EXPECT_EQ(intern(IString(QV_W("text\0more"), 9)), wide);
  EXPECT_FALSE(intern(CString("text\0more", 9)) == a);
}

TEST_F(Intern, RecordsStayWhereTheyAre) {
  std::vector<ConstantCString> handles;
  for (int i = 0; i < 2000; ++i) handles.push_back(intern(std::to_string(i).c_str()));
  for (int i = 0; i < 2000; ++i) {
    EXPECT_EQ(intern(std::to_string(i).c_str()), handles[static_cast<std::size_t>(i)]);
    EXPECT_TRUE(handles[static_cast<std::size_t>(i)].string() == CString(std::to_string(i).c_str()));
  }
  EXPECT_EQ(numInternedCStrings(), 2000);
}

TEST_F(Intern, DynamicTextGoesWithItsLastHandle) {
  {
    DynamicIString a = intern_dynamic(QV_W("x"));
    EXPECT_EQ(a.record()->refs, 1);
    DynamicIString b = a;
    const DynamicIString c = intern_dynamic(IString(QV_W("x")));
    EXPECT_EQ(a, c);
    EXPECT_EQ(a.record()->refs, 3);
    a = DynamicIString();
    b = std::move(b);
    EXPECT_EQ(c.record()->refs, 2);
    EXPECT_EQ(numInternedIStrings(), 1);
  }
  EXPECT_EQ(numInternedIStrings(), 0);
  {
    const DynamicIString again = intern_dynamic(QV_W("x"));
    EXPECT_TRUE(again.string() == IString(QV_W("x")));
  }
  EXPECT_EQ(numInternedIStrings(), 0);
  {
    const DynamicIString kept = intern_dynamic(QV_W("x"));
    EXPECT_EQ(kept.record(), intern(QV_W("x")).record());
  }
  EXPECT_EQ(numInternedIStrings(), 1);
  increaseStringRef(static_cast<InternalString<CString>*>(nullptr));
  decreaseStringRef(static_cast<InternalString<IString>*>(nullptr));
}

TEST_F(Intern, TextInternedWhileItsLastHandleGoesStays) {
  sharedStringThreading(nullptr, nullptr, increment, [](int& count) {
    const int left = decrement(count);
    EXPECT_TRUE(intern("x").record()->constant);
    return left;
  });
  EXPECT_TRUE(intern_dynamic("x").string() == CString("x"));
  EXPECT_EQ(numInternedCStrings(), 1);
}

/// Many threads make, copy and drop handles of few texts, so that records come and go all the time.
TEST_F(Intern, HooksMakeItSafeBetweenThreads) {
  lockCalls = 0;
  sharedStringThreading(lock, unlock, increment, decrement);
  std::vector<std::thread> threads;
  std::atomic<int> wrong = 0;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 20000; ++i) {
        const CString text(std::to_string(i % 3).c_str());
        const DynamicCString handle = intern_dynamic(text);
        const DynamicCString copy = handle;
        if (!(copy.string() == text)) ++wrong;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_GE(lockCalls, 80000);
  EXPECT_EQ(numInternedCStrings(), 0);
}

} // namespace
