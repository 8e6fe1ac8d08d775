// UTF-8 and UTF-16. Text for people comes in runs: of ASCII, and of letters of one length. So both directions
// take several characters of one kind in a step, as lanes of a 64-bit number or in loops of fixed length that
// compilers turn into vector code; what is rare, and all that is ill-formed, goes one by one.
#include "Base/Platform/qvPlatformText.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace qvPlatform {

namespace {

using Byte = unsigned char;
using Word = std::uint64_t;

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kEscapedByte = 0xDC00;
constexpr std::size_t kNoLimit = ~std::size_t{0};

/// What becomes of that which is ill-formed: U+FFFD, or something from which the bytes can be had back.
enum class Bad { Replace, Escape };

constexpr Word eachByte(Word value) noexcept { return value * 0x0101010101010101u; }
constexpr Word eachUnit(Word value) noexcept { return value * 0x0001000100010001u; }

/// Eight bytes as a number, the first one lowest.
Word loadBytes(const void* p) noexcept {
  Word word;
  std::memcpy(&word, p, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    word = word << 32 | word >> 32;
    word = (word & 0x0000FFFF0000FFFFu) << 16 | (word >> 16 & 0x0000FFFF0000FFFFu);
    word = (word & eachUnit(0xFF)) << 8 | (word >> 8 & eachUnit(0xFF));
  }
  return word;
}

void storeBytes(void* p, Word word) noexcept {
  const Word ordered = loadBytes(&word);
  std::memcpy(p, &ordered, sizeof ordered);
}

/// Four units as a number, the first one lowest.
Word loadUnits(const void* p) noexcept {
  Word word;
  std::memcpy(&word, p, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    word = word << 32 | word >> 32;
    word = (word & 0x0000FFFF0000FFFFu) << 16 | (word >> 16 & 0x0000FFFF0000FFFFu);
  }
  return word;
}

void storeUnits(void* p, Word word) noexcept {
  const Word ordered = loadUnits(&word);
  std::memcpy(p, &ordered, sizeof ordered);
}

/// How many lanes of `width` bits lie below the lowest bit that is set; all of them where none is.
std::size_t lanesBelow(Word word, unsigned int width) noexcept {
  return static_cast<std::size_t>(std::countr_zero(word)) / width;
}

template <std::size_t N>
void widen(const Byte* from, qv::WChar* to) noexcept {
  Byte bytes[N];
  qv::WChar units[N];
  std::memcpy(bytes, from, N);
  for (std::size_t i = 0; i < N; ++i) units[i] = bytes[i];
  std::memcpy(to, units, sizeof units);
}

template <std::size_t N>
void narrow(const qv::WChar* from, char* to) noexcept {
  qv::WChar units[N];
  Byte bytes[N];
  std::memcpy(units, from, sizeof units);
  for (std::size_t i = 0; i < N; ++i) bytes[i] = static_cast<Byte>(units[i]);
  std::memcpy(to, bytes, N);
}

constexpr bool isTrail(std::uint32_t b) noexcept { return (b & 0xC0) == 0x80; }
constexpr bool isSurrogate(std::uint32_t c) noexcept { return (c & 0xF800) == 0xD800; }
constexpr bool isHigh(std::uint32_t c) noexcept { return (c & 0xFC00) == 0xD800; }
constexpr bool isLow(std::uint32_t c) noexcept { return (c & 0xFC00) == 0xDC00; }

/// One pass over UTF-8 into a destination that holds the whole; `write` false only counts. Each step takes
/// some bytes at `p_` and leaves the rest to the others.
template <Bad bad, bool write>
class Decoder {
public:
  Decoder(const char* source, std::size_t size, qv::WChar* destination, std::size_t room) noexcept
      : p_(reinterpret_cast<const Byte*>(source)), end_(p_ + size), to_(destination), room_(room) {}

  Converted run() noexcept {
    while (p_ != end_) {
      if (*p_ < 0x80)
        ascii();
      else if (*p_ < 0xE0)
        twos();
      else if (*p_ < 0xF0)
        threes();
      else
        other();
    }
    return {count_, valid_};
  }

private:
  bool has(std::size_t bytes, std::size_t units) const noexcept {
    return static_cast<std::size_t>(end_ - p_) >= bytes && room_ - count_ >= units;
  }

