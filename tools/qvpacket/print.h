// Prints values of any size on standard output, without a copy of them as a whole.
#pragma once

#include "packetFile.h"

/// How a text is written between quotes: `quoted` or `jsonString`.
using Quote = std::string (*)(std::string_view);

/// Prints a value: texts, and numbers that are infinite or none, as `quote` writes them, all else as JSON has
/// it.
void printScalar(const Scalar& scalar, Quote quote);

/// Prints a text as `printable` writes it.
void printText(std::string_view text);

/// Two digits for each byte, with `separator` in front of each.
void printHex(std::string_view bytes, const char* separator);
