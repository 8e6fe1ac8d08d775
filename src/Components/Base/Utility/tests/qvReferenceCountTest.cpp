#include "Base/Utility/qvReferenceCount.h"

#include "Base/Utility/qvImplBase.h"

#include <gtest/gtest.h>

namespace {

int alive = 0;

class Shared : public qv::ReferenceCount {
public:
  Shared() { ++alive; }
  Shared(const Shared& other) : ReferenceCount(other) { ++alive; }
  Shared& operator=(const Shared&) = default;
  qv::Reference<Shared> next;

protected:
  ~Shared() override { --alive; }
};

class Derived : public Shared {};

class Impl : public qv::ImplBase {
public:
  Impl() { ++alive; }
  ~Impl() override { --alive; }
  int value = 5;
};

} // namespace

TEST(ReferenceCount, CountsHoldersAndDeletesAtZero) {
  alive = 0;
  const Shared* const object = new Shared;
  EXPECT_EQ(object->refs(), 0);
  object->ref();
  object->ref();
  object->unref();
  EXPECT_EQ(object->refs(), 1);
  EXPECT_EQ(alive, 1);
  object->unref();
  EXPECT_EQ(alive, 0);
}

TEST(ReferenceCount, BelowZeroDeletesNothing) {
  Shared* const object = new Shared;
  object->unref();
  EXPECT_EQ(object->refs(), -1);
  EXPECT_EQ(alive, 1);
  object->ref();
  object->ref();
  object->unref();
  EXPECT_EQ(alive, 0);
}

TEST(ReferenceCount, IsNeverCopied) {
  const qv::Reference<Shared> a(new Shared), b(new Shared), also(b);
  const qv::Reference<Shared> copy(new Shared(*b));
  EXPECT_EQ(copy->refs(), 1);
  *a = *b;
  EXPECT_EQ(a->refs(), 1);
  EXPECT_EQ(b->refs(), 2);
}

TEST(Reference, HoldsThroughEveryAssignment) {
  alive = 0;
  static_assert(sizeof(qv::Reference<Shared>) == sizeof(void*));
  {
    qv::Reference<Shared> a(new Derived);
    EXPECT_EQ(a->refs(), 1);
    a = *&a;
    EXPECT_EQ(a->refs(), 1);
    a = a.get();
    EXPECT_EQ(a->refs(), 1);
    qv::Reference<Shared> moved(std::move(a));
    EXPECT_EQ(moved->refs(), 1);
    EXPECT_EQ(a, nullptr); // NOLINT: what a move leaves is told
    const qv::Reference<const Shared> shared(moved);
    EXPECT_EQ(shared, moved);
    EXPECT_EQ(moved->refs(), 2);
    moved = nullptr;
    EXPECT_FALSE(moved);
    EXPECT_EQ(alive, 1);
  }
  EXPECT_EQ(alive, 0);
}

TEST(Reference, TakesTheTailOfWhatItHolds) {
  alive = 0;
  qv::Reference<Shared> head(new Shared);
  head->next = new Shared;
  head->next->next = new Shared;
  head = head->next;
  EXPECT_EQ(alive, 2);
  EXPECT_EQ(head->refs(), 1);
  head.reset();
  EXPECT_EQ(alive, 0);
}

TEST(ImplHandle, OnlyTheFirstHandleOwns) {
  alive = 0;
  {
    qv::ImplHandle owner(new Impl);
    {
      qv::ImplHandle copy(owner);
      EXPECT_EQ(copy.as<Impl>().value, 5);
      EXPECT_FALSE(copy.isOwner());
      copy = owner;
      owner = copy; // the same object: stays the owner
    }
    EXPECT_EQ(alive, 1);
    qv::ImplHandle other(new Impl);
    other = owner;
    EXPECT_EQ(alive, 1);
    EXPECT_FALSE(other.isOwner());
  }
  EXPECT_EQ(alive, 0);
  const qv::ImplHandle none(nullptr);
  EXPECT_EQ(none.get(), nullptr);
}
