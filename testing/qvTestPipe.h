// A pipe of the C runtime.
#pragma once

#include <array>

namespace qvTest {

/// Descriptors to read from and to write to, both the caller's; -1 where there is none. Where the system has
/// such, they answer "not yet" instead of waiting.
[[nodiscard]] std::array<int, 2> openPipe();

/// Whether the C runtime knows the descriptor.
[[nodiscard]] bool isOpen(int descriptor);

} // namespace qvTest
