#include "Base/String/qvStringConvert.h"

#include "Base/Platform/qvPlatformText.h"
#include "Base/String/qvStringLocale.h"

#include <algorithm>
#include <climits>
#include <string>

namespace qvString {

namespace {

constexpr unsigned int kTerminated = 0xFFFFFFFFu;
constexpr std::size_t kLongest = 0xFFFFFFFEu;

void set(bool* ok, bool value) noexcept {
  if (ok) *ok = value;
}

/// Stores the length of terminated text. False if it is above `count`; then nothing behind `count` + 1
/// characters has been looked at.
template <class C>
bool lengthWithin(const C* text, unsigned int count, std::size_t& length) noexcept {
  if (count == kTerminated) {
    length = std::char_traits<C>::length(text);
    return true;
  }
  const C* end = std::char_traits<C>::find(text, std::size_t{count} + 1, C());
  if (end) length = static_cast<std::size_t>(end - text);
  return end != nullptr;
}

/// Decodes text of the locale, each byte that is no character as the default character. Writes no terminator,
/// and nothing where `destination` is null.
qvPlatform::Converted decodeLocale(const char* source, std::size_t length, qv::WChar* destination) noexcept {
  LocaleDecoder decoder;
  qvPlatform::Converted result;
  for (const char *p = source, *end = source + length; p != end;) {
    LocaleDecoder::Character c = decoder.next(p, static_cast<std::size_t>(end - p));
    if (c.numMade == 0) {
      result.valid = false;
      c = {{getDefaultWChar(), 0}, 1, 1};
    }
    if (destination) std::copy_n(c.made, c.numMade, destination + result.count);
    result.count += static_cast<std::size_t>(c.numMade);
    p += c.numUsed;
  }
  return result;
}

/// Encodes strictly: stops, not valid, at the first character that the locale doesn't have.
qvPlatform::Converted encodeLocale(const qv::WChar* source, std::size_t length, char* destination) noexcept {
  LocaleEncoder encoder;
  qvPlatform::Converted result;
  for (const qv::WChar *p = source, *end = source + length; p != end;) {
    const LocaleEncoder::Character c = encoder.next(p, static_cast<std::size_t>(end - p));
    if (c.numMade == 0) return {result.count, false};
    if (destination) std::copy_n(c.made, c.numMade, destination + result.count);
    result.count += static_cast<std::size_t>(c.numMade);
    p += c.numUsed;
  }
  return result;
}

/// One byte for each unit, whatever it is.
void encodeLenient(const qv::WChar* source, std::size_t length, char* destination) noexcept {
  LocaleEncoder encoder;
  for (std::size_t i = 0; i < length; ++i) {
    const LocaleEncoder::Character c = encoder.next(source + i, 1);
    destination[i] = c.numMade == 1 ? c.made[0] : getDefaultMBChar();
  }
}

} // namespace

char getDefaultMBChar() noexcept { return '?'; }
qv::WChar getDefaultWChar() noexcept { return QV_W('?'); }

int getMultiByteStringSize(qv::WChar* destination, const char* source, unsigned int count) noexcept {
  if (!source) return 0;
  LocaleDecoder decoder;
  const std::size_t room = destination ? count : kLongest;
  std::size_t made = 0;
  const char* const end = source + std::char_traits<char>::length(source);
  for (const char* p = source; p != end && made < room;) {
    const LocaleDecoder::Character c = decoder.next(p, static_cast<std::size_t>(end - p));
    if (c.numMade == 0) return -1;
    if (made + static_cast<std::size_t>(c.numMade) > room) break;
    if (destination) std::copy_n(c.made, c.numMade, destination + made);
    made += static_cast<std::size_t>(c.numMade);
    p += c.numUsed;
  }
  if (destination && made < room) destination[made] = 0;
  return made <= INT_MAX ? static_cast<int>(made) : -1;
}

unsigned int MBStoWCS(const char* source, unsigned int sourceCount, qv::WChar* destination,
                      unsigned int destinationCount, bool* ok) noexcept {
  set(ok, true);
  std::size_t length = 0;
  if (!source || !lengthWithin(source, sourceCount, length)) return 0;
  if (length > kLongest) {
    set(ok, false);
    return 0;
  }
  if (!destination || destinationCount <= length) { // a byte never gives more than a unit
    const qvPlatform::Converted counted = decodeLocale(source, length, nullptr);
    set(ok, counted.valid);
    if (!destination) return static_cast<unsigned int>(counted.count);
    if (counted.count >= destinationCount) return 0;
  }
  const qvPlatform::Converted made = decodeLocale(source, length, destination);
  // Behind text with replacements the whole rest is zeroed, behind other text only a terminator stands.
  std::fill_n(destination + made.count, made.valid ? std::size_t{1} : destinationCount - made.count,
              qv::WChar());
  set(ok, made.valid);
  return static_cast<unsigned int>(made.count);
}

unsigned int WCStoMBS(const qv::WChar* source, unsigned int sourceCount, char* destination,
                      unsigned int destinationCount, bool* ok) noexcept {
  set(ok, true);
  std::size_t length = 0;
  if (!source || !lengthWithin(source, sourceCount, length)) return 0;
  const qvPlatform::Converted counted = encodeLocale(source, length, nullptr);
  const std::size_t size = counted.valid ? counted.count : length;
  set(ok, counted.valid && size <= kLongest);
  if (size > kLongest) return 0;
  if (!destination) return static_cast<unsigned int>(size);
  if (size >= destinationCount) return 0;
  if (counted.valid)
    encodeLocale(source, length, destination);
  else
    encodeLenient(source, length, destination);
  destination[size] = 0;
  return static_cast<unsigned int>(size);
}

int detectUTF8BOM(const char* source, int count) noexcept {
  if (!source || (count < 3 && count != -1)) return 0;
  return source[0] == '\xEF' && source[1] == '\xBB' && source[2] == '\xBF' ? 3 : 0;
}

unsigned int UTF8toWCS(const char* source, unsigned int sourceCount, qv::WChar* destination,
                       unsigned int destinationCount, bool skipBOMTest, bool* ok) noexcept {
  set(ok, false);
  if (!source) return 0;
  std::size_t length = sourceCount == kTerminated ? std::char_traits<char>::length(source) : sourceCount;
  if (length == 0) {
    set(ok, true);
    return 0;
  }
  if (!skipBOMTest) {
    const int mark = detectUTF8BOM(source, static_cast<int>(std::min<std::size_t>(length, INT_MAX)));
    source += mark;
    length -= static_cast<std::size_t>(mark);
  }
  const qvPlatform::Converted made = qvPlatform::decodeUtf8(source, length, destination, destinationCount);
  if (made.count == 0 || made.count > kLongest) return 0;
  set(ok, made.valid);
  return destination && made.count > destinationCount ? 0 : static_cast<unsigned int>(made.count);
}

unsigned int WCStoUTF8(const qv::WChar* source, unsigned int sourceCount, char* destination,
                       unsigned int destinationCount, bool* ok) noexcept {
  set(ok, false);
  if (!source) return 0;
  const std::size_t length =
      sourceCount == kTerminated ? std::char_traits<qv::WChar>::length(source) : sourceCount;
  if (length == 0) {
    set(ok, true);
    return 0;
  }
  const qvPlatform::Converted made = qvPlatform::encodeUtf8(source, length, destination, destinationCount);
  if (made.count > kLongest) return 0;
  set(ok, true);
  return destination && made.count > destinationCount ? 0 : static_cast<unsigned int>(made.count);
}

} // namespace qvString
