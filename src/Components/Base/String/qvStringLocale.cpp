#include "Base/String/qvStringLocale.h"

#include "Base/Platform/qvPlatformSurrogate.h"

#include <cstdint>

namespace qvString {

using namespace qvPlatform::text;

namespace {

constexpr std::size_t kInvalid = static_cast<std::size_t>(-1);
constexpr std::size_t kIncomplete = static_cast<std::size_t>(-2);

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
  return {{highOf(code), lowOf(code)}, 2, used};
}

LocaleEncoder::Character LocaleEncoder::convert(const qv::WChar* p, std::size_t available) noexcept {
  Character result;
  result.numMade = 0;
  result.numUsed = isHigh(p[0]) && available > 1 && isLow(p[1]) ? 2 : 1;
  const std::uint32_t code = result.numUsed == 2 ? joined(p[0], p[1]) : p[0];
  if (isSurrogate(code) || code > static_cast<std::uint32_t>(WCHAR_MAX)) return result;
  const std::size_t length = std::wcrtomb(result.made, static_cast<wchar_t>(code), &state_);
  if (length == kInvalid)
    state_ = {};
  else
    result.numMade = static_cast<int>(length);
  return result;
}

std::wstring runtimeForm(const qv::WChar* chars) {
  std::wstring form;
  for (; *chars; ++chars) {
    const bool isPair = sizeof(wchar_t) > 2 && isHigh(chars[0]) && isLow(chars[1]);
    form += static_cast<wchar_t>(isPair ? joined(chars[0], chars[1]) : chars[0]);
    chars += isPair;
  }
  return form;
}

} // namespace qvString
