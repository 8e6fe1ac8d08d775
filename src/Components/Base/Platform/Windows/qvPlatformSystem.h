// How the files of this folder reach the system: its header, its calls and handles, and paths in the one form
// in which every call takes them.
#pragma once

#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"

#include <string>
#include <utility>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace qvPlatform {

/// Announces `name`, then makes a call that answers as most of the system's do: false where it failed.
template <class Call>
[[nodiscard]] int systemCall(const char* name, Call call) noexcept {
  return retryCall(name, [&] { return call() ? 0 : -1; });
}

/// A native path as the system takes it: wide, absolute, and behind "\\?\" or, for a network name,
/// "\\?\UNC\", so that names longer than 260 units work like all others. What stands behind "\\?\" already is
/// taken as it is, and a device such as "NUL" stays one.
class SystemPath {
public:
  explicit SystemPath(const char* native);

  /// True where the path may name something; otherwise it leaves a number for `lastError`.
  [[nodiscard]] bool isValid() const noexcept {
    if (error_) ::SetLastError(error_);
    return !error_;
  }
  [[nodiscard]] const wchar_t* get() const noexcept { return text_.c_str(); }

private:
  std::wstring text_;
  DWORD error_ = 0;
};

/// The same as `systemCall` for a call on a path, which it gets in the system's form.
template <class Call>
[[nodiscard]] int pathCall(const char* name, const char* path, Call call) noexcept {
  const SystemPath system(path);
  return systemCall(name, [&] { return system.isValid() && call(system.get()); });
}

/// Lets `call` fill a buffer of so many units that the text fits. It returns the length, or the size that it
/// wants, or 0 where it failed.
template <class Call>
[[nodiscard]] std::wstring filledText(Call call) {
  std::wstring text(MAX_PATH, L'\0');
  for (;;) {
    const auto room = static_cast<DWORD>(text.size());
    const DWORD length = call(text.data(), room);
    text.resize(length == room ? 2 * std::size_t(room) : length);
    if (length < room) return text;
  }
}

/// The system's handle of something open, closed with the object.
class Handle {
public:
  Handle() noexcept = default;
  ~Handle() {
    if (isOpen()) ::CloseHandle(value_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  [[nodiscard]] bool isOpen() const noexcept { return value_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE get() const noexcept { return value_; }
  [[nodiscard]] HANDLE release() noexcept { return std::exchange(value_, INVALID_HANDLE_VALUE); }
  void set(HANDLE value) noexcept { value_ = value; }

private:
  HANDLE value_ = INVALID_HANDLE_VALUE;
};

/// Opens what a path names, as operation `name`, in a way that lets others read, write, rename and delete it
/// meanwhile. The handle is not inherited by a started program.
[[nodiscard]] int openHandle(const char* name, const char* path, DWORD access, DWORD disposition, DWORD flags,
                             Handle* handle) noexcept;

/// The handle under a descriptor of the C runtime.
[[nodiscard]] HANDLE handleOf(FileHandle file) noexcept;

/// True where a file with these attributes and this reparse tag is a link: a symbolic link or a directory
/// that stands for another place.
[[nodiscard]] bool isLink(DWORD attributes, DWORD tag) noexcept;
/// The same of what was opened as itself, with FILE_FLAG_OPEN_REPARSE_POINT.
[[nodiscard]] bool isLink(HANDLE handle) noexcept;

/// A path of the system without the mark of the extended form.
[[nodiscard]] std::wstring plainForm(const std::wstring& path);

/// The file of a module, of this program for null, in the plain form, whatever form it was loaded under;
/// empty where it failed.
[[nodiscard]] std::wstring moduleFile(HMODULE module);

/// The system's words for `number`, without a line end; empty where it has none.
[[nodiscard]] std::wstring systemText(int number);

/// The native form of a text of the system.
[[nodiscard]] std::string nativeText(const std::wstring& text);

} // namespace qvPlatform
