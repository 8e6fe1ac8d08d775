#include "Base/Platform/qvPlatformPath.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <cstring>

namespace qvPlatform {

namespace {

/// Stores the text of a call as `filledText` makes it.
template <class Call>
int textOf(const char* name, std::string* path, Call call) {
  std::wstring text;
  const int error = systemCall(name, [&] { return !(text = filledText(call)).empty(); });
  if (!error) *path = nativeText(text);
  return error;
}

} // namespace

int workingDirectory(std::string* path) {
  return textOf("getcwd", path,
                [](wchar_t* buffer, DWORD room) { return ::GetCurrentDirectoryW(room, buffer); });
}

int setWorkingDirectory(const char* path) noexcept {
  // The current directory itself is never in the extended form.
  return pathCall("chdir", path, [path](const wchar_t*) {
    return ::SetCurrentDirectoryW(plainForm(widePath(path, std::strlen(path))).c_str());
  });
}

std::string temporaryDirectory() {
  std::wstring path = filledText([](wchar_t* buffer, DWORD room) { return ::GetTempPathW(room, buffer); });
  while (path.size() > 3 && path.ends_with(L'\\')) path.pop_back();
  return nativeText(path);
}

int executablePath(std::string* path) {
  std::wstring file;
  const int error = systemCall("executable", [&] { return !(file = moduleFile(nullptr)).empty(); });
  if (!error) *path = nativeText(file);
  return error;
}

int absolutePath(const char* path, std::string* absolute) {
  if (!*path) return ERROR_FILE_NOT_FOUND;
  const std::wstring wide = widePath(path, std::strlen(path));
  return textOf("getcwd", absolute, [&](wchar_t* buffer, DWORD room) {
    return ::GetFullPathNameW(wide.c_str(), room, buffer, nullptr);
  });
}

int realPath(const char* path, std::string* real) {
  Handle handle;
  if (const int error = openHandle("realpath", path, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, &handle))
    return error;
  const std::wstring name = filledText([&](wchar_t* buffer, DWORD room) {
    return ::GetFinalPathNameByHandleW(handle.get(), buffer, room, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
  });
  if (name.empty()) return lastError();
  *real = nativeText(plainForm(name));
  return 0;
}

} // namespace qvPlatform
