#include "commandLine.h"

#include "native.h"

#include "Base/OS/qvOSGetOpt.h"

#include <algorithm>

namespace {

bool allows(const Command& command, const std::string& option) {
  return (" " + std::string(command.options) + " ").find(" " + option + " ") != std::string::npos;
}

std::string firstLine(const char* text) {
  const std::string whole = text;
  return whole.substr(0, whole.find('\n'));
}

/// Stores one option that was read. @return what is wrong with it, empty where nothing is.
std::string store(const qvOS::GetOpt& reader, const qvOS::GetOpt::result* result,
                  std::span<const Option> options, CommandLine& line) {
  const std::string name = reader.getResultName(result).asChar();
  const auto option = std::find_if(options.begin(), options.end(),
                                   [&](const Option& candidate) { return name == candidate.name; });
  std::string& word = line.options[name];
  if (!option->takesWord) return "";
  word = toNative(reader.getResultArg(result, 0));
  return word.empty() ? "\"\" means nothing to -" + name : "";
}

/// Sorts the words into options and positional ones. @return what is wrong, empty where nothing is.
std::string sortWords(qv::vector<qvString::IString> remaining, std::span<const Option> options,
                      CommandLine& line) {
  qvOS::GetOpt reader;
  for (const Option& option : options) reader.addOption(option.name, option.takesWord ? "string" : nullptr);
  bool onlyWords = false;
  std::string problem;
  while (!remaining.empty() && problem.empty()) {
    const qvString::IString& next = remaining[0];
    if (next.isEmpty() || next == qvString::IString("-")) return "\"" + toNative(next) + "\" names no file";
    // A word that is no option is taken off here: the option reader itself refuses one.
    if (onlyWords || next[0] != '-') {
      line.words.push_back(toNative(next));
      remaining.erase(remaining.begin());
      continue;
    }
    reader.initialize(remaining);
    const qvOS::GetOpt::result* result = reader.getOpt();
    if (reader.hasErrors()) return firstLine(reader.getError().asUTF8());
    remaining.clear();
    reader.remaining(remaining);
    if (result)
      problem = store(reader, result, options, line);
    else
      onlyWords = true;
  }
  return problem;
}

/// @return what is wrong with the command, empty where nothing is.
std::string checkCommand(const CommandLine& line, std::span<const Command> commands) {
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const Command& candidate) { return line.command == candidate.name; });
  if (command == commands.end()) return "unknown command: " + line.command;
  for (const auto& [name, word] : line.options)
    if (!allows(*command, name)) return line.command + " takes no -" + name;
  const std::size_t count = line.words.size();
  return count < command->fewestWords || count > command->mostWords ? line.command + ": wrong number of words"
                                                                    : "";
}

} // namespace

std::optional<CommandLine> readCommandLine(const qv::vector<qvString::IString>& words,
                                           std::span<const Command> commands, std::span<const Option> options,
                                           std::string& problem) {
  CommandLine line;
  problem = sortWords(words, options, line);
  if (problem.empty() && line.words.empty()) problem = "no command";
  if (!problem.empty()) return std::nullopt;
  line.command = line.words.front();
  line.words.erase(line.words.begin());
  problem = checkCommand(line, commands);
  return problem.empty() ? std::optional(line) : std::nullopt;
}
