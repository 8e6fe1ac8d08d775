#include "paths.h"

#include "package.h"
#include "report.h"

#include "Base/IO/ioPackageFile.h"
#include "Base/OS/qvOSDirectoryIterator.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>

namespace fs = std::filesystem;
using qvString::IString;

namespace {

std::string text(const fs::path& path) {
  const std::u8string bytes = path.u8string();
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

/// The names of a directory's entries, sorted.
std::vector<std::string> entriesOf(const std::string& directory) {
  std::vector<std::string> names;
  qvOS::DirectoryIterator walk{qvOS::Filename(fromNative(directory))};
  while (walk.next()) names.push_back(toNative(walk.name()));
  if (walk.error()) fail(directory, "the directory cannot be read");
  std::sort(names.begin(), names.end());
  return names;
}

/// `path` from the root on, without ".", ".." and doubled separators as far as the text tells.
fs::path fromRoot(const fs::path& path) {
  std::error_code ignored;
  return fs::absolute(path, ignored).lexically_normal();
}

/// A path and what it is called relative to the directory of -from.
struct Named {
  fs::path path;
  fs::path name;
};

class Collector {
public:
  Collector(const std::optional<std::string>& from, const std::string& package)
      : package_(filePath(package)), packageExists_(exists(package)) {
    if (from) base_ = fromRoot(filePath(*from));
  }

  /// A path from the command line: a link there is followed, since the user named it.
  void addPath(const fs::path& path) {
    const Named named{path, nameOf(path)};
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) return fail(text(path), "there is no such file");
    if (fs::is_directory(status)) return addDirectory(named);
    addFile(named, status);
  }

  std::vector<Source> sources;

private:
  void addDirectory(const Named& top) {
    std::vector<Named> pending{top};
    while (!pending.empty()) {
      const Named directory = std::move(pending.back());
      pending.pop_back();
      std::vector<Named> folders;
      for (const std::string& name : entriesOf(text(directory.path)))
        addEntry(inside(directory, filePath(name)), folders);
      pending.insert(pending.end(), std::make_move_iterator(folders.rbegin()),
                     std::make_move_iterator(folders.rend()));
    }
  }

  [[nodiscard]] Named inside(const Named& directory, const fs::path& name) const {
    const fs::path path = directory.path / name;
    if (directory.name == ".") return {path, name};
    // On the way from above the base to it, what lies in the base is found anew.
    const bool isOutside = !base_.empty() && directory.name.begin()->native() == fs::path("..").native();
    return {path, isOutside ? nameOf(path) : directory.name / name};
  }

  void addEntry(const Named& entry, std::vector<Named>& folders) {
    std::error_code error;
    const fs::file_status status = fs::status(entry.path, error);
    if (fs::is_directory(status)) {
      if (!fs::is_symlink(fs::symlink_status(entry.path, error))) folders.push_back(entry);
    } else if (fs::exists(status)) {
      addFile(entry, status);
    } else {
      const bool isLink = fs::is_symlink(fs::symlink_status(entry.path, error));
      fail(text(entry.path), isLink ? "the link leads nowhere" : "it cannot be looked at");
    }
  }

  void addFile(const Named& file, const fs::file_status& status) {
    std::error_code error;
    const std::string path = text(file.path);
    if (!fs::is_regular_file(status)) return fail(path, "this is no file");
    if (packageExists_ && fs::equivalent(file.path, package_, error))
      return fail(path, "this is the package itself");
    if (!base_.empty() && (file.name.empty() || *file.name.begin() == ".."))
      return fail(path, "this lies outside the directory of -from");
    const std::string wanted = text(file.name);
    IString name = fromNative(wanted);
    ioPackageFile::cleanupName(name);
    if (!isExact(name, wanted)) return fail(path, "a package cannot hold this name exactly");
    const auto [taken, isNew] = taken_.emplace(nameText(name), sources.size());
    if (isNew) return sources.push_back({path, name});
    if (fromRoot(filePath(sources[taken->second].path)) != fromRoot(file.path))
      fail(path, "its name in the package is taken: " + taken->first);
  }

  /// The name that a path has; it begins with ".." outside the base.
  [[nodiscard]] fs::path nameOf(const fs::path& path) const {
    fs::path name = base_.empty() ? path.lexically_normal() : fromRoot(path).lexically_relative(base_);
    // A separator at the end says that this is a directory, and is no part of the name.
    return name.has_filename() || !name.has_relative_path() ? name : name.parent_path();
  }

  /// True where the cleaned name still says what was wanted, apart from leading separators, "..", drive
  /// letters, and the kind of separators.
  static bool isExact(const IString& name, const std::string& wanted) {
    if (name.isEmpty() || name == IString(".") || name == IString("..")) return false;
    bool clean = false;
    const IString stored(name.asUTF8(&clean), qvString::UTF8Encoding, nullptr);
    if (!clean || stored != name) return false;
    const std::string expected = text(fs::path(filePath(wanted).generic_u8string()));
    const std::string got = nameText(name);
    return expected.size() >= got.size() &&
           expected.compare(expected.size() - got.size(), got.size(), got) == 0;
  }

  fs::path package_;
  bool packageExists_;
  fs::path base_;
  std::map<std::string, std::size_t> taken_; // names, and where in `sources` they stand
};

} // namespace

std::vector<Source> collect(const std::vector<std::string>& paths, const std::optional<std::string>& from,
                            const std::string& package) {
  Collector collector(from, package);
  for (const std::string& path : paths) collector.addPath(filePath(path));
  return std::move(collector.sources);
}

bool staysInside(const IString& name) {
  const std::string path = nameText(name);
  if (path.empty() || path[0] == '/' || path[0] == '\\') return false;
  if (path.size() > 1 && path[1] == ':') return false;
  for (std::size_t begin = 0, end = 0; begin <= path.size(); begin = end + 1) {
    end = std::min(path.find_first_of("/\\", begin), path.size());
    if (path.compare(begin, end - begin, "..") == 0) return false;
  }
  return true;
}

bool exists(const std::string& path) {
  std::error_code error;
  return fs::symlink_status(filePath(path), error).type() != fs::file_type::not_found;
}

bool makeEmptyFile(const std::string& path) {
  std::ofstream file(filePath(path), std::ios::binary | std::ios::trunc);
  return file.good();
}
