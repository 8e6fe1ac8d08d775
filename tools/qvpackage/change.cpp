#include "change.h"

#include "package.h"
#include "paths.h"
#include "report.h"

#include "Base/IO/ioPackageFile.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSProtectedWrite.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

namespace fs = std::filesystem;
using qvOS::Filename;
using qvString::IString;

namespace {

/// An empty file of that name as long as the object lives.
class EmptyFile {
public:
  explicit EmptyFile(const IString& name) : path_(toNative(name)), good_(makeEmptyFile(path_)) {}
  ~EmptyFile() {
    std::error_code ignored;
    fs::remove(filePath(path_), ignored);
  }
  EmptyFile(const EmptyFile&) = delete;
  EmptyFile& operator=(const EmptyFile&) = delete;
  [[nodiscard]] bool good() const { return good_; }

  /// What the user's mask gives to a new file; nothing where there is none.
  [[nodiscard]] std::optional<fs::perms> permissions() const {
    std::error_code error;
    const fs::perms permissions = fs::status(filePath(path_), error).permissions();
    return good_ && !error ? std::optional(permissions) : std::nullopt;
  }

private:
  std::string path_;
  bool good_;
};

/// Shows on a bar how a file grows to `size` while another thread writes it.
class GrowthWatch {
public:
  GrowthWatch(const char* label, const std::string& path, std::int64_t size)
      : bar_(label, size), path_(path) {
    if (bar_.isVisible()) thread_ = std::thread([this] { watch(); });
  }
  ~GrowthWatch() {
    done_ = true;
    if (thread_.joinable()) thread_.join();
  }
  GrowthWatch(const GrowthWatch&) = delete;
  GrowthWatch& operator=(const GrowthWatch&) = delete;

private:
  void watch() {
    for (; !done_; std::this_thread::sleep_for(std::chrono::milliseconds(50))) {
      std::error_code error;
      const std::uintmax_t size = fs::file_size(filePath(path_), error);
      if (!error) bar_.show(static_cast<std::int64_t>(size));
    }
  }

  Progress bar_;
  std::string path_;
  std::atomic<bool> done_ = false;
  std::thread thread_;
};

std::int64_t sizeOf(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(filePath(path), error);
  return error ? 0 : static_cast<std::int64_t>(size);
}

std::string reason(const qvUtil::Error& error) {
  switch (error.num()) {
  case 6:
    return "there is no such file";
  case 7:
    return "it cannot be read, or is 2 GiB or larger";
  case 8:
    return "it changed its size while it was read";
  case 9:
    return "it could not be read to its end";
  case 10:
    return "it could not be written; the disk may be full";
  case 11:
    return "a package cannot hold a reserved or empty name";
  case 12:
    return "a package cannot hold this name";
  case 13:
    return "there is no such entry";
  case 15:
    return "the package could not be written";
  case 16: // also where the disk was full before the file's end
    return "it changed its size while it was read, or the disk is full";
  default:
    break;
  }
  std::string text = error.message();
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

/// Marks the directory as changed, by an empty entry that comes and goes: a package that only filled an exact
/// hole, or that holds nothing, would not write it.
bool touchDirectory(ioPackageFile& package) {
  IString emptyName = package.getPackageFileName();
  emptyName.append(IString(".empty"));
  const EmptyFile empty(emptyName);
  if (!empty.good()) return false;
  IString name("qvpackage");
  while (package.getEntry(name)) name.append(IString("-"));
  return !package.addEntry(emptyName, name, false) && !package.deleteEntry(name);
}

/// Writes the directory and makes sure that what is on the disk is what is in memory.
bool finish(ioPackageFile& package) {
  if (package.update()) return false;
  const auto isOnDisk = [&] {
    ioPackageFile written;
    if (written.open(package.getPackageFileName()) || written.size() != package.size()) return false;
    for (const auto& entry : package.getDirectory()) {
      const ioPackageFileEntry* there = written.getEntry(entry.first);
      const ioPackageFileEntry* here = package.getEntry(entry.second);
      if (!here || !there || here->getOffset() != there->getOffset() || here->getSize() != there->getSize() ||
          here->getCompressed() != there->getCompressed() || here->getTimeStamp() != there->getTimeStamp())
        return false;
    }
    return true;
  };
  if (isOnDisk()) return true;
  return touchDirectory(package) && !package.update() && isOnDisk();
}

/// What `path` leads to, where it is a link.
std::string followed(const std::string& path) {
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(filePath(path), error))) return path;
  const std::u8string target = fs::canonical(filePath(path), error).u8string();
  return error ? path : std::string(reinterpret_cast<const char*>(target.data()), target.size());
}

