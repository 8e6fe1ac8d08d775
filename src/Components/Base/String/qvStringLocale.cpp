#include "Base/String/qvStringLocale.h"

#include <cstdint>

namespace qvString {

namespace {

constexpr std::size_t kInvalid = static_cast<std::size_t>(-1);
constexpr std::size_t kIncomplete = static_cast<std::size_t>(-2);

constexpr bool isSurrogate(std::uint32_t c) { return (c & 0xFFFFF800) == 0xD800; }
constexpr bool isHigh(std::uint32_t c) { return (c & 0xFFFFFC00) == 0xD800; }
constexpr bool isLow(std::uint32_t c) { return (c & 0xFFFFFC00) == 0xDC00; }

} // namespace

LocaleDecoder::Character LocaleDecoder::convert(const char* p, std::size_t available) noexcept {
  wchar_t wide = 0;
  const std::size_t length = std::mbrtowc(&wide, p, available, &state_);
  const std::uint32_t code = static_cast<std::uint32_t>(wide);
  if (length == kInvalid || length == kIncomplete || code > 0x10FFFF || isSurrogate(code)) {
    state_ = {};
    return {{0, 0}, 0, 1};
  }
  const int used = length == 0 ? 1 : static_cast<int>(length); // the length of a NUL is told as 0
  if (code <= 0xFFFF) return {{static_cast<qv::WChar>(code), 0}, 1, used};
  const qv::WChar high = static_cast<qv::WChar>(0xD7C0 + (code >> 10));
  const qv::WChar low = static_cast<qv::WChar>(0xDC00 | (code & 0x3FF));
  return {{high, low}, 2, used};
}

LocaleEncoder::Character LocaleEncoder::convert(const qv::WChar* p, std::size_t available) noexcept {
  Character result;
  result.numMade = 0;
  result.numUsed = isHigh(p[0]) && available > 1 && isLow(p[1]) ? 2 : 1;
  std::uint32_t code = p[0];
  if (result.numUsed == 2) code = 0x10000 + ((p[0] & 0x3FFu) << 10 | (p[1] & 0x3FFu));
  if (isSurrogate(code) || code > static_cast<std::uint32_t>(WCHAR_MAX)) return result;
  const std::size_t length = std::wcrtomb(result.made, static_cast<wchar_t>(code), &state_);
  if (length == kInvalid)
    state_ = {};
  else
    result.numMade = static_cast<int>(length);
  return result;
}

} // namespace qvString
