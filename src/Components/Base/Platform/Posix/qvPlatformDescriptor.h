// How the files of this folder see a handle: as the system's descriptor.
#pragma once

#include "Base/Platform/qvPlatformFile.h"

struct stat;

namespace qvPlatform {

[[nodiscard]] inline int descriptorOf(FileHandle file) noexcept { return static_cast<int>(file); }

/// Opens whatever `path` names with the system's flags [open]. The descriptor is close-on-exec and above
/// those of the standard streams, so that a program that closed one of them does not print into a data file.
[[nodiscard]] int openDescriptor(const char* path, int flags, unsigned permissions, int* descriptor) noexcept;

[[nodiscard]] FileInfo infoOf(const struct stat& status) noexcept;

} // namespace qvPlatform
