// The example of the README: one file goes into a package and comes out again.
#include "Base/IO/ioPackageFile.h"
#include "Base/OS/qvOSFile.h"

#include <cstdio>

int main(int argc, char** argv) {
  (void)argc;
  // A package that exists is opened; here a new one is wanted.
  std::remove(argv[1]);

  // begin of the quoted lines
  ioPackageFile package;
  qvUtil::Error error = package.open(qvString::IString(argv[1]));
  if (!error) error = package.addEntry(qvString::IString(argv[0]), qvString::IString("program"), true);
  if (!error) error = package.update();
  if (error) return std::fprintf(stderr, "%s\n", error.message()), 1;

  const ioPackageFileEntry* entry = package.getEntry(qvString::IString("program"));
  std::printf("%lld bytes stored\n", static_cast<long long>(entry->getSize()));
  // end of the quoted lines
  return 0;
}
