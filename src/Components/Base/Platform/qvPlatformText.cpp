#include "Base/Platform/qvPlatformText.h"

namespace qvPlatform {

namespace {

template <class To, class From>
using Converter = Converted (*)(const From* source, std::size_t size, To* destination,
                                std::size_t room) noexcept;

/// Converts into a string of the exact size; the common case, text that fits the worst case of a small
/// buffer, takes one pass.
template <class To, class From>
std::basic_string<To> toString(std::basic_string_view<From> source, Converter<To, From> convert,
                               bool* valid) {
  To small[512];
  const std::size_t room = sizeof small / sizeof(To);
  const bool isSmall = source.size() <= room / 3;
  const Converted first = convert(source.data(), source.size(), isSmall ? small : nullptr, room);
  std::basic_string<To> result;
  if (isSmall) {
    result.assign(small, first.count);
  } else {
    result.resize(first.count);
    convert(source.data(), source.size(), result.data(), first.count);
  }
  if (valid) *valid = first.valid;
  return result;
}

} // namespace

std::basic_string<qv::WChar> decodeUtf8(std::string_view source, bool* valid) {
  return toString<qv::WChar, char>(source, decodeUtf8, valid);
}

std::string encodeUtf8(std::basic_string_view<qv::WChar> source, bool* valid) {
  return toString<char, qv::WChar>(source, encodeUtf8, valid);
}

std::basic_string<qv::WChar> decodeNative(std::string_view source) {
  return toString<qv::WChar, char>(source, decodeNative, nullptr);
}

std::string encodeNative(std::basic_string_view<qv::WChar> source, bool* valid) {
  return toString<char, qv::WChar>(source, encodeNative, valid);
}

} // namespace qvPlatform
