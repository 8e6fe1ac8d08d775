// Text from outside on its way to a person.
#pragma once

#include <string>

/// `text` for a person to read: control characters, which could end the line or rule the terminal, are
/// written as in "\x0a".
[[nodiscard]] std::string printable(const std::string& text);
