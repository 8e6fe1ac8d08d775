#include "Base/Platform/qvPlatformPath.h"

#include "Base/Platform/qvPlatformError.h"

#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace qvPlatform {

namespace {

/// Lets `call` fill a buffer that grows until the text fits. It returns the length, 0 for "does not fit", or
/// a negative value with `errno` set.
template <class Call>
int growingText(const char* name, std::string* text, Call call) {
  constexpr std::size_t largest = std::size_t(1) << 20;
  for (std::string buffer(256, '\0'); buffer.size() <= largest; buffer.resize(buffer.size() * 2)) {
    ssize_t length = 0;
    if (const int error = retryCall(
            name, [&] { return call(buffer); }, length))
      return error;
    if (length == 0) continue;
    text->assign(buffer, 0, static_cast<std::size_t>(length));
    return 0;
  }
  return ENAMETOOLONG;
}

/// A path under construction. It is `physical` as long as it holds no name that could be a link.
class AbsolutePath {
public:
  explicit AbsolutePath(std::string start) : text_(std::move(start)) {
    if (text_.size() == 1) text_.clear(); // The root, whose separator comes with the first name.
  }

  void add(std::string_view name) {
    if (name.empty() || name == ".") return;
    if (name == ".." && physical_) return leave();
    if (name != "..") physical_ = false;
    text_.append("/").append(name);
  }

  [[nodiscard]] std::string text() const { return text_.empty() ? "/" : text_; }

private:
  void leave() { text_.resize(text_.empty() ? 0 : text_.rfind('/')); }

  std::string text_;
  bool physical_ = true;
};

} // namespace

int workingDirectory(std::string* path) {
  return growingText("getcwd", path, [](std::string& buffer) -> ssize_t {
    if (::getcwd(buffer.data(), buffer.size())) return static_cast<ssize_t>(buffer.find('\0'));
    return errno == ERANGE ? 0 : -1;
  });
}

int setWorkingDirectory(const char* path) noexcept {
  return retryCall("chdir", [&] { return ::chdir(path); });
}

std::string temporaryDirectory() {
  const char* const chosen = ::getenv("TMPDIR");
  std::string path = chosen && chosen[0] == '/' ? chosen : "/tmp";
  path.erase(path.find_last_not_of('/') + 1);
  return path.empty() ? "/" : path;
}

int executablePath(std::string* path) {
  return growingText("executable", path, [](std::string& buffer) -> ssize_t {
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    return length < static_cast<ssize_t>(buffer.size()) ? length : 0;
  });
}

int absolutePath(const char* path, std::string* absolute) {
  const std::string_view whole = path;
  if (whole.empty()) return ENOENT;
  std::string start;
  if (whole[0] != '/')
    if (const int error = workingDirectory(&start)) return error;
  AbsolutePath result(std::move(start));
  for (std::size_t at = 0; at < whole.size();) {
    const std::size_t end = std::min(whole.find('/', at), whole.size());
    result.add(whole.substr(at, end - at));
    at = end + 1;
  }
  *absolute = result.text();
  return 0;
}

int realPath(const char* path, std::string* real) {
  if (const int refused = beforeCall("realpath")) return refused;
  const std::unique_ptr<char, decltype(&::free)> resolved(::realpath(path, nullptr), &::free);
  if (!resolved) return errno;
  *real = resolved.get();
  return 0;
}

} // namespace qvPlatform
