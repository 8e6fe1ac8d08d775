// The libraries that this process holds.
#pragma once

#include <filesystem>
#include <string>

namespace qvTest {

/// Whether a library from a file of that name (UTF-8, without a directory) is in this process.
[[nodiscard]] bool isMapped(const std::string& fileName);

/// Loads a library by the system's own call, for good. @return null where that failed, and the standard error
/// tells why.
[[nodiscard]] void* loadLibrary(const std::filesystem::path& file);
/// What it exports under a name; null where there is no such thing.
[[nodiscard]] void* symbolOf(void* library, const char* name);

} // namespace qvTest
