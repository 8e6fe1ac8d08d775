// A package file: what opens is listed, every entry is read through its filters, and the package still opens
// after its entries were deleted.
#include "Base/IO/ioPackageFile.h"
#include "fuzz/scratchFile.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using qvString::IString;

namespace {

void readThroughFilters(const ioPackageFileEntry& entry) {
  ioBufferedStreamInput input;
  input.openPackageFileEntry(&entry);
  if (entry.getCompressed()) {
    input.compress(true);
    input.checksum(true);
  }
  constexpr int enough = 16 << 20;
  char block[5000];
  for (int total = 0; input.good() && total < enough;) total += input.readData(block, sizeof block);
  input.close();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchFile scratch;
  scratch.write(data, size);
  const bool looksRight = ioPackageFile::isFilePackageFile(scratch.name());
  ioPackageFile package;
  if (package.open(scratch.name())) return 0;
  if (!looksRight) std::abort();

  for (int i = 0;; ++i) {
    const ioPackageFileEntry* entry = package.getEntry(i);
    if (entry && entry->getName() == IString(".")) break;
    if (entry) readThroughFilters(*entry);
  }
  std::vector<IString> names;
  for (const auto& named : package.getDirectory()) names.push_back(named.first);
  for (const IString& name : names)
    if (!package.getEntry(name) || package.deleteEntry(name)) std::abort();
  if (package.size() != 0 || package.update()) std::abort();
  package.close();
  if (package.open(scratch.name())) std::abort();
  return 0;
}
