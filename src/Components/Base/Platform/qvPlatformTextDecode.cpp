#include "Base/Platform/qvPlatformText.h"
#include "Base/Platform/qvPlatformTextWords.h"

namespace qvPlatform {

namespace {

using namespace text;

constexpr std::uint32_t kEscapedByte = 0xDC00;
constexpr std::size_t kNoLimit = ~std::size_t{0};

inline std::uint32_t loadFour(const void* p) noexcept {
  std::uint32_t four;
  std::memcpy(&four, p, sizeof four);
  if constexpr (std::endian::native == std::endian::big) {
    four = four << 16 | four >> 16;
    four = (four & 0x00FF00FF) << 8 | (four >> 8 & 0x00FF00FF);
  }
  return four;
}

/// One pass over UTF-8 into a destination that holds the whole; `write` false only counts. Each step takes
/// what it can from `at` on and returns where it stopped; places travel by value, so that they stay in
/// registers.
template <Bad bad, bool write>
class Decoder {
public:
  Decoder(const char* source, std::size_t size, qv::WChar* destination, std::size_t room) noexcept
      : begin_(reinterpret_cast<const Byte*>(source)), end_(begin_ + size), to_(destination), room_(room) {}

  Converted run() const noexcept {
    Place at = {begin_, 0};
    bool valid = true;
    while (at.p != end_) {
      at = asciiRun(at);
      at = otherRun(at);
      if (at.p != end_ && *at.p >= 0x80) {
        valid = valid && bad == Bad::Escape;
        at = illFormed(at);
      }
    }
    return {at.count, valid};
  }

private:
  struct Place {
    const Byte* p;
    std::size_t count;
  };

  bool has(Place at, std::size_t bytes, std::size_t units) const noexcept {
    return static_cast<std::size_t>(end_ - at.p) >= bytes && room_ - at.count >= units;
  }

  Place put(Place at, std::uint32_t unit, std::size_t bytes) const noexcept {
    if constexpr (write) to_[at.count] = static_cast<qv::WChar>(unit);
    return {at.p + bytes, at.count + 1};
  }

  template <std::size_t N>
  void putAscii(Place at) const noexcept {
    if constexpr (write) widen<N>(at.p, to_ + at.count);
  }

  Place asciiRun(Place at) const noexcept {
    // Whole words are written, and as many letters of them count as are ASCII: no branch depends on where in
    // a word a run ends.
    while (has(at, 16, 16)) {
      const Word first = loadBytes(at.p) & eachByte(0x80);
      const Word second = loadBytes(at.p + 8) & eachByte(0x80);
      putAscii<16>(at);
      if ((first | second) == 0) {
        at = skip(at, 16);
        continue;
      }
      at = skip(at, first ? lowestByte(first) : 8 + lowestByte(second));
      if (end_ - at.p < 3 || !isTwo(at.p[0]) || !isTrail(at.p[1]) || at.p[2] >= 0x80) return at;
      at = put(at, (at.p[0] & 0x1Fu) << 6 | (at.p[1] & 0x3Fu), 2);
    }
    while (at.p != end_ && *at.p < 0x80) at = put(at, *at.p, 1);
    return at;
  }

  static Place skip(Place at, std::size_t letters) noexcept { return {at.p + letters, at.count + letters}; }
  static std::size_t lowestByte(Word bits) noexcept {
    return static_cast<std::size_t>(std::countr_zero(bits)) / 8;
  }

  /// Sequences of several bytes, and single ASCII characters between them. Stops at what is ill-formed.
  Place otherRun(Place at) const noexcept {
    while (at.p != end_) {
      const std::uint32_t lead = *at.p;
      if (lead < 0x80) {
        at = put(at, lead, 1);
        if (at.p == end_ || *at.p < 0x80) return at;
      } else if (lead < 0xE0) {
        const Byte* const before = at.p;
        at = twos(at);
        if (at.p == before) return at;
      } else if (lead < 0xF0) {
        const Byte* const before = at.p;
        at = threes(at);
        if (at.p == before) return at;
      } else {
        const std::uint32_t code = codeOfFour(at.p);
        if (code < 0x10000 || code > 0x10FFFF) return at;
        at = put(at, highOf(code), 0);
        at = put(at, lowOf(code), 4);
      }
    }
    return at;
  }

  static bool isTwo(std::uint32_t lead) noexcept { return lead >= 0xC2 && lead < 0xE0; }
  static bool isThree(std::uint32_t code) noexcept { return code >= 0x800 && !isSurrogate(code); }

  static constexpr std::uint32_t codeOfThree(std::uint32_t bytes) noexcept {
    return (bytes & 0xF) << 12 | (bytes >> 2 & 0xFC0) | (bytes >> 16 & 0x3F);
  }

