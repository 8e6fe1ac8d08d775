#include "Base/Platform/qvPlatformLibrary.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

namespace qvPlatform {

namespace {

/// Keeps the system from asking the user, about a missing disk for one.
class NoQuestions {
public:
  NoQuestions() noexcept : before_(::SetErrorMode(SEM_FAILCRITICALERRORS)) {}
  ~NoQuestions() { ::SetErrorMode(before_); }
  NoQuestions(const NoQuestions&) = delete;
  NoQuestions& operator=(const NoQuestions&) = delete;

private:
  UINT before_;
};

/// The loader tells the library its name as it was given here: the plain one, where that is not too long.
std::wstring loaderName(const wchar_t* file) {
  const std::wstring plain = plainForm(file);
  return plain.size() < MAX_PATH ? plain : file;
}

/// The system's words, some of which leave a place for the file that they are about.
std::string failureText(int error, std::string_view file) {
  std::string text = nativeText(systemText(error));
  const std::size_t place = text.find("%1");
  return place == std::string::npos ? text : text.replace(place, 2, file);
}

} // namespace

void* loadLibrary(const char* path, std::string* failure) {
  const NoQuestions scope;
  HMODULE library = nullptr;
  const int error = pathCall("loadLibrary", path, [&](const wchar_t* file) {
    library = ::LoadLibraryW(loaderName(file).c_str());
    return library != nullptr;
  });
  if (error) *failure = failureText(error, path);
  return error ? nullptr : library;
}

void* librarySymbol(void* library, const char* name, std::string* failure) {
  void* const symbol = reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
  if (!symbol) *failure = nativeText(systemText(lastError()));
  return symbol;
}

void unloadLibrary(void* library) noexcept { ::FreeLibrary(static_cast<HMODULE>(library)); }

} // namespace qvPlatform
