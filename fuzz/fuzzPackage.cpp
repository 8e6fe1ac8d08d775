// A package file: what opens is listed, every entry is read through its filters, and the package still opens
// after its entries were deleted.
#include "Base/IO/ioPackageFile.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

using qvString::IString;

namespace {

/// A file that is there while the program runs.
class ScratchFile {
public:
  ScratchFile()
      : path_(std::filesystem::temp_directory_path() /
              ("base-fuzz-package-" + std::to_string(std::random_device()()))) {}
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  void write(const std::uint8_t* data, std::size_t size) const {
    std::filesystem::remove(path_);
    std::ofstream(path_, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  [[nodiscard]] IString name() const { return IString(path_.string().c_str(), qvString::UTF8Encoding); }

private:
  std::filesystem::path path_;
};

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