  void advance(std::size_t bytes, std::size_t units) noexcept {
    p_ += bytes;
    count_ += units;
  }

  void put(std::uint32_t unit) noexcept {
    if constexpr (write) to_[count_] = static_cast<qv::WChar>(unit);
    ++count_;
  }

  void ascii() noexcept {
    if (!has(8, 8)) {
      put(*p_++);
      return;
    }
    const std::size_t letters = lanesBelow(loadBytes(p_) & eachByte(0x80), 8);
    if constexpr (write) widen<8>(p_, to_ + count_);
    advance(letters, letters);
    while (has(16, 16) && ((loadBytes(p_) | loadBytes(p_ + 8)) & eachByte(0x80)) == 0) {
      if constexpr (write) widen<16>(p_, to_ + count_);
      advance(16, 16);
    }
  }

  /// Four lanes of a lead and a trail; lanes from the first unfit one on are written in vain.
  void twos() noexcept {
    if (!has(8, 4)) return other();
    const Word word = loadBytes(p_);
    const Word units = (word & eachUnit(0x1F)) << 6 | (word >> 8 & eachUnit(0x3F));
    const Word tooSmall = ~(units + eachUnit(0x7F80)) & eachUnit(0x8000);
    const std::size_t letters = lanesBelow(((word & eachUnit(0xC0E0)) ^ eachUnit(0x80C0)) | tooSmall, 16);
    if (letters == 0) return other();
    if constexpr (write) storeUnits(to_ + count_, units);
    advance(2 * letters, letters);
  }

  void threes() noexcept {
    while (has(8, 2)) {
      const Word word = loadBytes(p_);
      const std::uint32_t first = unitOfThree(word);
      const std::uint32_t second = unitOfThree(word >> 24);
      if (((word & 0xC0C0F0C0C0F0u) ^ 0x8080E08080E0u) != 0 || !isThree(first) || !isThree(second)) break;
      put(first);
      put(second);
      p_ += 6;
    }
    if (p_ != end_) other();
  }

  static std::uint32_t unitOfThree(Word word) noexcept {
    return static_cast<std::uint32_t>((word & 0xF) << 12 | (word >> 2 & 0xFC0) | (word >> 16 & 0x3F));
  }
  static bool isThree(std::uint32_t code) noexcept { return code >= 0x800 && !isSurrogate(code); }

  /// One character of any kind.
  void other() noexcept {
    const std::uint32_t lead = *p_;
    const std::ptrdiff_t left = end_ - p_;
    if (lead < 0xE0) {
      if (lead < 0x80) return take(lead, 1);
      if (lead >= 0xC2 && left > 1 && isTrail(p_[1])) return take((lead & 0x1F) << 6 | (p_[1] & 0x3Fu), 2);
    } else if (lead < 0xF0) {
      if (left > 2 && isTrail(p_[1]) && isTrail(p_[2])) {
        const std::uint32_t code = (lead & 0x0F) << 12 | (p_[1] & 0x3Fu) << 6 | (p_[2] & 0x3Fu);
        if (isThree(code)) return take(code, 3);
      }
    } else if (left > 3 && isTrail(p_[1]) && isTrail(p_[2]) && isTrail(p_[3])) {
      const std::uint32_t code =
          (lead & 0x0F) << 18 | (p_[1] & 0x3Fu) << 12 | (p_[2] & 0x3Fu) << 6 | (p_[3] & 0x3Fu);
      if (code >= 0x10000 && code <= 0x10FFFF) {
        put(0xD7C0 + (code >> 10));
        return take(0xDC00 | (code & 0x3FF), 4);
      }
    }
    illFormed();
  }

  void take(std::uint32_t unit, std::size_t bytes) noexcept {
    put(unit);
    p_ += bytes;
  }

  void illFormed() noexcept {
    const std::size_t length = illFormedLength();
    if constexpr (bad == Bad::Escape) {
      for (std::size_t i = 0; i < length; ++i) put(kEscapedByte + p_[i]);
    } else {
      put(kReplacement);
      valid_ = false;
    }
    p_ += length;
  }

  /// The maximal ill-formed piece: the longest start of some well-formed sequence, or one byte.
  std::size_t illFormedLength() const noexcept {
    const Byte lead = p_[0];
    const std::ptrdiff_t left = end_ - p_;
    if (lead < 0xE0 || lead > 0xF4 || left < 2) return 1;
    const Byte lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const Byte highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (p_[1] < lowest || p_[1] > highest) return 1;
    return lead >= 0xF0 && left > 2 && isTrail(p_[2]) ? 3 : 2;
  }

