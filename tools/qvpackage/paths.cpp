#include "paths.h"

#include "report.h"

#include "Base/IO/ioPackageFile.h"
#include "Base/OS/qvOSDirectoryIterator.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"

#include <algorithm>
#include <fstream>
#include <map>

namespace fs = std::filesystem;
using qvString::IString;

IString fromNative(const std::string& path) { return qvOS::fromNativePath(qvString::CString(path.c_str())); }

std::string toNative(const IString& path) { return qvOS::toNativePath(path).asChar(); }

fs::path filePath(const std::string& native) {
  return fs::path(reinterpret_cast<const char8_t*>(native.c_str()));
}

std::string nameText(const IString& name) { return name.asUTF8(); }

namespace {

std::string text(const fs::path& path) {
  const std::u8string bytes = path.u8string();
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

std::string joined(const std::string& directory, const std::string& name) {
  return text(filePath(directory) / filePath(name));
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

class Collector {
public:
  Collector(const std::optional<std::string>& from, const std::string& package) : package_(package) {
    std::error_code ignored;
    if (from) base_ = fs::absolute(filePath(*from), ignored).lexically_normal();
  }

  /// A path from the command line: a link there is followed, since the user named it.
  void addPath(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(filePath(path), error);
    if (!fs::exists(status)) return fail(path, "there is no such file");
    if (fs::is_directory(status)) return addDirectory(path);
    addFile(path, status);
  }

  std::vector<Source> sources;

private:
  void addDirectory(const std::string& path) {
    std::vector<std::string> pending{path};
    while (!pending.empty()) {
      const std::string directory = pending.back();
      pending.pop_back();
      std::vector<std::string> folders;
      for (const std::string& name : entriesOf(directory)) addEntry(joined(directory, name), folders);
      pending.insert(pending.end(), folders.rbegin(), folders.rend());
    }
  }

  void addEntry(const std::string& path, std::vector<std::string>& folders) {
    std::error_code error;
    const fs::file_status status = fs::status(filePath(path), error);
    if (!fs::exists(status)) return fail(path, "the link leads nowhere");
    if (!fs::is_directory(status)) return addFile(path, status);
    if (!fs::is_symlink(fs::symlink_status(filePath(path), error))) folders.push_back(path);
  }

  void addFile(const std::string& path, const fs::file_status& status) {
    std::error_code error;
    if (!fs::is_regular_file(status)) return fail(path, "this is no file");
    if (fs::equivalent(filePath(path), filePath(package_), error))
      return fail(path, "this is the package itself");
    const std::string wanted = entryName(path);
    if (wanted.empty()) return fail(path, "this lies outside the directory of -from");
    IString name = fromNative(wanted);
    ioPackageFile::cleanupName(name);
    if (!isExact(name, wanted)) return fail(path, "a package cannot hold this name exactly");
    const std::string key = nameText(name);
    const std::string where = text(fs::absolute(filePath(path), error).lexically_normal());
    const auto [taken, isNew] = taken_.emplace(key, where);
    if (isNew) return sources.push_back({path, name});
    if (taken->second != where) fail(path, "its name in the package is taken: " + key);
  }

  /// The name that the path asks for, with the platform's own separators; empty for one outside the base.
  [[nodiscard]] std::string entryName(const std::string& path) const {
    if (base_.empty()) return text(filePath(path).lexically_normal());
    std::error_code ignored;
    const fs::path relative =
        fs::absolute(filePath(path), ignored).lexically_normal().lexically_relative(base_);
    if (relative.empty() || relative == "." || *relative.begin() == "..") return {};
    return text(relative);
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

  const std::string& package_;
  fs::path base_;
  std::map<std::string, std::string> taken_;
};

} // namespace

std::vector<Source> collect(const std::vector<std::string>& paths, const std::optional<std::string>& from,
                            const std::string& package) {
  Collector collector(from, package);
  for (const std::string& path : paths) collector.addPath(path);
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

bool makeEmptyFile(const std::string& path) {
  std::ofstream file(filePath(path), std::ios::binary | std::ios::trunc);
  return file.good();
}
