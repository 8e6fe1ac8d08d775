#include "Base/Platform/Windows/qvPlatformSystem.h"

#include "Base/Platform/qvPlatformPath.h"

#include <io.h>

#include <cstring>
#include <string_view>

namespace qvPlatform {

namespace {

constexpr std::size_t longestPath = 32767;

bool startsWith(const std::wstring& text, std::wstring_view start) { return text.starts_with(start); }

} // namespace

SystemPath::SystemPath(const char* native) {
  const std::size_t length = std::strlen(native);
  error_ = length == 0 ? ERROR_FILE_NOT_FOUND : length > 3 * longestPath ? ERROR_FILENAME_EXCED_RANGE : 0;
  if (error_) return;
  text_ = widePath(native, length);
  if (startsWith(text_, L"\\\\?\\")) return;
  const std::wstring full = filledText([this](wchar_t* buffer, DWORD room) {
    return ::GetFullPathNameW(text_.c_str(), room, buffer, nullptr);
  });
  if (full.empty()) {
    error_ = ::GetLastError();
  } else if (startsWith(full, L"\\\\?\\") || startsWith(full, L"\\\\.\\")) {
    text_ = full;
  } else {
    text_ = startsWith(full, L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
  }
}

int openHandle(const char* name, const char* path, DWORD access, DWORD disposition, DWORD flags,
               Handle* handle) noexcept {
  return pathCall(name, path, [&](const wchar_t* system) {
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    handle->set(::CreateFileW(system, access, share, nullptr, disposition, flags, nullptr));
    return handle->isOpen();
  });
}

HANDLE handleOf(FileHandle file) noexcept {
  return file < 0 ? INVALID_HANDLE_VALUE : reinterpret_cast<HANDLE>(_get_osfhandle(static_cast<int>(file)));
}

bool isLink(DWORD attributes, DWORD tag) noexcept {
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) && IsReparseTagNameSurrogate(tag);
}

bool isLink(HANDLE handle) noexcept {
  FILE_ATTRIBUTE_TAG_INFO tag{};
  return ::GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &tag, sizeof tag) &&
         isLink(tag.FileAttributes, tag.ReparseTag);
}

std::wstring plainForm(const std::wstring& path) {
  constexpr std::wstring_view network = L"\\\\?\\UNC\\";
  constexpr std::wstring_view extended = L"\\\\?\\";
  if (startsWith(path, network)) return L"\\\\" + path.substr(network.size());
  return startsWith(path, extended) ? path.substr(extended.size()) : path;
}

std::wstring moduleFile(HMODULE module) {
  return plainForm(
      filledText([&](wchar_t* buffer, DWORD room) { return ::GetModuleFileNameW(module, buffer, room); }));
}

std::string nativeText(const std::wstring& text) { return nativePath(text.data(), text.size()); }

} // namespace qvPlatform
