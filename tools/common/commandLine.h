// The command line of a tool: a command, positional words and options in any order.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringIString.h"

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct Command {
  static constexpr std::size_t anyNumber = 1000000000;

  const char* name;
  std::size_t fewestWords;
  std::size_t mostWords;
  const char* options; ///< The names of those that it takes, with blanks between them.
};

struct Option {
  const char* name;
  bool takesWord;
};

struct CommandLine {
  std::string command;
  /// The positional words after the command, in the form of the platform.
  std::vector<std::string> words;
  /// The options that were given, with their words, which are never empty.
  std::map<std::string, std::string> options;

  [[nodiscard]] bool has(const char* option) const { return options.count(option) != 0; }
  [[nodiscard]] std::optional<std::string> wordOf(const char* option) const {
    return has(option) ? std::optional(options.at(option)) : std::nullopt;
  }
};

/// Reads the words after the program's name. Words that are no options are positional wherever they stand,
/// and every word after "--" is. @return nothing and a line in `problem` where they make no sense.
[[nodiscard]] std::optional<CommandLine> readCommandLine(const qv::vector<qvString::IString>& words,
                                                         std::span<const Command> commands,
                                                         std::span<const Option> options,
                                                         std::string& problem);
