#include "look.h"

#include "paths.h"
#include "report.h"

#include "Base/IO/ioPackageFile.h"
#include "Base/OS/qvOSFilename.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>

namespace fs = std::filesystem;
using qvString::IString;

namespace {

/// Entries and free regions in offset order. A name that stands twice in a damaged directory is listed once.
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

bool openPackage(const std::string& path, ioPackageFile& package) {
  std::error_code error;
  if (!fs::exists(filePath(path), error)) return fail(path, "there is no such package"), false;
  if (!fs::is_regular_file(filePath(path), error)) return fail(path, "this is no file"), false;
  const qvUtil::Error failure = package.open(fromNative(path));
  if (!failure) return true;
  fail(path, failure.num() == 17 ? "this is no package, or it is damaged" : "it cannot be read");
  return false;
}

Contents contentsOf(const ioPackageFile& package, const std::string& path) {
  Contents contents;
  for (const auto& named : package.getDirectory())
    if (const ioPackageFileEntry* entry = package.getEntry(named.second)) contents.entries.push_back(entry);
  std::stable_sort(contents.entries.begin(), contents.entries.end(),
                   [](const auto* a, const auto* b) { return a->getOffset() < b->getOffset(); });
  constexpr std::int64_t firstRegion = 85;
  std::int64_t end = firstRegion;
  const auto addFree = [&](std::int64_t next) {
    if (next > end) contents.free.push_back({end, next - end});
  };
  for (const ioPackageFileEntry* entry : contents.entries) {
    addFree(entry->getOffset());
    end = std::max(end, entry->getOffset() + entry->getSize());
  }
  // The last record is the directory's own; a count of the records is not offered, so it is looked for.
  int last = static_cast<int>(contents.entries.size());
  while (!package.getEntry(last) || nameText(package.getEntry(last)->getName()) != ".") ++last;
  contents.directoryOffset = package.getEntry(last)->getOffset();
  addFree(contents.directoryOffset);
  std::error_code error;
  contents.fileSize = static_cast<std::int64_t>(fs::file_size(filePath(path), error));
  return contents;
}

void printTable(const Contents& contents) {
  std::printf("%12s %12s  %-16s  %s  %s\n", "stored", "original", "date", "c", "name");
  std::int64_t stored = 0;
  for (const ioPackageFileEntry* entry : contents.entries) {
    stored += entry->getSize();
    const std::string size = std::to_string(entry->getSize());
    std::printf("%12s %12s  %-16s  %s  %s\n", size.c_str(), entry->getCompressed() ? "-" : size.c_str(),
                dateText(entry->getTimeStamp()).c_str(), entry->getCompressed() ? "c" : " ",
                nameText(entry->getName()).c_str());
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

/// Reads an entry to its end. False where its bytes are not all there or do not hold what was stored.
bool entryIsWhole(const ioPackageFileEntry& entry, std::int64_t fileSize) {
  if (!liesInFile(entry, fileSize)) return false;
  ioBufferedStreamInput input;
  input.openPackageFileEntry(&entry);
  if (!input.good() && input.getStatus() != ioStreamAtEnd) return false;
  if (entry.getCompressed()) {
    input.compress(true);
    input.checksum(true);
  }
  std::int64_t total = 0;
  char block[1 << 16];
  while (input.good()) total += input.readData(block, sizeof block);
  const ioStreamStatus status = input.getStatus();
  input.close();
  if (entry.getCompressed()) return status == ioStreamAtEnd || status == ioStreamCompressedEnd;
  return status == ioStreamAtEnd && total == entry.getSize();
}

/// The first component of `relative` below `base` that is a link: through it, a file would land elsewhere.
bool passesLink(const fs::path& base, const fs::path& relative) {
  fs::path path = base;
  std::error_code error;
  for (const fs::path& part : relative.parent_path()) {
    path /= part;
    if (fs::is_symlink(fs::symlink_status(path, error))) return true;
  }
  return false;
}

void setTime(const fs::path& path, std::int64_t seconds) {
  std::error_code ignored;
  const auto time = std::chrono::sys_seconds(std::chrono::seconds(seconds));
  fs::last_write_time(
      path,
      std::chrono::time_point_cast<fs::file_time_type::duration>(std::chrono::file_clock::from_sys(time)),
      ignored);
}

/// Writes one entry below `base`. @return what went wrong, empty where nothing did.
std::string extractEntry(ioPackageFile& package, const ioPackageFileEntry& entry, const std::string& base,
                         std::int64_t fileSize) {
  if (!staysInside(entry.getName())) return "its name leads out of the target directory";
  if (!liesInFile(entry, fileSize)) return "its bytes are not all in the package";
  const fs::path relative = filePath(nameText(entry.getName()));
  const fs::path target = filePath(base) / relative;
  if (passesLink(filePath(base), relative)) return "a link in the target directory would lead elsewhere";
  std::error_code error;
  fs::create_directories(target.parent_path(), error);
  if (fs::is_directory(fs::symlink_status(target, error))) return "a directory of this name is in the way";
  // What stands there gives way: a link would lead the bytes elsewhere.
  fs::remove(target, error);
  const std::string name = base + "/" + nameText(entry.getName());
  if (!makeEmptyFile(name)) return "the file cannot be created";
  if (!package.extractEntry(&entry, fromNative(name))) {
    const auto written = static_cast<std::int64_t>(fs::file_size(target, error));
    if (entry.getCompressed() || written == entry.getSize()) return setTime(target, entry.getTimeStamp()), "";
  }
  fs::remove(target, error);
  return "it is damaged, or could not be written whole";
}

/// The entries that the words ask for: all of them where there are no words.
std::vector<const ioPackageFileEntry*> chosen(const ioPackageFile& package, const Contents& contents,
                                              const std::vector<std::string>& words) {
  if (words.size() == 1) return contents.entries;
  std::vector<const ioPackageFileEntry*> entries;
  for (auto word = words.begin() + 1; word != words.end(); ++word) {
    const ioPackageFileEntry* entry = package.getEntry(IString(word->c_str(), qvString::UTF8Encoding));
    if (entry)
      entries.push_back(entry);
    else
      fail(*word, "there is no such entry");
  }
  return entries;
}

} // namespace

void listPackage(const Arguments& arguments) {
  const std::string& path = arguments.words[0];
  ioPackageFile package;
  if (!openPackage(path, package)) return;
  const Contents contents = contentsOf(package, path);
  if (arguments.json)
    printJson(contents, path);
  else
    printTable(contents);
}

void verifyPackage(const Arguments& arguments) {
  const std::string& path = arguments.words[0];
  ioPackageFile package;
  if (!openPackage(path, package)) return;
  const Contents contents = contentsOf(package, path);
  Progress progress("reading", contents.entries.size());
  for (const ioPackageFileEntry* entry : contents.entries) {
    if (!entryIsWhole(*entry, contents.fileSize))
      fail(nameText(entry->getName()), "its bytes are damaged or missing");
    progress.step();
  }
}

void extractPackage(const Arguments& arguments) {
  const std::string& path = arguments.words[0];
  const std::string base = arguments.into.value_or(".");
  ioPackageFile package;
  if (!openPackage(path, package)) return;
  std::error_code error;
  fs::create_directories(filePath(base), error);
  if (!fs::is_directory(filePath(base), error)) return fail(base, "the directory cannot be made");
  const Contents contents = contentsOf(package, path);
  const auto entries = chosen(package, contents, arguments.words);
  Progress progress("writing", entries.size());
  for (const ioPackageFileEntry* entry : entries) {
    const std::string problem = extractEntry(package, *entry, base, contents.fileSize);
    if (!problem.empty()) fail(nameText(entry->getName()), problem);
    progress.step();
  }
}
