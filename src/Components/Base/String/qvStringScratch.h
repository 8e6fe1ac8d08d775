// Scratch: room for text that is being made, without the heap where the text is short. Private.
#pragma once

#include <cstddef>
#include <memory>

namespace qvString {

template <class C>
class Scratch {
public:
  explicit Scratch(std::size_t size) : size_(size) {
    if (size > fixedSize) heap_ = std::make_unique_for_overwrite<C[]>(size);
  }
  [[nodiscard]] C* data() noexcept { return heap_ ? heap_.get() : fixed_; }
  [[nodiscard]] std::size_t size() const noexcept { return size_; }

private:
  static constexpr std::size_t fixedSize = 512;
  std::size_t size_;
  std::unique_ptr<C[]> heap_;
  C fixed_[fixedSize];
};

} // namespace qvString
