// The command line: a command, positional words and options in any order.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringIString.h"

#include <optional>
#include <string>
#include <vector>

struct Arguments {
  std::string command;
  /// The positional words after the command, in the form of the platform.
  std::vector<std::string> words;
  bool compress = false;
  bool json = false;
  std::optional<std::string> from;
  std::optional<std::string> into;
};

extern const char* const usage;

/// Reads the words after the program's name. Words that are no options are positional wherever they stand,
/// and every word after "--" is. @return nothing and a line in `problem` where they make no sense.
[[nodiscard]] std::optional<Arguments> readArguments(const qv::vector<qvString::IString>& words,
                                                     std::string& problem);
