#include "testing/qvTestYield.h"

namespace qvTest {

void Yields::giveWay() noexcept {
  // Relaxed, so that the sequence orders nothing between the threads that the test is about.
  std::uint64_t choice = sequence_.fetch_add(0x9E3779B97F4A7C15u, std::memory_order_relaxed);
  choice = (choice ^ choice >> 30) * 0xBF58476D1CE4E5B9u;
  choice = choice >> 40 & 0xff;
  if (choice < 2)
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  else if (choice < 64)
    std::this_thread::yield();
}

} // namespace qvTest
