// Numbers in the bytes and in the words of packets.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// The number that 1 to 8 bytes hold.
[[nodiscard]] std::uint64_t unsignedNumber(std::string_view bytes, bool littleEndian);
[[nodiscard]] std::int64_t signedNumber(std::string_view bytes, bool littleEndian);

/// The number that a whole word is, where it fits into `width` bytes.
[[nodiscard]] std::optional<std::int64_t> parseSigned(std::string_view word, int width);
[[nodiscard]] std::optional<std::uint64_t> parseUnsigned(std::string_view word, int width);
[[nodiscard]] std::optional<double> parseDouble(std::string_view word);
