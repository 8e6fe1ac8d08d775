// Directory walks, and the volumes that paths lie on.
#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <cwchar>
#include <memory>

namespace qvPlatform {

namespace {

/// An open walk. The system gives the first entry when it starts.
struct Walk {
  ~Walk() {
    if (find != INVALID_HANDLE_VALUE) ::FindClose(find);
  }

  std::wstring directory; ///< With a separator at its end.
  HANDLE find = INVALID_HANDLE_VALUE;
  WIN32_FIND_DATAW entry;
  bool hasEntry = false; ///< `entry` is yet to be told.
  std::string name;
};

Walk* asWalk(void* stream) { return static_cast<Walk*>(stream); }

FileKind kindOf(const WIN32_FIND_DATAW& entry) {
  if (isLink(entry.dwFileAttributes, entry.dwReserved0)) return FileKind::link;
  return entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY ? FileKind::directory : FileKind::file;
}

bool isFile(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::wstring withSeparator(const wchar_t* path) {
  std::wstring result(path);
  if (!result.ends_with(L'\\')) result += L'\\';
  return result;
}

/// Where the volume of a path is mounted, with a separator at its end; empty where it failed.
std::wstring volumeOf(const wchar_t* path) {
  std::wstring root(std::wcslen(path) + MAX_PATH, L'\0');
  const bool found = ::GetVolumePathNameW(path, root.data(), static_cast<DWORD>(root.size()));
  return found ? root.c_str() : std::wstring();
}

} // namespace

int Directory::open(const char* path) noexcept {
  close();
  if (const int refused = beforeCall("opendir")) return refused;
  auto walk = std::make_unique<Walk>();
  int error = pathCall("open", path, [&](const wchar_t* system) {
    walk->directory = withSeparator(system);
    walk->find = ::FindFirstFileW((walk->directory + L'*').c_str(), &walk->entry);
    if (walk->find != INVALID_HANDLE_VALUE) return true;
    const DWORD failed = ::GetLastError();
    ::SetLastError(isFile(system) ? ERROR_DIRECTORY : failed);
    return false;
  });
  walk->hasEntry = !error;
  // Only a directory that is there and empty, a volume's own, holds no file at all.
  if (error == ERROR_FILE_NOT_FOUND && !walk->directory.empty()) error = 0;
  if (!error) stream_ = walk.release();
  return error;
}

void Directory::close() noexcept {
  delete asWalk(stream_);
  stream_ = nullptr;
  name_ = nullptr;
}

int Directory::next(const char** name) noexcept {
  if (!stream_) return ERROR_INVALID_HANDLE;
  if (const int refused = beforeCall("readdir")) return refused;
  Walk& walk = *asWalk(stream_);
  const bool found =
      walk.hasEntry || (walk.find != INVALID_HANDLE_VALUE && ::FindNextFileW(walk.find, &walk.entry));
  if (!found && walk.find != INVALID_HANDLE_VALUE && ::GetLastError() != ERROR_NO_MORE_FILES)
    return lastError();
  walk.hasEntry = false;
  if (found) walk.name = nativeText(walk.entry.cFileName);
  name_ = found ? walk.name.c_str() : nullptr;
  kind_ = found ? kindOf(walk.entry) : FileKind::other;
  *name = name_;
  return 0;
}

bool Directory::leadsToDirectory() const noexcept {
  if (kind_ != FileKind::link || !name_) return kind_ == FileKind::directory;
  const Walk& walk = *asWalk(stream_);
  FileInfo info;
  const std::string path = nativeText(walk.directory + walk.entry.cFileName);
  return !queryFile(path.c_str(), &info) && info.kind == FileKind::directory;
}

int queryVolumeSpace(const char* path, VolumeSpace* space) noexcept {
  return pathCall("volume", path, [&](const wchar_t* system) {
    ULARGE_INTEGER available;
    ULARGE_INTEGER total;
    // The call takes directories only, and of a network name the separator.
    const std::wstring place = isFile(system) ? volumeOf(system) : withSeparator(system);
    if (place.empty() || !::GetDiskFreeSpaceExW(place.c_str(), &available, &total, nullptr)) return false;
    *space = {total.QuadPart, available.QuadPart};
    return true;
  });
}

int queryRemote(const char* path, bool* remote) noexcept {
  return pathCall("volume", path, [&](const wchar_t* system) {
    const std::wstring root = volumeOf(system);
    if (root.empty()) return false;
    *remote = ::GetDriveTypeW(root.c_str()) == DRIVE_REMOTE;
    return true;
  });
}

} // namespace qvPlatform