/// A package that is changed in a copy beside it, and takes its place at the end.
class SafeChange {
public:
  explicit SafeChange(const std::string& package)
      : path_(package), save_(Filename(fromNative(followed(package)))) {
    if (save_.init()) return;
    fail(path_, "it cannot be written");
    good_ = false;
  }

  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] const IString& workName() const { return save_.getTempFilename().name(); }
  [[nodiscard]] std::string workPath() const { return toNative(workName()); }

  /// Copies the package to the work file. False, and reported, where it cannot be.
  [[nodiscard]] bool beginWithCopy() {
    std::error_code error;
    if (!fs::is_regular_file(filePath(path_), error)) return giveUp("there is no such package");
    qvUtil::Error failure;
    {
      const GrowthWatch watch("copying", workPath(), sizeOf(path_));
      failure = qvOS::fileCopy(save_.getMainFilename(), save_.getTempFilename(), false);
    }
    return !failure || giveUp("a copy of it could not be written");
  }

  /// Puts the work file into place.
  void commit() {
    if (!save_.finalize()) (void)giveUp("it could not be put into place");
  }

  /// Leaves the old package as it is.
  bool giveUp(const std::string& why) {
    fail(path_, why);
    save_.invalidate();
    good_ = false;
    return false;
  }

private:
  std::string path_;
  qvOS::ProtectedWrite save_;
  bool good_ = true;
};

/// Opens the work file as a package.
bool openWork(SafeChange& change, ioPackageFile& package) {
  if (!change.good()) return false;
  const qvUtil::Error error = package.open(change.workName());
  return !error || change.giveUp(error.num() == 17 ? "this is no package, or it is damaged" : reason(error));
}

/// Adds the sources. @return how many were added, or nothing where the change must be given up.
std::optional<std::size_t> addSources(ioPackageFile& package, SafeChange& change,
                                      const std::vector<Source>& sources, bool compress) {
  Progress progress("storing", static_cast<std::int64_t>(sources.size()));
  std::size_t added = 0;
  for (const Source& source : sources) {
    const bool replaces = package.getEntry(source.name) != nullptr;
    const qvUtil::Error error = package.addEntry(fromNative(source.path), source.name, compress);
    progress.advance(1);
    if (!error) {
      ++added;
      continue;
    }
    fail(source.path, reason(error));
    const bool lostEntry = replaces && !package.getEntry(source.name);
    if (lostEntry || error.num() == 10 || error.num() == 15)
      return change.giveUp("left as it was"), std::nullopt;
  }
  return added;
}

void finishAndCommit(ioPackageFile& package, SafeChange& change) {
  if (!finish(package)) {
    change.giveUp("its directory could not be written");
    return;
  }
  package.close();
  change.commit();
}

std::vector<Source> sourcesOf(const CommandLine& line) {
  const std::vector<std::string> paths(line.words.begin() + 1, line.words.end());
  return collect(paths, line.wordOf("from"), line.words[0]);
}

} // namespace

void createPackage(const CommandLine& line) {
  const std::string& target = line.words[0];
  if (exists(target)) return fail(target, "it exists already");
  // Before there is a file to work on, which might lie below one of the paths.
  const std::vector<Source> sources = sourcesOf(line);
  SafeChange change(target);
  if (!change.good()) return;
  const std::optional<fs::perms> permissions = EmptyFile(change.workName()).permissions();
  if (!permissions) return fail(target, "it cannot be created");
  ioPackageFile package;
  if (!openWork(change, package) || !addSources(package, change, sources, line.has("compress"))) return;
  std::error_code ignored;
  fs::permissions(filePath(change.workPath()), *permissions, ignored);
  finishAndCommit(package, change);
}

void addToPackage(const CommandLine& line) {
  const std::vector<Source> sources = sourcesOf(line);
  SafeChange change(line.words[0]);
  if (!change.good() || !change.beginWithCopy()) return;
  ioPackageFile package;
  if (!openWork(change, package)) return;
  const std::optional<std::size_t> added = addSources(package, change, sources, line.has("compress"));
  if (added && *added > 0) finishAndCommit(package, change);
}

void removeFromPackage(const CommandLine& line) {
  SafeChange change(line.words[0]);
  if (!change.good() || !change.beginWithCopy()) return;
  ioPackageFile package;
  if (!openWork(change, package)) return;
  bool removed = false;
  for (auto word = line.words.begin() + 1; word != line.words.end(); ++word) {
    if (const qvUtil::Error error = package.deleteEntry(namedBy(*word, package)))
      fail(*word, reason(error));
    else
      removed = true;
  }
  if (removed) finishAndCommit(package, change);
}

void compactPackage(const CommandLine& line) {
  const std::string& source = line.words[0];
  const std::string& target = line.words[1];
  std::error_code error;
  if (!fs::is_regular_file(filePath(source), error)) return fail(source, "there is no such package");
  const bool replaces = exists(target);
  if (replaces && !fs::is_regular_file(filePath(target), error)) return fail(target, "this is no file");
  ioPackageFile package;
  if (const qvUtil::Error failure = package.open(fromNative(source)))
    return fail(source, failure.num() == 17 ? "this is no package, or it is damaged" : reason(failure));
  SafeChange change(target);
  if (!change.good()) return;
  std::optional<fs::perms> permissions = EmptyFile(change.workName()).permissions();
  if (!permissions) return fail(target, "it cannot be created");
  if (replaces) permissions = fs::status(filePath(target), error).permissions();
  qvUtil::Error failure;
  {
    const GrowthWatch watch("copying", change.workPath(), sizeOf(source));
    failure = package.write(change.workName());
  }
  if (failure) {
    change.giveUp(failure.num() == 16 ? "it could not be written; the disk may be full" : reason(failure));
    return;
  }
  fs::permissions(filePath(change.workPath()), *permissions, error);
  finishAndCommit(package, change);
}
