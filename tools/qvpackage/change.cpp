#include "change.h"

#include "paths.h"
#include "report.h"

#include "Base/IO/ioPackageFile.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSProtectedWrite.h"
#include "Base/OS/qvOSTemporary.h"

#include <algorithm>

namespace fs = std::filesystem;
using qvOS::Filename;
using qvString::IString;

namespace {

/// A file name in the temporary directory; a file of that name is removed at the end.
class ScratchFile {
public:
  ScratchFile() : name_(qvOS::createTmpFilename(IString("scratch"), nullptr)) {}
  ~ScratchFile() {
    std::error_code ignored;
    fs::remove(filePath(toNative(name_.name())), ignored);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  [[nodiscard]] const IString& name() const { return name_.name(); }

private:
  Filename name_;
};

/// The permissions that the user's mask gives to a new file.
fs::perms permissionsOfNewFiles() {
  const ScratchFile probe;
  const std::string path = toNative(probe.name());
  std::error_code error;
  const bool made = makeEmptyFile(path);
  const fs::perms permissions = fs::status(filePath(path), error).permissions();
  return made && !error ? permissions : fs::perms::owner_read | fs::perms::owner_write;
}

std::string reason(const qvUtil::Error& error) {
  switch (error.num()) {
  case 6:
    return "there is no such file";
  case 7:
    return "it cannot be read, or is 2 GiB or larger";
  case 8:
  case 16:
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
  default:
    break;
  }
  std::string text = error.message();
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

/// True for a failure that may have taken the old entry of that name away.
bool mayHaveLostEntry(const qvUtil::Error& error) {
  return error.num() == 9 || error.num() == 10 || error.num() >= 15;
}

/// Marks the directory as changed, by an empty entry that comes and goes: a package that only filled an exact
/// hole, or that holds nothing, would not write it.
bool touchDirectory(ioPackageFile& package) {
  const ScratchFile empty;
  if (!makeEmptyFile(toNative(empty.name()))) return false;
  IString name("qvpackage");
  while (package.getEntry(name)) name.append(IString("-"));
  return !package.addEntry(empty.name(), name, false) && !package.deleteEntry(name);
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

/// A package that is changed in a copy beside it, and takes its place at the end.
class SafeChange {
public:
  explicit SafeChange(const std::string& package) : path_(package), save_(Filename(fromNative(package))) {
    if (save_.init()) return;
    fail(path_, "it cannot be written");
    good_ = false;
  }

  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] const IString& workName() const { return save_.getTempFilename().name(); }

  /// Copies the package to the work file. False, and reported, where it cannot be.
  [[nodiscard]] bool beginWithCopy() {
    std::error_code error;
    if (!fs::is_regular_file(filePath(path_), error)) return giveUp("there is no such package");
    if (qvOS::fileCopy(save_.getMainFilename(), save_.getTempFilename(), false))
      return giveUp("a copy of it could not be written");
    return true;
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
                                      const Arguments& arguments) {
  const std::string& target = arguments.words[0];
  const std::vector<std::string> paths(arguments.words.begin() + 1, arguments.words.end());
  const std::vector<Source> sources = collect(paths, arguments.from, target);
  Progress progress("storing", sources.size());
  std::size_t added = 0;
  for (const Source& source : sources) {
    const bool replaces = package.getEntry(source.name) != nullptr;
    const qvUtil::Error error = package.addEntry(fromNative(source.path), source.name, arguments.compress);
    progress.step();
    if (!error) {
      ++added;
      continue;
    }
    fail(source.path, reason(error));
    if ((replaces && mayHaveLostEntry(error)) || error.num() == 15)
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

bool exists(const std::string& path) {
  std::error_code error;
  return fs::symlink_status(filePath(path), error).type() != fs::file_type::not_found;
}

} // namespace

void createPackage(const Arguments& arguments) {
  const std::string& target = arguments.words[0];
  if (exists(target)) return fail(target, "it exists already");
  const fs::perms permissions = permissionsOfNewFiles();
  SafeChange change(target);
  ioPackageFile package;
  if (!openWork(change, package) || !addSources(package, change, arguments)) return;
  std::error_code ignored;
  fs::permissions(filePath(toNative(change.workName())), permissions, ignored);
  finishAndCommit(package, change);
}

void addToPackage(const Arguments& arguments) {
  SafeChange change(arguments.words[0]);
  if (!change.good() || !change.beginWithCopy()) return;
  ioPackageFile package;
  if (!openWork(change, package)) return;
  const std::optional<std::size_t> added = addSources(package, change, arguments);
  if (added && *added > 0) finishAndCommit(package, change);
}

void removeFromPackage(const Arguments& arguments) {
  SafeChange change(arguments.words[0]);
  if (!change.good() || !change.beginWithCopy()) return;
  ioPackageFile package;
  if (!openWork(change, package)) return;
  bool removed = false;
  for (auto word = arguments.words.begin() + 1; word != arguments.words.end(); ++word) {
    if (const qvUtil::Error error = package.deleteEntry(IString(word->c_str(), qvString::UTF8Encoding)))
      fail(*word, reason(error));
    else
      removed = true;
  }
  if (removed) finishAndCommit(package, change);
}

void compactPackage(const Arguments& arguments) {
  const std::string& source = arguments.words[0];
  const std::string& target = arguments.words[1];
  std::error_code error;
  if (!fs::is_regular_file(filePath(source), error)) return fail(source, "there is no such package");
  if (exists(target) && !fs::is_regular_file(filePath(target), error)) return fail(target, "this is no file");
  const fs::perms permissions =
      exists(target) ? fs::status(filePath(target), error).permissions() : permissionsOfNewFiles();
  ioPackageFile package;
  if (const qvUtil::Error failure = package.open(fromNative(source)))
    return fail(source, failure.num() == 17 ? "this is no package, or it is damaged" : reason(failure));
  SafeChange change(target);
  if (!change.good()) return;
  if (const qvUtil::Error failure = package.write(change.workName())) {
    change.giveUp(reason(failure));
    return;
  }
  fs::permissions(filePath(toNative(change.workName())), permissions, error);
  finishAndCommit(package, change);
}
