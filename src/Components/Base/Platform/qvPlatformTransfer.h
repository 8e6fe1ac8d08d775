// Descriptors of the C runtime that a host hands over, and transfers that take what there is instead of
// waiting for all: a descriptor may be a pipe or a terminal.
#pragma once

#include "Base/Platform/qvPlatformFile.h"

#include <cstddef>

namespace qvPlatform {

/// The handle behind a descriptor, one of the three standard streams included; it is the same open file, and
/// from here on its bytes pass as they are.
[[nodiscard]] FileHandle fileOfDescriptor(int descriptor) noexcept;

/// Reads what is there, at least one byte and at most `size`, waiting for the first [read]. `*count` is 0 at
/// the end of the file only.
/// @return 0 or the system's number. Calls that a signal interrupts, and those on a handle that does not wait
/// by itself, are made again once there is something.
[[nodiscard]] int readSome(FileHandle file, void* buffer, std::size_t size, std::size_t* count) noexcept;

/// Writes as much as goes at once, at least one byte [write]. Result and repetition as for `readSome`.
[[nodiscard]] int writeSome(FileHandle file, const void* buffer, std::size_t size,
                            std::size_t* count) noexcept;

} // namespace qvPlatform
