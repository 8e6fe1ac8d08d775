// qvpackage: stores files in packages, and lists, checks and takes out what is there.
#include "arguments.h"
#include "change.h"
#include "look.h"
#include "printable.h"
#include "report.h"
#include "terminal.h"

#include "Base/Utility/qvUtilError.h"

#include <clocale>
#include <cstdio>
#include <exception>

namespace {

void run(const Arguments& arguments) {
  const std::string& command = arguments.command;
  if (command == "create") createPackage(arguments);
  if (command == "add") addToPackage(arguments);
  if (command == "list") listPackage(arguments);
  if (command == "extract") extractPackage(arguments);
  if (command == "remove") removeFromPackage(arguments);
  if (command == "compact") compactPackage(arguments);
  if (command == "verify") verifyPackage(arguments);
  if (command == "help") std::fputs(usage, stdout);
}

} // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "");
  prepareProcess();
  std::string problem;
  const std::optional<Arguments> arguments = readArguments(commandLineWords(argc, argv), problem);
  if (!arguments) {
    std::fprintf(stderr, "qvpackage: %s\n%s", printable(problem).c_str(), usage);
    return 2;
  }
  try {
    run(*arguments);
  } catch (const std::exception& e) {
    fail(arguments->command, e.what());
  } catch (const qvUtil::Error& e) {
    fail(arguments->command, e.message());
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) fail("standard output", "it cannot be written");
  return exitStatus();
}
