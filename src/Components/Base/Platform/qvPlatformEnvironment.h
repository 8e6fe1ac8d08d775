// The environment that this process was started with.
#pragma once

#include <string>

namespace qvPlatform {

/// The value of an environment variable as native bytes; empty where it is not set.
[[nodiscard]] std::string environmentVariable(const char* name);

} // namespace qvPlatform
