// Text from outside on its way to a person or to another program.
#pragma once

#include <string>
#include <string_view>

/// `text` for a person to read: control characters, which could end the line or rule the terminal, and bytes
/// that are not UTF-8 are written as in "\x0a".
[[nodiscard]] std::string printable(std::string_view text);

/// The same between double quotes, with a backslash before each quote and backslash of `text`.
[[nodiscard]] std::string quoted(std::string_view text);

/// `text` as a JSON string, quotes included. Bytes that are not UTF-8 become the characters of these numbers.
[[nodiscard]] std::string jsonString(std::string_view text);
