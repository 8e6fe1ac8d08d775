// A native path is the wide path itself, written as UTF-8. A file system checks no pairs of surrogates, so
// that a lone one has the three bytes which UTF-8 would give to its code, and every name keeps its own bytes.
#include "Base/Platform/qvPlatformPath.h"
#include "Base/Platform/qvPlatformSurrogate.h"
#include "Base/Platform/qvPlatformText.h"

#include <string_view>

namespace qvPlatform {

namespace {

using qv::WChar;
using Wide = std::basic_string<WChar>;
using WideView = std::basic_string_view<WChar>;

/// The unit by which `encodeNative` and `decodeNative` know a byte that is no part of UTF-8.
constexpr WChar unitOf(unsigned byte) { return static_cast<WChar>(0xDC00 + byte); }

constexpr bool isTrailUnit(WChar c) { return c >= unitOf(0x80) && c <= unitOf(0xBF); }

/// Whether the three units stand for the bytes of a lone surrogate.
bool isLone(WideView units) {
  return units.size() >= 3 && units[0] == unitOf(0xED) && units[1] >= unitOf(0xA0) && isTrailUnit(units[1]) &&
         isTrailUnit(units[2]);
}

Wide withLoneAsBytes(WideView path) {
  Wide result;
  result.reserve(path.size());
  for (std::size_t i = 0; i < path.size(); ++i) {
    const unsigned c = path[i];
    if (!text::isSurrogate(c)) {
      result += path[i];
    } else if (text::isHigh(c) && i + 1 < path.size() && text::isLow(path[i + 1])) {
      result.append(path.substr(i++, 2));
    } else {
      result += unitOf(0xE0 | c >> 12);
      result += unitOf(0x80 | (c >> 6 & 0x3F));
      result += unitOf(0x80 | (c & 0x3F));
    }
  }
  return result;
}

Wide withBytesAsLone(WideView path) {
  Wide result;
  result.reserve(path.size());
  for (std::size_t i = 0; i < path.size(); ++i) {
    const bool lone = isLone(path.substr(i));
    result += lone ? static_cast<WChar>(0xD000 | (path[i + 1] & 0x3F) << 6 | (path[i + 2] & 0x3F)) : path[i];
    if (lone) i += 2;
  }
  return result;
}

} // namespace

std::string nativePath(const WChar* path, std::size_t length) {
  const WideView whole(path, length);
  return whole.find(WChar(0)) == WideView::npos ? encodeNative(withLoneAsBytes(whole)) : std::string();
}

std::basic_string<WChar> widePath(const char* path, std::size_t length) {
  return withBytesAsLone(decodeNative({path, length}));
}

} // namespace qvPlatform
