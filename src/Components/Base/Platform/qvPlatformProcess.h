// Facts about this process and its machine.
#pragma once

#include <string>

namespace qvPlatform {

/// The number by which the system knows this process.
[[nodiscard]] int processId() noexcept;
/// The machine's name; empty where the system tells none.
[[nodiscard]] std::string machineName();

} // namespace qvPlatform
