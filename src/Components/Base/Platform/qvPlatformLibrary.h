// Shared libraries that are loaded while the process runs. Errors are the loader's own text, as UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace qvPlatform {

/// The suffix of files that hold a library's debug symbols beside it.
#if defined(_WIN32)
inline constexpr std::string_view debugSymbolSuffix = "pdb";
#else
inline constexpr std::string_view debugSymbolSuffix = "debug";
#endif

/// Loads the library in the file of that native path, with all that it depends on, and never asks the user
/// anything [loadLibrary]. One that is loaded already is counted once more.
/// @return its handle; null where it failed, with the reason in `failure`, which may be empty.
[[nodiscard]] void* loadLibrary(const char* path, std::string* failure);
/// The address of what a library exports under a name; null where it failed, with the reason in `failure`.
[[nodiscard]] void* librarySymbol(void* library, const char* name, std::string* failure);
/// Undoes one `loadLibrary`.
void unloadLibrary(void* library) noexcept;

} // namespace qvPlatform
