// Paths as people of the platform write them, and as the library has them.
#pragma once

#include "Base/String/qvStringIString.h"

#include <filesystem>
#include <string>

[[nodiscard]] qvString::IString fromNative(const std::string& path);
[[nodiscard]] std::string toNative(const qvString::IString& path);
[[nodiscard]] std::filesystem::path filePath(const std::string& native);
