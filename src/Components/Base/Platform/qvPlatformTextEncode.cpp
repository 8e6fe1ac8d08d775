#include "Base/Platform/qvPlatformText.h"
#include "Base/Platform/qvPlatformTextWords.h"

#include <algorithm>

namespace qvPlatform {

namespace {

using namespace text;

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

char trail(std::uint32_t c) noexcept { return static_cast<char>(0x80 | (c & 0x3F)); }

char* putOne(std::uint32_t byte, char* to) noexcept {
  *to = static_cast<char>(byte);
  return to + 1;
}

char* putTwo(std::uint32_t c, char* to) noexcept {
  to[0] = static_cast<char>(0xC0 | c >> 6);
  to[1] = trail(c);
  return to + 2;
}

char* putThree(std::uint32_t c, char* to) noexcept {
  to[0] = static_cast<char>(0xE0 | c >> 12);
  to[1] = trail(c >> 6);
  to[2] = trail(c);
  return to + 3;
}

char* putFour(std::uint32_t c, char* to) noexcept {
  to[0] = static_cast<char>(0xF0 | c >> 18);
  to[1] = trail(c >> 12);
  to[2] = trail(c >> 6);
  to[3] = trail(c);
  return to + 4;
}

/// Four units with one or two bytes each, without a branch for each. In `ascii` the highest bit of a unit
/// tells that it has one byte; `pairs` has all units with two.
char* putMixedFour(Word units, Word ascii, Word pairs, char* to) noexcept {
  const Word singles = (ascii >> 15) * 0xFFFF;
  Word bytes = (pairs & ~singles) | (units & singles);
  Word isPair = ~ascii >> 15;
  for (int i = 0; i < 4; ++i) {
    to[0] = static_cast<char>(bytes);
    to[1] = static_cast<char>(bytes >> 8);
    to += 1 + (isPair & 1);
    bytes >>= 16;
    isPair >>= 16;
  }
  return to;
}

constexpr bool isThree(std::uint32_t c) noexcept { return c >= 0x800 && !isSurrogate(c); }

bool areThree(const qv::WChar* eight) noexcept {
  std::uint32_t others = 0;
  for (int i = 0; i < 8; ++i) {
    const std::uint32_t top = eight[i] & 0xF800u;
    others |= static_cast<std::uint32_t>(top == 0) | static_cast<std::uint32_t>(top == 0xD800);
  }
  return others == 0;
}

/// Writes two bytes too many, which what follows covers.
void putEightThrees(const qv::WChar* eight, char* to) noexcept {
  std::uint32_t bytes[8];
  for (int i = 0; i < 8; ++i) {
    const std::uint32_t c = eight[i];
    bytes[i] = 0x8080E0 | c >> 12 | (c << 2 & 0x3F00) | (c << 16 & 0x3F0000);
  }
  for (int i = 0; i < 8; i += 2) storeBytes(to + 3 * i, static_cast<Word>(bytes[i + 1]) << 24 | bytes[i]);
}

/// Eight units with one or two bytes each, mostly one. Writes whole words, so up to 23 bytes.
char* putMostlyAscii(const qv::WChar* p, char* to) noexcept {
  Byte low[8];
  Byte isTwo[8];
  for (int i = 0; i < 8; ++i) low[i] = static_cast<Byte>(p[i]);
  for (int i = 0; i < 8; ++i) isTwo[i] = (p[i] & 0xFF80) != 0;
  const Word letters = loadBytes(low);
  int done = 0;
  for (Word flags = loadBytes(isTwo); flags; flags &= flags - 1) {
    const int next = std::countr_zero(flags) / 8;
    storeBytes(to, letters >> (8 * done));
    to = putTwo(p[next], to + (next - done));
    done = next + 1;
  }
  if (done == 8) return to;
  storeBytes(to, letters >> (8 * done));
  return to + (8 - done);
}

/// One pass over UTF-16 into a destination that holds the whole. Each step takes what it can; its places are
/// copied into locals, so that they stay in registers.
template <Bad bad>
class Encoder {
public:
  Encoder(const qv::WChar* source, std::size_t size, char* destination, std::size_t room) noexcept
      : p_(source), end_(source + size), begin_(destination), to_(destination), toEnd_(destination + room) {}

