// Names of files and directories: made, changed and removed.
#include "Base/Platform/Windows/qvPlatformSystem.h"
#include "Base/Platform/qvPlatformPath.h"

#include <cstring>

namespace qvPlatform {

namespace {

/// A call on two paths, which it gets in the system's form.
template <class Call>
int pairCall(const char* name, const char* from, const char* to, Call call) {
  const SystemPath source(from);
  return pathCall(name, to,
                  [&](const wchar_t* target) { return source.isValid() && call(source.get(), target); });
}

bool isDirectoryLink(const wchar_t* path) {
  const DWORD attributes = ::GetFileAttributesW(path);
  constexpr DWORD both = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & both) != both) return false;
  // Directories that are kept elsewhere and fetched when needed have such a point too, and are no links.
  constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  constexpr DWORD itself = FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
  Handle handle;
  handle.set(::CreateFileW(path, FILE_READ_ATTRIBUTES, share, nullptr, OPEN_EXISTING, itself, nullptr));
  return handle.isOpen() && isLink(handle.get());
}

} // namespace

int deleteFile(const char* path) noexcept {
  return pathCall("unlink", path, [](const wchar_t* system) {
    // A link to a directory goes the way of a directory; what it leads to stays.
    return isDirectoryLink(system) ? ::RemoveDirectoryW(system) : ::DeleteFileW(system);
  });
}

int renameFile(const char* from, const char* to) noexcept {
  FileInfo info;
  if (std::strcmp(from, to) == 0) return queryLink(from, &info);
  return pairCall("rename", from, to, [](const wchar_t* source, const wchar_t* target) {
    return ::MoveFileExW(source, target, 0);
  });
}

int copyLink(const char* from, const char* to) noexcept {
  FileInfo info;
  if (const int error = queryLink(from, &info)) return error;
  if (const int refused = beforeCall("readlink")) return refused;
  if (info.kind != FileKind::link) return ERROR_NOT_A_REPARSE_POINT;
  return pairCall("symlink", from, to, [](const wchar_t* source, const wchar_t* target) {
    if (isDirectoryLink(source)) return ::CreateDirectoryExW(source, target, nullptr);
    constexpr DWORD flags = COPY_FILE_COPY_SYMLINK | COPY_FILE_FAIL_IF_EXISTS;
    return ::CopyFileExW(source, target, nullptr, nullptr, nullptr, flags);
  });
}

int makeNamedBySystem(const char* directory, const char* prefix, std::string* made) {
  const std::wstring folder = widePath(directory, std::strlen(directory));
  const std::wstring start = widePath(prefix, std::strlen(prefix));
  constexpr std::size_t longest = MAX_PATH - 14; // the call leaves no more to the directory
  if (folder.size() > longest) return errorNumber(ErrorKind::tooLong);
  wchar_t name[MAX_PATH] = L"";
  constexpr UINT makeTheFile = 0;
  const int error = systemCall(
      "open", [&] { return ::GetTempFileNameW(folder.c_str(), start.c_str(), makeTheFile, name) != 0; });
  if (error == ERROR_DIRECTORY) return ERROR_PATH_NOT_FOUND;
  if (!error) *made = nativeText(name);
  return error;
}

int makeDirectory(const char* path) noexcept {
  return pathCall("mkdir", path, [](const wchar_t* system) { return ::CreateDirectoryW(system, nullptr); });
}

int removeDirectory(const char* path) noexcept {
  return pathCall("rmdir", path, [](const wchar_t* system) { return ::RemoveDirectoryW(system); });
}

} // namespace qvPlatform