  const Byte* p_;
  const Byte* const end_;
  qv::WChar* const to_;
  const std::size_t room_;
  std::size_t count_ = 0;
  bool valid_ = true;
};

template <Bad bad>
Converted decode(const char* source, std::size_t size, qv::WChar* destination, std::size_t room) noexcept {
  if (!destination || room < size) {
    const Converted counted = Decoder<bad, false>(source, size, nullptr, kNoLimit).run();
    if (!destination || counted.count > room) return counted;
  }
  return Decoder<bad, true>(source, size, destination, room).run();
}

/// Lone surrogates that stand for a byte of a native name.
constexpr bool isEscaped(std::uint32_t c) noexcept {
  return (c >= 0xDC80 && c <= 0xDCFF) || c == 0xDC5C || c == 0xDC3A;
}

struct UnitCounts {
  std::size_t bytes = 0; ///< One for each unit, and another one for each limit reached.
  std::size_t surrogates = 0;
  std::size_t pairs = 0;
  std::size_t escaped = 0;

  void add(std::uint32_t before, std::uint32_t c) noexcept {
    bytes += 1u + (c >= 0x80) + (c >= 0x800);
    surrogates += isSurrogate(c);
    pairs += isHigh(before) && isLow(c);
    escaped += isEscaped(c) && !isHigh(before);
  }
};

/// The same for a block of fixed length, in lanes of 16 bits.
void addBlock(UnitCounts& counts, const qv::WChar* p) noexcept {
  constexpr int kBlock = 256;
  std::uint16_t more = 0;
  std::uint16_t surrogates = 0;
  std::uint16_t pairs = 0;
  for (int i = 0; i < kBlock; ++i) {
    const std::uint16_t c = p[i];
    const std::uint16_t before = p[i - 1];
    more = static_cast<std::uint16_t>(more + ((c & 0xFF80) != 0) + ((c & 0xF800) != 0));
    surrogates = static_cast<std::uint16_t>(surrogates + ((c & 0xF800) == 0xD800));
    pairs = static_cast<std::uint16_t>(pairs + (((before & 0xFC00) == 0xD800) & ((c & 0xFC00) == 0xDC00)));
  }
  counts.bytes += kBlock + more;
  counts.surrogates += surrogates;
  counts.pairs += pairs;
}

template <Bad bad>
Converted countEncoded(const qv::WChar* source, std::size_t size) noexcept {
  UnitCounts counts;
  for (std::size_t i = 0; i < size;) {
    if (bad == Bad::Replace && i != 0 && size - i >= 256) {
      addBlock(counts, source + i);
      i += 256;
    } else {
      counts.add(i ? source[i - 1] : 0u, source[i]);
      ++i;
    }
  }
  // A pair has four bytes and was counted with six; an escaped byte has one and was counted with three.
  const std::size_t escaped = bad == Bad::Escape ? counts.escaped : 0;
  return {counts.bytes - 2 * counts.pairs - 2 * escaped, counts.surrogates == 2 * counts.pairs + escaped};
}

/// One pass over UTF-16 into a destination that holds the whole. The steps are those of the decoder.
template <Bad bad>
class Encoder {
public:
  Encoder(const qv::WChar* source, std::size_t size, char* destination, std::size_t room) noexcept
      : p_(source), end_(source + size), to_(destination), room_(room) {}

  Converted run() noexcept {
    while (p_ != end_) {
      if (*p_ < 0x80)
        ascii();
      else if (*p_ < 0x800)
        twos();
      else
        other();
    }
    return {count_, valid_};
  }

private:
  bool has(std::size_t units, std::size_t bytes) const noexcept {
    return static_cast<std::size_t>(end_ - p_) >= units && room_ - count_ >= bytes;
  }

  void advance(std::size_t units, std::size_t bytes) noexcept {
    p_ += units;
    count_ += bytes;
  }

  void put(std::uint32_t byte) noexcept { to_[count_++] = static_cast<char>(byte); }

