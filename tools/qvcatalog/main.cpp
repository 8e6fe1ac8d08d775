// qvcatalog: compares translations of a string catalog with the one that they were made from.
#include "catalog.h"
#include "native.h"
#include "printable.h"
#include "report.h"
#include "tool.h"

#include <cstdio>

namespace {

const char* const usage = R"(usage:
  qvcatalog check REFERENCE OTHER...  compare each OTHER with REFERENCE
  qvcatalog help                      show this

A line "FILE: KEY: PROBLEM" is printed for each key that is missing or left over in a file, and for each text whose
format directives differ from the reference's in number, order or kind; flags, widths and precisions may differ.
Exit status: 0 nothing was found, 1 something was found or could not be read, 2 wrong usage.
)";

constexpr Command commands[] = {{"check", 2, Command::anyNumber, ""}};

/// The message on one line.
std::string reason(const qvUtil::Error& error) {
  std::string text = error.message();
  while (!text.empty() && text.back() == '\n') text.pop_back();
  for (char& c : text)
    if (c == '\n') c = ' ';
  return text;
}

/// Reads a catalog; false, and reported, where it cannot be read to its end.
bool read(const std::string& file, Catalog& catalog) {
  const qvUtil::Error error = readCatalog(fromNative(file), catalog);
  if (error) fail(file, reason(error));
  return !error;
}

void check(const Catalog& reference, const std::string& file) {
  Catalog translation;
  if (!read(file, translation)) return;
  for (const Finding& finding : compare(reference, translation)) {
    std::printf("%s: %s: %s\n", printable(file).c_str(), finding.key.c_str(), finding.problem.c_str());
    markFailed();
  }
}

/// Compares all files that can be read with the first one.
void run(const CommandLine& line) {
  Catalog reference;
  if (!read(line.words[0], reference)) return;
  for (std::size_t i = 1; i < line.words.size(); ++i) check(reference, line.words[i]);
}

} // namespace

int main(int argc, char** argv) {
  return runTool({"qvcatalog", usage, commands, {}, nullptr, run}, argc, argv);
}
