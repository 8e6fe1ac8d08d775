// qvcatalog: compares translations of a string catalog with the one that they were made from.
#include "catalog.h"
#include "printable.h"
#include "terminal.h"

#include "Base/OS/qvOSNativePath.h"

#include <clocale>
#include <cstdio>

namespace {

using qvString::IString;
using Words = qv::vector<IString>;

const char* const usage = R"(usage:
  qvcatalog check REFERENCE OTHER...  compare each OTHER with REFERENCE
  qvcatalog help                      show this

A line "FILE: KEY: PROBLEM" is printed for each key that is missing or left over in a file, and for each text whose
format directives differ from the reference's in number, order or kind; flags, widths and precisions may differ.
Exit status: 0 nothing was found, 1 something was found or could not be read, 2 wrong usage.
)";

std::string nativeText(const IString& path) { return qvOS::toNativePath(path).asChar(); }

/// The message on one line.
std::string reason(const qvUtil::Error& error) {
  std::string text = error.message();
  while (!text.empty() && text.back() == '\n') text.pop_back();
  for (char& c : text)
    if (c == '\n') c = ' ';
  return text;
}

/// Reads a catalog; false, and reported, where it cannot be read to its end.
bool read(const IString& file, Catalog& catalog) {
  const qvUtil::Error error = readCatalog(file, catalog);
  if (error)
    std::fprintf(stderr, "qvcatalog: %s: %s\n", printable(nativeText(file)).c_str(),
                 printable(reason(error)).c_str());
  return !error;
}

/// Compares all files that can be read. @return whether all is well.
bool check(const IString& referenceFile, const Words& files) {
  Catalog reference;
  if (!read(referenceFile, reference)) return false;
  bool good = true;
  for (const IString& file : files) {
    Catalog translation;
    if (!read(file, translation)) {
      good = false;
      continue;
    }
    for (const Finding& finding : compare(reference, translation)) {
      std::printf("%s: %s: %s\n", printable(nativeText(file)).c_str(), finding.key.c_str(),
                  finding.problem.c_str());
      good = false;
    }
  }
  return good;
}

int run(Words words) {
  const IString command = words.empty() ? IString() : words[0];
  if (command == IString("help")) return std::fputs(usage, stdout), 0;
  if (command != IString("check") || words.size() < 3) return std::fputs(usage, stderr), 2;
  const IString reference = words[1];
  words.erase(words.begin(), words.begin() + 2);
  return check(reference, words) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "");
  prepareProcess();
  const int status = run(commandLineWords(argc, argv));
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return status;
  std::fputs("qvcatalog: standard output: it cannot be written\n", stderr);
  return 1;
}
