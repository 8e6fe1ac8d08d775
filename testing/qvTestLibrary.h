// The libraries that this process holds.
#pragma once

#include <string>

namespace qvTest {

/// Whether a library from a file of that name (UTF-8, without a directory) is in this process.
[[nodiscard]] bool isMapped(const std::string& fileName);

} // namespace qvTest
