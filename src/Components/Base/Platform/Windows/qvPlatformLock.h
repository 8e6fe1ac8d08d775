// The recursive lock of this process, which is the system's critical section.
#pragma once

#include <cstddef>

namespace qvPlatform {

class CriticalSection {
public:
  CriticalSection() noexcept;
  ~CriticalSection();
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void lock() noexcept;
  void unlock() noexcept;

private:
  alignas(void*) std::byte state_[40];
};

} // namespace qvPlatform
