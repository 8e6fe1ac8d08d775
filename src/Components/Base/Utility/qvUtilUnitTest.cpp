#include "Base/Utility/qvUtilUnitTest.h"

#include <atomic>

static std::atomic<bool> thisIsAUnitTest{false};

void setThisIsAUnitTest() { thisIsAUnitTest.store(true, std::memory_order_relaxed); }

bool isThisAUnitTest() { return thisIsAUnitTest.load(std::memory_order_relaxed); }