  /// 0 where there is no lead of four with three trails.
  std::uint32_t codeOfFour(const Byte* p) const noexcept {
    if (end_ - p < 4 || p[0] > 0xF4 || !isTrail(p[1]) || !isTrail(p[2]) || !isTrail(p[3])) return 0;
    return (p[0] & 0x07u) << 18 | (p[1] & 0x3Fu) << 12 | (p[2] & 0x3Fu) << 6 | (p[3] & 0x3Fu);
  }

  Place twos(Place at) const noexcept {
    while (end_ - at.p >= 2 && isTwo(at.p[0]) && isTrail(at.p[1])) {
      at = put(at, (at.p[0] & 0x1Fu) << 6 | (at.p[1] & 0x3Fu), 2);
      while (fourTwos(at)) at = {at.p + 8, at.count + 4};
    }
    return at;
  }

  Place threes(Place at) const noexcept {
    while (fourThrees(at)) at = {at.p + 12, at.count + 4};
    while (end_ - at.p >= 3 && (at.p[0] & 0xF0) == 0xE0 && isTrail(at.p[1]) && isTrail(at.p[2])) {
      const std::uint32_t code = (at.p[0] & 0xFu) << 12 | (at.p[1] & 0x3Fu) << 6 | (at.p[2] & 0x3Fu);
      if (!isThree(code)) break;
      at = put(at, code, 3);
    }
    return at;
  }

  /// Converts four sequences of two bytes; false where not all four are such.
  bool fourTwos(Place at) const noexcept {
    if (!has(at, 8, 4) || at.p[6] < 0xC2) return false;
    const Word word = loadBytes(at.p);
    const Word units = (word & eachUnit(0x1F)) << 6 | (word >> 8 & eachUnit(0x3F));
    const Word tooSmall = ~(units + eachUnit(0x7F80)) & eachUnit(0x8000);
    if ((((word & eachUnit(0xC0E0)) ^ eachUnit(0x80C0)) | tooSmall) != 0) return false;
    if constexpr (write) storeUnits(to_ + at.count, units);
    return true;
  }

  /// The same for three bytes.
  bool fourThrees(Place at) const noexcept {
    if (!has(at, 13, 4) || (at.p[9] & 0xF0) != 0xE0) return false;
    std::uint32_t bytes[4];
    std::uint32_t codes[4];
    for (int i = 0; i < 4; ++i) bytes[i] = loadFour(at.p + 3 * i);
    std::uint32_t wrong = 0;
    for (int i = 0; i < 4; ++i) {
      codes[i] = codeOfThree(bytes[i]);
      wrong |= (bytes[i] & 0xC0C0F0) ^ 0x8080E0;
    }
    for (int i = 0; i < 4; ++i)
      wrong |= static_cast<std::uint32_t>((codes[i] & 0xF800) == 0) |
               static_cast<std::uint32_t>((codes[i] & 0xF800) == 0xD800);
    if (wrong) return false;
    if constexpr (write) {
      qv::WChar units[4];
      for (int i = 0; i < 4; ++i) units[i] = static_cast<qv::WChar>(codes[i]);
      std::memcpy(to_ + at.count, units, sizeof units);
    }
    return true;
  }

  Place illFormed(Place at) const noexcept {
    const std::size_t length = illFormedLength(at.p);
    if constexpr (bad == Bad::Escape) {
      for (std::size_t i = 0; i < length; ++i) at = put(at, kEscapedByte + *at.p, 1);
      return at;
    } else {
      return put(at, kReplacement, length);
    }
  }

  /// The maximal ill-formed piece: the longest start of some well-formed sequence, or one byte.
  std::size_t illFormedLength(const Byte* p) const noexcept {
    const Byte lead = p[0];
    const std::ptrdiff_t left = end_ - p;
    if (lead < 0xE0 || lead > 0xF4 || left < 2) return 1;
    const Byte lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const Byte highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (p[1] < lowest || p[1] > highest) return 1;
    return lead >= 0xF0 && left > 2 && isTrail(p[2]) ? 3 : 2;
  }

  const Byte* const begin_;
  const Byte* const end_;
  qv::WChar* const to_;
  const std::size_t room_;
};

template <Bad bad>
Converted decode(const char* source, std::size_t size, qv::WChar* destination, std::size_t room) noexcept {
  if (!destination || room < size) {
    const Converted counted = Decoder<bad, false>(source, size, nullptr, kNoLimit).run();
    if (!destination || counted.count > room) return counted;
  }
  return Decoder<bad, true>(source, size, destination, room).run();
}

} // namespace

Converted decodeUtf8(const char* source, std::size_t size, qv::WChar* destination,
                     std::size_t room) noexcept {
  return decode<Bad::Replace>(source, size, destination, room);
}

Converted decodeNative(const char* source, std::size_t size, qv::WChar* destination,
                       std::size_t room) noexcept {
  return decode<Bad::Escape>(source, size, destination, room);
}

} // namespace qvPlatform
