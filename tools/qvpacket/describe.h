// The words in which every command tells about a file.
#pragma once

#include "packetFile.h"

/// As in "little-endian, binary with type tags (method 3)".
[[nodiscard]] std::string describe(const FileHeader& header);

/// The name of a type, for people.
[[nodiscard]] std::string typeText(const FileHeader& header, int id);
