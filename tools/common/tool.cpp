#include "tool.h"

#include "printable.h"
#include "report.h"
#include "terminal.h"

#include "Base/Utility/qvUtilError.h"

#include <clocale>
#include <cstdio>
#include <exception>

namespace {

std::optional<CommandLine> readWords(const Tool& tool, int argc, char** argv, std::string& problem) {
  std::vector<Command> commands(tool.commands.begin(), tool.commands.end());
  commands.push_back({"help", 0, Command::anyNumber, ""});
  std::optional<CommandLine> line =
      readCommandLine(commandLineWords(argc, argv), commands, tool.options, problem);
  if (line && tool.problemOf) problem = tool.problemOf(*line);
  return problem.empty() ? line : std::nullopt;
}

void run(const Tool& tool, const CommandLine& line) {
  try {
    tool.run(line);
  } catch (const std::exception& e) {
    fail(line.command, e.what());
  } catch (const qvUtil::Error& e) {
    fail(line.command, e.message());
  }
}

} // namespace

int runTool(const Tool& tool, int argc, char** argv) {
  std::setlocale(LC_CTYPE, "");
  prepareProcess();
  failAs(tool.name);
  std::string problem;
  const std::optional<CommandLine> line = readWords(tool, argc, argv, problem);
  if (!line) {
    std::fprintf(stderr, "%s: %s\n%s", tool.name, printable(problem).c_str(), tool.usage);
    return 2;
  }
  if (line->command == "help")
    std::fputs(tool.usage, stdout);
  else
    run(tool, *line);
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) fail("standard output", "it cannot be written");
  return exitStatus();
}
