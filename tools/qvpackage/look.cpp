#include "look.h"

#include "package.h"
#include "paths.h"
#include "printable.h"
#include "report.h"

#include "Base/IO/ioPackageFile.h"
#include "Base/OS/qvOSFilename.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <ostream>
#include <random>

namespace fs = std::filesystem;
using qvString::IString;

namespace {

/// Entries and free regions in offset order. A name that stands twice in a hostile directory is there twice.
struct Contents {
  struct Region {
    std::int64_t offset;
    std::int64_t size;
  };
  std::vector<const ioPackageFileEntry*> entries;
  std::vector<Region> free;
  std::int64_t directoryOffset = 0;
  std::int64_t fileSize = 0;

  [[nodiscard]] std::int64_t freeBytes() const {
    std::int64_t sum = 0;
    for (const Region& region : free) sum += region.size;
    return sum;
  }
};

Contents contentsOf(const ioPackageFile& package, const std::string& path) {
  Contents contents;
  constexpr std::int64_t firstRegion = 85;
  std::int64_t end = firstRegion;
  const auto addFree = [&](std::int64_t next) {
    if (next > end) contents.free.push_back({end, next - end});
  };
  // A free record gives null. The last record is the directory's own, and no entry has its name.
  for (int i = 0;; ++i) {
    const ioPackageFileEntry* entry = package.getEntry(i);
    if (!entry) continue;
    addFree(entry->getOffset());
    end = std::max(end, entry->getOffset() + entry->getSize());
    if (nameText(entry->getName()) == ".") {
      contents.directoryOffset = entry->getOffset();
      break;
    }
    contents.entries.push_back(entry);
  }
  std::error_code error;
  contents.fileSize = static_cast<std::int64_t>(fs::file_size(filePath(path), error));
  return contents;
}

/// The time stamp of an entry that has none.
constexpr std::int64_t noTime = -1;

/// Seconds since 1970 as local date and time, as in "2026-01-31 23:59"; "-" for `noTime`.
std::string dateText(std::int64_t seconds) {
  const std::time_t time = static_cast<std::time_t>(seconds);
  char text[32];
  const std::tm* local = std::localtime(&time);
  if (seconds == noTime || !local || std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", local) == 0)
    return "-";
  return text;
}

void printTable(const Contents& contents) {
  std::printf("%12s %12s  %-16s  %s  %s\n", "stored", "original", "date", "c", "name");
  std::int64_t stored = 0;
  for (const ioPackageFileEntry* entry : contents.entries) {
    stored += entry->getSize();
    const std::string size = std::to_string(entry->getSize());
    std::printf("%12s %12s  %-16s  %s  %s\n", size.c_str(), entry->getCompressed() ? "-" : size.c_str(),
                dateText(entry->getTimeStamp()).c_str(), entry->getCompressed() ? "c" : " ",
                printable(nameText(entry->getName())).c_str());
  }
  const double share = contents.fileSize > 0 ? 100.0 * static_cast<double>(contents.freeBytes()) /
                                                   static_cast<double>(contents.fileSize)
                                             : 0.0;
  std::printf("%zu entries, %" PRId64 " bytes stored, file of %" PRId64 " bytes, %.1f %% of it free\n",
              contents.entries.size(), stored, contents.fileSize, share);
}

void printJson(const Contents& contents, const std::string& path) {
  std::printf("{\"package\":%s,\"size\":%" PRId64 ",\"directory\":{\"offset\":%" PRId64 "},\"entries\":[",
              jsonString(path).c_str(), contents.fileSize, contents.directoryOffset);
  const char* separator = "";
  for (const ioPackageFileEntry* entry : contents.entries) {
    std::printf("%s{\"name\":%s,\"offset\":%" PRId64 ",\"size\":%" PRId64 ",\"time\":%" PRId64
                ",\"compressed\":%s}",
                separator, jsonString(nameText(entry->getName())).c_str(), entry->getOffset(),
                entry->getSize(), entry->getTimeStamp(), entry->getCompressed() ? "true" : "false");
    separator = ",";
  }
  std::printf("],\"free\":[");
  separator = "";
  for (const Contents::Region& region : contents.free) {
    std::printf("%s{\"offset\":%" PRId64 ",\"size\":%" PRId64 "}", separator, region.offset, region.size);
    separator = ",";
  }
  std::printf("]}\n");
}

bool liesInFile(const ioPackageFileEntry& entry, std::int64_t fileSize) {
  return entry.getOffset() >= 0 && entry.getSize() >= 0 && entry.getOffset() <= fileSize - entry.getSize();
}

/// Reads an entry to its end, and writes it to `out` where that is given. @return what went wrong, empty
/// where nothing did.
std::string copyEntry(const ioPackageFileEntry& entry, std::int64_t fileSize, std::ostream* out) {
  if (!liesInFile(entry, fileSize)) return "its bytes are not all in the package";
  ioBufferedStreamInput input;
  input.openPackageFileEntry(&entry);
  if (input.getStatus() == ioStreamOpenFailed) return "the package cannot be read";
  if (entry.getCompressed()) {
    input.compress(true);
    input.checksum(true);
  }
  std::int64_t total = 0;
  char block[1 << 16];
  while (input.good() && (!out || *out)) {
    const int count = input.readData(block, sizeof block);
    if (out && count > 0) out->write(block, count);
    total += count;
  }
  bool isWhole = input.getStatus() == ioStreamAtEnd && total == entry.getSize();
  if (entry.getCompressed()) {
    // The filters must have seen their own end, and that at the last byte: an end that came early is damage.
    isWhole = input.getStatus() == ioStreamCompressedEnd;
    input.checksum(false);
    input.compress(false);
    (void)input.readChar();
    isWhole = isWhole && input.getStatus() == ioStreamAtEnd;
  }
  input.close();
  if (out && !*out) return "it could not be written; the disk may be full";
  return isWhole ? "" : "its bytes are damaged or missing";
}

void setTime(const fs::path& path, std::int64_t seconds) {
  // Files have times that are counted in nanoseconds; what is far from all of them is left out.
  constexpr std::int64_t earliest = -2'000'000'000;
  constexpr std::int64_t latest = 15'000'000'000;
  if (seconds == noTime || seconds < earliest || seconds > latest) return;
  std::error_code ignored;
  const auto time = std::chrono::sys_seconds(std::chrono::seconds(seconds));
  fs::last_write_time(
      path,
      std::chrono::time_point_cast<fs::file_time_type::duration>(std::chrono::file_clock::from_sys(time)),
      ignored);
}

/// A name for a file that is not whole yet, unlike any other.
std::string partName() {
  std::random_device random;
  char name[40];
  std::snprintf(name, sizeof name, ".qvpackage-%08x%08x.part", random(), random());
  return name;
}

/// Writes entries below a directory. A file appears under its own name when it is whole, and takes the place
/// of what stood there.
class Extraction {
public:
  Extraction(const std::string& base, const std::string& package, std::int64_t packageSize)
      : base_(filePath(base)), package_(filePath(package)), packageSize_(packageSize) {}

  /// @return what went wrong, empty where nothing did.
  [[nodiscard]] std::string write(const ioPackageFileEntry& entry) {
    if (!staysInside(entry.getName())) return "its name leads out of the target directory";
    const fs::path relative = filePath(nameText(entry.getName()));
    const fs::path target = base_ / relative;
    const std::string problem = openFolder(relative.parent_path());
    if (!problem.empty()) return problem;
    std::error_code error;
    const fs::file_status there = fs::symlink_status(target, error);
    if (!target.has_filename() || fs::is_directory(there)) return "a directory of this name is in the way";
    if (fs::is_regular_file(there) && fs::equivalent(target, package_, error))
      return "it would take the place of the package itself";
    return writeWhole(entry, target);
  }

private:
  /// Makes the directory and all above it, down from the base. None of them may be a link, through which a
  /// file would land elsewhere.
  [[nodiscard]] std::string openFolder(const fs::path& relative) {
    if (folder_ == relative) return {};
    fs::path path = base_;
    std::error_code error;
    for (const fs::path& part : relative) {
      path /= part;
      if (fs::is_symlink(fs::symlink_status(path, error)))
        return "a link in the target directory would lead elsewhere";
      fs::create_directory(path, error);
      if (!fs::is_directory(path, error)) return "its directory cannot be made";
    }
    folder_ = relative;
    return {};
  }

  [[nodiscard]] std::string writeWhole(const ioPackageFileEntry& entry, const fs::path& target) const {
    const fs::path part = target.parent_path() / partName_;
    std::error_code error;
    std::ofstream out(part, std::ios::binary | std::ios::trunc);
    if (!out) return "the file cannot be created";
    std::string problem = copyEntry(entry, packageSize_, &out);
    out.close();
    if (problem.empty() && !out) problem = "it could not be written; the disk may be full";
    if (problem.empty()) {
      setTime(part, entry.getTimeStamp());
      fs::rename(part, target, error);
      if (!error) return {};
      problem = "the file cannot be created";
    }
    fs::remove(part, error);
    return problem;
  }

  fs::path base_;
  fs::path package_;
  std::int64_t packageSize_;
  std::string partName_ = partName();
  std::optional<fs::path> folder_; // the one that was opened last
};

/// The entries that the words ask for: all of them where there are no words.
std::vector<const ioPackageFileEntry*> chosen(const ioPackageFile& package, const Contents& contents,
                                              const std::vector<std::string>& words) {
  if (words.size() == 1) return contents.entries;
  std::vector<const ioPackageFileEntry*> entries;
  for (auto word = words.begin() + 1; word != words.end(); ++word) {
    const ioPackageFileEntry* entry = package.getEntry(namedBy(*word, package));
    if (entry)
      entries.push_back(entry);
    else
      fail(*word, "there is no such entry");
  }
  return entries;
}

/// Runs `work` on each entry, with a bar, and reports what it returns.
template <class Work>
void forEach(const char* label, const std::vector<const ioPackageFileEntry*>& entries, Work work) {
  std::int64_t bytes = 0;
  for (const ioPackageFileEntry* entry : entries) bytes += entry->getSize();
  Progress progress(label, bytes);
  for (const ioPackageFileEntry* entry : entries) {
    const std::string problem = work(*entry);
    if (!problem.empty()) fail(nameText(entry->getName()), problem);
    progress.advance(entry->getSize());
  }
}

} // namespace

void listPackage(const CommandLine& line) {
  const std::string& path = line.words[0];
  ioPackageFile package;
  if (!openPackage(path, package)) return;
  const Contents contents = contentsOf(package, path);
  if (line.has("json"))
    printJson(contents, path);
  else
    printTable(contents);
}

void verifyPackage(const CommandLine& line) {
  const std::string& path = line.words[0];
  ioPackageFile package;
  if (!openPackage(path, package)) return;
  const Contents contents = contentsOf(package, path);
  forEach("reading", contents.entries,
          [&](const ioPackageFileEntry& entry) { return copyEntry(entry, contents.fileSize, nullptr); });
}

void extractPackage(const CommandLine& line) {
  const std::string& path = line.words[0];
  const std::string base = line.wordOf("into").value_or(".");
  ioPackageFile package;
  if (!openPackage(path, package)) return;
  std::error_code error;
  fs::create_directories(filePath(base), error);
  if (!fs::is_directory(filePath(base), error)) return fail(base, "the directory cannot be made");
  const Contents contents = contentsOf(package, path);
  Extraction extraction(base, path, contents.fileSize);
  forEach("writing", chosen(package, contents, line.words),
          [&](const ioPackageFileEntry& entry) { return extraction.write(entry); });
}
