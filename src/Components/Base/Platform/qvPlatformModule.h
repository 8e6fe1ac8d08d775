// The library as the loader sees it: a record of where it was mapped, made when it is loaded.
#pragma once

#include <string>

namespace qvPlatform {

/// The handle of the module that holds this library (the program itself where it is linked statically), as
/// the library's entry point recorded it before any other code of the library ran; null after its detachment.
[[nodiscard]] void* libraryModule() noexcept;

/// The absolute native path of the file that holds this library; empty where it is not known.
[[nodiscard]] std::string libraryPath();

} // namespace qvPlatform