  Converted run() noexcept {
    while (p_ != end_) {
      const std::uint32_t c = *p_;
      if (c < 0x80)
        asciiRun();
      else if (c < 0x800)
        twos();
      else if (!isSurrogate(c))
        threes();
      else
        surrogates();
    }
    return {static_cast<std::size_t>(to_ - begin_), valid_};
  }

private:
  /// ASCII, and single characters of two bytes within.
  void asciiRun() noexcept {
    const qv::WChar* p = p_;
    char* to = to_;
    while (end_ - p >= 16 && toEnd_ - to >= 24) {
      const Word first = loadUnits(p);
      const Word second = loadUnits(p + 4);
      if (((first | second | loadUnits(p + 8) | loadUnits(p + 12)) & eachUnit(0xFF80)) == 0) {
        narrow<16>(p, to);
        p += 16;
        to += 16;
      } else if (((first | second) & eachUnit(0xF800)) == 0 && (*p < 0x80 || p[1] < 0x80)) {
        to = putMostlyAscii(p, to);
        p += 8;
      } else {
        break;
      }
    }
    while (p != end_ && *p < 0x80) to = putOne(*p++, to);
    p_ = p;
    to_ = to;
  }

  /// Characters of two bytes, and ASCII among them.
  void twos() noexcept {
    const qv::WChar* p = p_;
    char* to = to_;
    while (end_ - p >= 4 && toEnd_ - to >= 8) {
      const Word units = loadUnits(p);
      const Word ascii = ~((units & eachUnit(0x7FF)) + eachUnit(0x7F80)) & eachUnit(0x8000);
      if ((units & eachUnit(0xF800)) || ascii == eachUnit(0x8000)) break;
      const Word pairs = (units >> 6 & eachUnit(0x1F)) | (units & eachUnit(0x3F)) << 8 | eachUnit(0x80C0);
      if (ascii) {
        to = putMixedFour(units, ascii, pairs, to);
      } else {
        storeBytes(to, pairs);
        to += 8;
      }
      p += 4;
    }
    while (p != end_ && *p >= 0x80 && *p < 0x800) to = putTwo(*p++, to);
    p_ = p;
    to_ = to;
  }

  /// Characters of three bytes, and single ASCII characters among them.
  void threes() noexcept {
    const qv::WChar* p = p_;
    char* to = to_;
    for (;;) {
      const qv::WChar* const probe = p + std::min<std::ptrdiff_t>(end_ - p, 4);
      while (p != probe && isThree(*p)) to = putThree(*p++, to);
      while (p >= probe && end_ - p >= 8 && toEnd_ - to >= 26) {
        if (!areThree(p)) break;
        putEightThrees(p, to);
        p += 8;
        to += 24;
      }
      while (p != end_ && isThree(*p)) to = putThree(*p++, to);
      if (end_ - p < 2 || *p >= 0x80 || !isThree(p[1])) break;
      to = putOne(*p++, to);
    }
    p_ = p;
    to_ = to;
  }

  /// One pair, or a lone surrogate.
  void surrogates() noexcept {
    const std::uint32_t c = *p_++;
    if (isHigh(c) && p_ != end_ && isLow(*p_)) {
      to_ = putFour(joined(c, *p_++), to_);
    } else if (bad == Bad::Escape && isEscaped(c)) {
      to_ = putOne(c, to_);
    } else {
      to_ = putThree(kReplacement, to_);
      valid_ = false;
    }
  }

  const qv::WChar* p_;
  const qv::WChar* const end_;
  char* const begin_;
  char* to_;
  char* const toEnd_;
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

Converted encodeUtf8(const qv::WChar* source, std::size_t size, char* destination,
                     std::size_t room) noexcept {
  return encode<Bad::Replace>(source, size, destination, room);
}

Converted encodeNative(const qv::WChar* source, std::size_t size, char* destination,
                       std::size_t room) noexcept {
  return encode<Bad::Escape>(source, size, destination, room);
}

} // namespace qvPlatform
