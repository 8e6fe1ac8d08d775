#include "testing/qvTestSeed.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace qvTest {

namespace {

std::uint64_t chosenSeed(std::uint64_t fallback) {
  const char* text = std::getenv("QV_TEST_SEED");
  return text ? std::strtoull(text, nullptr, 0) : fallback;
}

} // namespace

Random::Random(std::uint64_t fallback) : seed_(chosenSeed(fallback)), engine_(seed_) {}

Random::~Random() {
  if (testing::Test::HasFailure())
    std::fprintf(stderr, "repeat with QV_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed_));
}

std::uint64_t Random::below(std::uint64_t bound) { return engine_() % bound; }

int Random::between(int first, int last) {
  const auto span = static_cast<std::uint64_t>(static_cast<std::int64_t>(last) - first) + 1;
  return static_cast<int>(first + static_cast<std::int64_t>(below(span)));
}

} // namespace qvTest
