// qvpackage: stores files in packages, and lists, checks and takes out what is there.
#include "change.h"
#include "look.h"
#include "tool.h"

namespace {

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

constexpr Command commands[] = {
    {"create", 2, Command::anyNumber, "compress from"},
    {"add", 2, Command::anyNumber, "compress from"},
    {"list", 1, 1, "json"},
    {"extract", 1, Command::anyNumber, "into"},
    {"remove", 2, Command::anyNumber, ""},
    {"compact", 2, 2, ""},
    {"verify", 1, 1, ""},
};

constexpr Option options[] = {{"compress", false}, {"json", false}, {"from", true}, {"into", true}};

void run(const CommandLine& line) {
  const std::string& command = line.command;
  if (command == "create") createPackage(line);
  if (command == "add") addToPackage(line);
  if (command == "list") listPackage(line);
  if (command == "extract") extractPackage(line);
  if (command == "remove") removeFromPackage(line);
  if (command == "compact") compactPackage(line);
  if (command == "verify") verifyPackage(line);
}

} // namespace

int main(int argc, char** argv) {
  return runTool({"qvpackage", usage, commands, options, nullptr, run}, argc, argv);
}
