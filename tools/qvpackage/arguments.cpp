#include "arguments.h"

#include "paths.h"

#include "Base/OS/qvOSGetOpt.h"

#include <algorithm>
#include <iterator>

const char* const usage = R"(usage:
  qvpackage create  PACKAGE [-compress] [-from DIR] PATH...  store every file under each PATH in a new package
  qvpackage add     PACKAGE [-compress] [-from DIR] PATH...  store them in a package that exists
  qvpackage list    PACKAGE [-json]                          show what is in it
  qvpackage extract PACKAGE [-into DIR] [NAME...]            write the named entries, or all, below DIR
  qvpackage remove  PACKAGE NAME...                          take entries out
  qvpackage compact PACKAGE TARGET                           write a copy without free space
  qvpackage verify  PACKAGE                                  read every entry to its end, through its checksums
  qvpackage help                                             show this

Names are relative to DIR of -from where that is given. Symbolic links to directories are not followed. A word after
"--" is never an option. Exit status: 0 done, 1 something failed, 2 wrong usage.
)";

namespace {

constexpr std::size_t anyNumber = 1000000000;

struct Command {
  const char* name;
  std::size_t fewestWords;
  std::size_t mostWords;
  const char* options;
};

constexpr Command commands[] = {
    {"create", 2, anyNumber, "compress from"},
    {"add", 2, anyNumber, "compress from"},
    {"list", 1, 1, "json"},
    {"extract", 1, anyNumber, "into"},
    {"remove", 2, anyNumber, ""},
    {"compact", 2, 2, ""},
    {"verify", 1, 1, ""},
    {"help", 0, anyNumber, ""},
};

bool allows(const Command& command, const std::string& option) {
  return (" " + std::string(command.options) + " ").find(" " + option + " ") != std::string::npos;
}

/// Stores one option that was read. @return its name.
std::string store(const qvOS::GetOpt& options, const qvOS::GetOpt::result* result, Arguments& arguments) {
  const std::string name = options.getResultName(result).asChar();
  if (name == "compress") arguments.compress = true;
  if (name == "json") arguments.json = true;
  if (name == "from") arguments.from = toNative(options.getResultArg(result, 0));
  if (name == "into") arguments.into = toNative(options.getResultArg(result, 0));
  return name;
}

std::string firstLine(const char* text) {
  const std::string whole = text;
  return whole.substr(0, whole.find('\n'));
}

/// Sorts the words into options, whose names are stored in `given`, and positional ones.
/// @return what is wrong, empty where nothing is.
std::string sortWords(qv::vector<qvString::IString> remaining, Arguments& arguments,
                      std::vector<std::string>& given) {
  qvOS::GetOpt options;
  options.addOption("compress", nullptr);
  options.addOption("json", nullptr);
  options.addOption("from", "string");
  options.addOption("into", "string");
  bool onlyWords = false;
  while (!remaining.empty()) {
    const qvString::IString& next = remaining[0];
    if (next.isEmpty() || next == qvString::IString("-")) return "\"" + toNative(next) + "\" names no file";
    // A word that is no option is taken off here: the option reader itself refuses one.
    if (onlyWords || next[0] != '-') {
      arguments.words.push_back(toNative(next));
      remaining.erase(remaining.begin());
      continue;
    }
    options.initialize(remaining);
    const qvOS::GetOpt::result* result = options.getOpt();
    if (options.hasErrors()) return firstLine(options.getError().asUTF8());
    remaining.clear();
    options.remaining(remaining);
    if (result)
      given.push_back(store(options, result, arguments));
    else
      onlyWords = true;
  }
  const auto isEmpty = [](const std::optional<std::string>& directory) {
    return directory && directory->empty();
  };
  return isEmpty(arguments.from) || isEmpty(arguments.into) ? "\"\" names no directory" : "";
}

} // namespace

std::optional<Arguments> readArguments(const qv::vector<qvString::IString>& words, std::string& problem) {
  Arguments arguments;
  std::vector<std::string> given;
  problem = sortWords(words, arguments, given);
  if (!problem.empty()) return std::nullopt;
  if (arguments.words.empty()) return problem = "no command", std::nullopt;
  arguments.command = arguments.words.front();
  arguments.words.erase(arguments.words.begin());
  const auto command = std::find_if(std::begin(commands), std::end(commands),
                                    [&](const Command& c) { return arguments.command == c.name; });
  if (command == std::end(commands)) return problem = "unknown command: " + arguments.command, std::nullopt;
  for (const std::string& name : given)
    if (!allows(*command, name)) return problem = arguments.command + " takes no -" + name, std::nullopt;
  if (arguments.words.size() < command->fewestWords || arguments.words.size() > command->mostWords)
    return problem = arguments.command + ": wrong number of words", std::nullopt;
  return arguments;
}