  void ascii() noexcept {
    if (!has(8, 8)) return put(*p_++);
    constexpr Word outside = eachUnit(0xFF80);
    std::size_t letters = lanesBelow(loadUnits(p_) & outside, 16);
    if (letters == 4) letters += lanesBelow(loadUnits(p_ + 4) & outside, 16);
    narrow<8>(p_, to_ + count_);
    advance(letters, letters);
    while (has(16, 16) &&
           ((loadUnits(p_) | loadUnits(p_ + 4) | loadUnits(p_ + 8) | loadUnits(p_ + 12)) & outside) == 0) {
      narrow<16>(p_, to_ + count_);
      advance(16, 16);
    }
  }

  void twos() noexcept {
    if (!has(4, 8)) return other();
    const Word units = loadUnits(p_);
    const Word tooLarge = units & eachUnit(0xF800);
    const Word tooSmall = ~((units & eachUnit(0x7FF)) + eachUnit(0x7F80)) & eachUnit(0x8000);
    const std::size_t letters = lanesBelow(tooLarge | tooSmall, 16);
    storeBytes(to_ + count_,
               (units >> 6 & eachUnit(0x1F)) | (units & eachUnit(0x3F)) << 8 | eachUnit(0x80C0));
    advance(letters, 2 * letters);
  }

  /// One character of any kind.
  void other() noexcept {
    const std::uint32_t c = *p_++;
    if (c < 0x80) return put(c);
    if (c < 0x800) {
      put(0xC0 | c >> 6);
      putTrail(c);
    } else if (!isSurrogate(c)) {
      putThree(c);
    } else if (isHigh(c) && p_ != end_ && isLow(*p_)) {
      const std::uint32_t code = 0x10000 + ((c & 0x3FF) << 10 | (*p_++ & 0x3FFu));
      put(0xF0 | code >> 18);
      putTrail(code >> 12);
      putTrail(code >> 6);
      putTrail(code);
    } else if (bad == Bad::Escape && isEscaped(c)) {
      put(c & 0xFF);
    } else {
      putThree(kReplacement);
      valid_ = false;
    }
  }

  void putTrail(std::uint32_t c) noexcept { put(0x80 | (c & 0x3F)); }
  void putThree(std::uint32_t c) noexcept {
    put(0xE0 | c >> 12);
    putTrail(c >> 6);
    putTrail(c);
  }

  const qv::WChar* p_;
  const qv::WChar* const end_;
  char* const to_;
  const std::size_t room_;
  std::size_t count_ = 0;
  bool valid_ = true;
};

template <Bad bad>
Converted encode(const qv::WChar* source, std::size_t size, char* destination, std::size_t room) noexcept {
  if (!destination || room / 3 < size) {
    const Converted counted = countEncoded<bad>(source, size);
    if (!destination || counted.count > room) return counted;
  }
  return Encoder<bad>(source, size, destination, room).run();
}

} // namespace

Converted decodeUtf8(const char* source, std::size_t size, qv::WChar* destination,
                     std::size_t room) noexcept {
  return decode<Bad::Replace>(source, size, destination, room);
}

Converted encodeUtf8(const qv::WChar* source, std::size_t size, char* destination,
                     std::size_t room) noexcept {
  return encode<Bad::Replace>(source, size, destination, room);
}

Converted decodeNative(const char* source, std::size_t size, qv::WChar* destination,
                       std::size_t room) noexcept {
  return decode<Bad::Escape>(source, size, destination, room);
}

Converted encodeNative(const qv::WChar* source, std::size_t size, char* destination,
                       std::size_t room) noexcept {
  return encode<Bad::Escape>(source, size, destination, room);
}

namespace {

/// Converts into a string of the exact size; the common case, text that fits the worst case of a small
/// buffer, takes one pass.
template <class To, class From, class Convert>
std::basic_string<To> toString(std::basic_string_view<From> source, Convert convert, bool* valid) {
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
  return toString<qv::WChar>(source, decode<Bad::Replace>, valid);
}

std::string encodeUtf8(std::basic_string_view<qv::WChar> source, bool* valid) {
  return toString<char>(source, encode<Bad::Replace>, valid);
}

std::basic_string<qv::WChar> decodeNative(std::string_view source) {
  return toString<qv::WChar>(source, decode<Bad::Escape>, nullptr);
}

std::string encodeNative(std::basic_string_view<qv::WChar> source, bool* valid) {
  return toString<char>(source, encode<Bad::Escape>, valid);
}

} // namespace qvPlatform
