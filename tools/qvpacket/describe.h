// The words in which every command tells about a file.
#pragma once

#include "packetFile.h"

/// As in "little-endian, binary with type tags (method 3)".
[[nodiscard]] std::string describe(const FileHeader& header);

/// The name of a type, for people.
[[nodiscard]] std::string typeText(const FileHeader& header, int id);

/// A value as a number or word of JSON; what is none as `quote` writes it.
[[nodiscard]] std::string scalarText(const Scalar& scalar, std::string (*quote)(std::string_view));
