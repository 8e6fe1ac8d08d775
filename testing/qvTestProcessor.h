// Processors: how many of them a test has, and how long it used them.
#pragma once

#include <cstdint>

namespace qvTest {

/// Until it goes, this thread and those that it starts have one processor together.
class OneProcessor {
public:
  OneProcessor();
  ~OneProcessor();
  OneProcessor(const OneProcessor&) = delete;
  OneProcessor& operator=(const OneProcessor&) = delete;

private:
  std::uint64_t before_; ///< A bit for each of the first 64 processors.
};

/// The time for which all threads of this process together have kept processors busy.
[[nodiscard]] double processorSeconds();

} // namespace qvTest
