// Wide paths with drives and backslashes, as native paths with neither, and back.
#include "Base/Platform/qvPlatformPath.h"
#include "Base/Platform/qvPlatformText.h"

#include <algorithm>
#include <string_view>

namespace qvPlatform {

namespace {

using qv::WChar;
using WideView = std::basic_string_view<WChar>;

/// Lone surrogates that stand for a character of a native name which has a meaning of its own in a wide path.
constexpr WChar nativeBackslash = 0xDC5C;
constexpr WChar nativeColon = 0xDC3A;

bool isSeparator(WChar c) { return c == '\\' || c == '/'; }

bool startsWithPair(WideView path) {
  return path.size() >= 2 && isSeparator(path[0]) && isSeparator(path[1]);
}

bool isLongForm(WideView path) {
  return startsWithPair(path) && path.size() >= 4 && path[2] == '?' && isSeparator(path[3]);
}

bool startsWithDrive(WideView path) { return path.size() >= 2 && path[1] == ':'; }

bool isRootDrive(WideView path) { return path[0] == 'C' || path[0] == 'c'; }

/// Takes away what stands before the path on the one volume there is; false where the path is on no such
/// volume.
bool stripVolume(WideView& path) {
  if (isLongForm(path)) {
    path.remove_prefix(4);
    // The long form knows nothing but whole paths.
    if (!startsWithDrive(path) || path.size() < 3 || !isSeparator(path[2])) return false;
  } else if (startsWithPair(path)) {
    return false;
  }
  if (!startsWithDrive(path)) return true;
  if (!isRootDrive(path)) return false;
  path.remove_prefix(2);
  return true;
}

} // namespace

std::string nativePath(const WChar* path, std::size_t length) {
  WideView rest(path, length);
  if (rest.empty() || rest.find(WChar(0)) != WideView::npos || !stripVolume(rest)) return {};
  if (rest.empty()) return "."; // A bare drive is its current directory.
  bool valid = true;
  std::basic_string<WChar> text(rest);
  std::replace(text.begin(), text.end(), WChar('\\'), WChar('/'));
  std::string native = encodeNative(text, &valid);
  return valid ? native : std::string();
}

std::basic_string<WChar> widePath(const char* path, std::size_t length) {
  std::basic_string<WChar> wide = decodeNative({path, length});
  std::size_t nameStart = 0;
  for (std::size_t at = 0; at < wide.size(); ++at) {
    WChar& c = wide[at];
    if (c == '\\') c = nativeBackslash;
    if (c == ':' && at == nameStart + 1) c = nativeColon;
    if (c != '/') continue;
    c = '\\';
    nameStart = at + 1;
  }
  const bool absolute = length > 0 && path[0] == '/';
  return absolute ? QV_W("C:") + wide : wide;
}

} // namespace qvPlatform
