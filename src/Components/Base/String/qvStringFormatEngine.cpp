// One walk over a format serves both widths. Integers and the common floats are written here; for the other
// floats the C runtime makes the bare number. Padding is always done here, so nothing is built or copied
// twice.
#include "Base/String/qvStringFormatEngine.h"

#include "Base/String/qvStringConvert.h"
#include "Base/String/qvStringFormatDirective.h"
#include "Base/String/qvStringLocale.h"
#include "Base/String/qvStringNumber.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <type_traits>

namespace qvString {

namespace {

/// A buffer that drops what doesn't fit, and counts all.
template <class C>
class Output {
public:
  Output(C* buffer, std::size_t size) noexcept
      : begin_(buffer), p_(buffer), end_(buffer + (size ? size - 1 : 0)) {}

  void put(C c) noexcept {
    if (p_ != end_)
      *p_++ = c;
    else
      ++dropped_;
  }

  void fill(std::size_t count, C c) noexcept {
    const std::size_t fitting = take(count);
    for (std::size_t i = 0; i < fitting; ++i) *p_++ = c;
  }

  template <class From>
  void text(const From* from, std::size_t count) noexcept {
    const std::size_t fitting = take(count);
    for (std::size_t i = 0; i < fitting; ++i) *p_++ = static_cast<C>(from[i]);
  }

  /// The same for what may be long.
  void copy(const C* from, std::size_t count) noexcept { p_ = std::copy_n(from, take(count), p_); }

  [[nodiscard]] std::size_t count() const noexcept {
    return static_cast<std::size_t>(p_ - begin_) + dropped_;
  }

  void terminate(std::size_t size) noexcept {
    if (size) *p_ = C();
  }

private:
  std::size_t take(std::size_t count) noexcept {
    const std::size_t fitting = std::min(count, static_cast<std::size_t>(end_ - p_));
    dropped_ += count - fitting;
    return fitting;
  }

  C* const begin_;
  C* p_;
  C* const end_;
  std::size_t dropped_ = 0;
};

/// A number without its padding: sign or base mark, zeros that the precision asks for, digits.
struct Number {
  char prefix[2];
  int prefixLength = 0;
  int zeros = 0;
  const char* digits = nullptr;
  std::size_t numDigits = 0;

  void addPrefix(char c) noexcept { prefix[prefixLength++] = c; }
};

/// One run over a format and its arguments.
template <class C>
class Formatter {
public:
  Formatter(C* buffer, std::size_t size, va_list args) noexcept : out_(buffer, size), size_(size) {
    va_copy(args_, args);
  }
  Formatter(const Formatter&) = delete;
  Formatter& operator=(const Formatter&) = delete;
  ~Formatter() { va_end(args_); }

  std::size_t run(const C* format) noexcept {
    while (*format) {
      if (*format == '%')
        format = directive(format);
      else
        out_.put(*format++);
    }
    out_.terminate(size_);
    return out_.count();
  }

private:
  using Parsed = Directive<C>;

  /// Prints one directive and returns what follows it.
  const C* directive(const C* percent) noexcept {
    if (percent[1] == '%') {
      out_.put('%');
      return percent + 2;
    }
    Parsed parsed = scanDirective(percent + 1);
    if (!print(parsed, percent + 1)) out_.text(percent, static_cast<std::size_t>(parsed.end - percent));
    return parsed.end;
  }

  /// False, with no argument read, for a directive that isn't known.
  bool print(Parsed& parsed, const C* afterPercent) noexcept {
    switch (kindOf(parsed)) {
    case Kind::Unknown:
      return false;
    case Kind::Signed:
      return fetchStars(parsed), signedInteger(parsed), true;
    case Kind::Unsigned:
      return fetchStars(parsed), unsignedInteger(parsed), true;
    case Kind::Floating:
      return fetchStars(parsed), floating(parsed), true;
    case Kind::Pointer:
      return fetchStars(parsed), pointer(parsed), true;
    case Kind::String:
      return fetchStars(parsed), string(parsed, takesWide(parsed, afterPercent)), true;
    case Kind::Character:
      return fetchStars(parsed), character(parsed, takesWide(parsed, afterPercent)), true;
    }
    return false;
  }

  void fetchStars(Parsed& parsed) noexcept {
    if (parsed.starWidth) {
      const int width = va_arg(args_, int);
      parsed.left = parsed.left || width < 0;
      parsed.width = width >= 0                                 ? width
                     : width == std::numeric_limits<int>::min() ? std::numeric_limits<int>::max()
                                                                : -width;
    }
    if (parsed.starPrecision) parsed.precision = std::max(va_arg(args_, int), -1);
  }

  std::int64_t fetchSigned(Size size) noexcept {
    switch (size) {
    case Size::Char:
      return static_cast<signed char>(va_arg(args_, int));
    case Size::Short:
      return static_cast<short>(va_arg(args_, int));
    case Size::Long:
      return va_arg(args_, long);
    case Size::LongLong:
    case Size::LongDouble:
      return va_arg(args_, long long);
    case Size::Int64:
      return va_arg(args_, std::int64_t);
    case Size::Max:
      return va_arg(args_, std::intmax_t);
    case Size::Pointer:
      return va_arg(args_, std::ptrdiff_t);
    default:
      return va_arg(args_, int);
    }
  }

  std::uint64_t fetchUnsigned(Size size) noexcept {
    switch (size) {
    case Size::Char:
      return static_cast<unsigned char>(va_arg(args_, unsigned int));
    case Size::Short:
      return static_cast<unsigned short>(va_arg(args_, unsigned int));
    case Size::Long:
      return va_arg(args_, unsigned long);
    case Size::LongLong:
    case Size::LongDouble:
      return va_arg(args_, unsigned long long);
    case Size::Int64:
      return va_arg(args_, std::uint64_t);
    case Size::Max:
      return va_arg(args_, std::uintmax_t);
    case Size::Pointer:
      return va_arg(args_, std::size_t);
    default:
      return va_arg(args_, unsigned int);
    }
  }

  void signedInteger(const Parsed& parsed) noexcept {
    const std::int64_t value = fetchSigned(parsed.size);
    Number number;
    addSign(number, value < 0, parsed);
    char digits[24];
    char* const end = digits + sizeof digits;
    const std::uint64_t magnitude =
        value < 0 ? -static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    integer(number, decimalDigits(magnitude, end), end, parsed);
  }

  void unsignedInteger(const Parsed& parsed) noexcept {
    const std::uint64_t value = fetchUnsigned(parsed.size);
    Number number;
    char digits[24];
    char* const end = digits + sizeof digits;
    char* first = end;
    if (parsed.letter == 'u') {
      first = decimalDigits(value, end);
    } else if (parsed.letter == 'o') {
      first = binaryDigits(value, 3, false, end);
      if (parsed.alternate && (value || parsed.precision == 0)) *--first = '0';
    } else {
      first = binaryDigits(value, 4, parsed.letter == 'X', end);
      if (parsed.alternate && value) {
        number.addPrefix('0');
        number.addPrefix(parsed.letter);
      }
    }
    integer(number, first, end, parsed);
  }

  void integer(Number& number, const char* first, const char* end, const Parsed& parsed) noexcept {
    number.digits = first;
    number.numDigits = static_cast<std::size_t>(end - first);
    const int wanted = parsed.precision < 0 ? 1 : parsed.precision;
    number.zeros = std::max(wanted - static_cast<int>(number.numDigits), 0);
    print(number, parsed, parsed.zero && parsed.precision < 0);
  }

  static void addSign(Number& number, bool negative, const Parsed& parsed) noexcept {
    if (negative)
      number.addPrefix('-');
    else if (parsed.plus)
      number.addPrefix('+');
    else if (parsed.blank)
      number.addPrefix(' ');
  }

  void print(const Number& number, const Parsed& parsed, bool zeroPadded) noexcept {
    const std::size_t length = static_cast<std::size_t>(number.prefixLength) +
                               static_cast<std::size_t>(number.zeros) + number.numDigits;
    const std::size_t padding = paddingOf(parsed, length);
    if (padding && !parsed.left && !zeroPadded) out_.fill(padding, ' ');
    for (int i = 0; i < number.prefixLength; ++i) out_.put(static_cast<C>(number.prefix[i]));
    if (padding && !parsed.left && zeroPadded) out_.fill(padding, '0');
    if (number.zeros) out_.fill(static_cast<std::size_t>(number.zeros), '0');
    out_.text(number.digits, number.numDigits);
    if (padding && parsed.left) out_.fill(padding, ' ');
  }

  static std::size_t paddingOf(const Parsed& parsed, std::size_t length) noexcept {
    const std::size_t width = static_cast<std::size_t>(parsed.width);
    return width > length ? width - length : 0;
  }

  void pointer(const Parsed& parsed) noexcept {
    constexpr int kDigits = 16;
    char digits[kDigits];
    char* const end = digits + kDigits;
    Number number;
    number.digits = binaryDigits(reinterpret_cast<std::uintptr_t>(va_arg(args_, void*)), 4, true, end);
    number.numDigits = static_cast<std::size_t>(end - number.digits);
    number.zeros = kDigits - static_cast<int>(number.numDigits);
    print(number, parsed, false);
  }

  void floating(const Parsed& parsed) noexcept {
    if (parsed.size == Size::LongDouble) {
      const long double value = va_arg(args_, long double);
      if (!notFinite(parsed, value)) floatingByRuntime(parsed, value);
    } else {
      const double value = va_arg(args_, double);
      if (!notFinite(parsed, value) && !floatingByHand(parsed, value)) floatingByRuntime(parsed, value);
    }
  }

  /// Infinities and what is no number. Runtimes differ in whether the latter has a sign.
  template <class Float>
  bool notFinite(const Parsed& parsed, Float value) noexcept {
    if (std::isfinite(value)) return false;
    const bool capitals = parsed.letter < 'a';
    Number number;
    addSign(number, std::signbit(value), parsed);
    number.digits = std::isnan(value) ? (capitals ? "NAN" : "nan") : (capitals ? "INF" : "inf");
    number.numDigits = 3;
    print(number, parsed, false);
    return true;
  }

  bool floatingByHand(const Parsed& parsed, double value) noexcept {
    FloatDigits digits;
    if (parsed.alternate || !digits.make(std::fabs(value), parsed.letter, parsed.precision)) return false;
    Number number;
    addSign(number, std::signbit(value), parsed);
    number.digits = digits.begin();
    number.numDigits = digits.size();
    print(number, parsed, parsed.zero);
    return true;
  }

  /// The C runtime makes the number, and the padding is done here. Digits past the greatest precision that a
  /// number can need are all zeros.
  template <class Float>
  void floatingByRuntime(const Parsed& parsed, Float value) noexcept {
    constexpr int kMostPrecision = 16500;
    char format[12];
    char* p = format;
    *p++ = '%';
    if (parsed.plus) *p++ = '+';
    if (parsed.blank) *p++ = ' ';
    if (parsed.alternate) *p++ = '#';
    *p++ = '.';
    *p++ = '*';
    if (std::is_same_v<Float, long double>) *p++ = 'L';
    *p++ = parsed.letter;
    *p = '\0';
    char body[kMostPrecision + 5000];
    const int made =
        std::snprintf(body, sizeof body, format, std::min(parsed.precision, kMostPrecision), value);
    const std::size_t length = std::min(static_cast<std::size_t>(std::max(made, 0)), sizeof body - 1);
    const bool hasFurther = parsed.precision > kMostPrecision &&
                            ((parsed.letter != 'g' && parsed.letter != 'G') || parsed.alternate);
    printRuntimeNumber(parsed, body, length,
                       hasFurther ? static_cast<std::size_t>(parsed.precision - kMostPrecision) : 0);
  }

  /// `body` is a sign, "0x", digits and an exponent, all but the digits optional. `further` zeros belong
  /// behind the digits.
  void printRuntimeNumber(const Parsed& parsed, const char* body, std::size_t length,
                          std::size_t further) noexcept {
    const char* const end = body + length;
    const char* first = body;
    if (first != end && (*first == '-' || *first == '+' || *first == ' ')) ++first;
    const bool hexadecimal = parsed.letter == 'a' || parsed.letter == 'A';
    if (hexadecimal) first += 2;
    const char* exponent = end;
    if (parsed.letter != 'f' && parsed.letter != 'F')
      exponent = std::find_if(
          first, end, [=](char c) { return hexadecimal ? c == 'p' || c == 'P' : c == 'e' || c == 'E'; });
    const std::size_t padding = paddingOf(parsed, convert(body, length, kNoLimit, ignore) + further);
    if (!parsed.left && !parsed.zero) out_.fill(padding, ' ');
    out_.text(body, static_cast<std::size_t>(first - body));
    if (!parsed.left && parsed.zero) out_.fill(padding, '0');
    convert(first, static_cast<std::size_t>(exponent - first), kNoLimit, writer());
    out_.fill(further, '0');
    out_.text(exponent, static_cast<std::size_t>(end - exponent));
    if (parsed.left) out_.fill(padding, ' ');
  }

  static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

  void string(const Parsed& parsed, bool wide) noexcept {
    if (wide)
      anyString(parsed, va_arg(args_, const qv::WChar*), QV_W("(null)"));
    else
      anyString(parsed, va_arg(args_, const char*), "(null)");
  }

  template <class From>
  void anyString(const Parsed& parsed, const From* text, const From* null) noexcept {
    const std::size_t limit = parsed.precision < 0 ? kNoLimit : static_cast<std::size_t>(parsed.precision);
    printText(parsed, text ? text : null, kNoLimit, limit);
  }

  void character(const Parsed& parsed, bool wide) noexcept {
    const int code = va_arg(args_, int);
    if (wide) {
      const qv::WChar c = static_cast<qv::WChar>(code);
      printText(parsed, &c, 1, kNoLimit);
    } else {
      const char c = static_cast<char>(code);
      printText(parsed, &c, 1, kNoLimit);
    }
  }

  template <class From>
  void printText(const Parsed& parsed, const From* text, std::size_t count, std::size_t limit) noexcept {
    const std::size_t padding = parsed.width ? paddingOf(parsed, convert(text, count, limit, ignore)) : 0;
    if (!parsed.left) out_.fill(padding, ' ');
    convert(text, count, limit, writer());
    if (parsed.left) out_.fill(padding, ' ');
  }

  static constexpr auto ignore = [](const auto*, std::size_t) {};
  auto writer() noexcept {
    return [this]<class From>(const From* chars, std::size_t count) {
      if constexpr (std::is_same_v<From, C>)
        out_.copy(chars, count);
      else
        out_.text(chars, count);
    };
  }

  /// Hands the characters of a text of `count` characters (`kNoLimit`: terminated), converted to the format's
  /// width, to `sink` piece by piece, without those that go beyond `limit`; none is cut in two. Reads nothing
  /// behind what reaches the limit. Returns how many characters came out.
  template <class From, class Sink>
  static std::size_t convert(const From* text, std::size_t count, std::size_t limit, Sink sink) noexcept {
    if constexpr (std::is_same_v<From, C>) {
      const std::size_t length = std::min(count == kNoLimit ? lengthOf(text, limit) : count, limit);
      sink(text, length);
      return length;
    } else {
      std::conditional_t<std::is_same_v<From, char>, LocaleDecoder, LocaleEncoder> converter;
      std::size_t made = 0;
      for (std::size_t i = 0; made < limit && (count == kNoLimit ? text[i] != 0 : i < count);) {
        if (converter.keepsAscii()) {
          const std::size_t run = asciiRun(text + i, std::min(count - i, limit - made));
          sink(text + i, run);
          made += run;
          i += run;
          if (run) continue;
        }
        const auto c = converter.next(text + i, count == kNoLimit ? std::size_t{MB_LEN_MAX} : count - i);
        const C unknown = static_cast<C>(getDefaultMBChar());
        const std::size_t length = c.numMade ? static_cast<std::size_t>(c.numMade) : 1;
        if (length > limit - made) break;
        sink(c.numMade ? c.made : &unknown, length);
        made += length;
        i += static_cast<std::size_t>(c.numUsed);
      }
      return made;
    }
  }

  static std::size_t lengthOf(const C* text, std::size_t limit) noexcept {
    if (limit == kNoLimit) return std::char_traits<C>::length(text);
    const C* const end = std::char_traits<C>::find(text, limit, C());
    return end ? static_cast<std::size_t>(end - text) : limit;
  }

  /// Characters from 1 to 127 at the start of a text.
  template <class From>
  static std::size_t asciiRun(const From* text, std::size_t limit) noexcept {
    std::size_t run = 0;
    while (run < limit && text[run] > 0 && text[run] < 0x80) ++run;
    return run;
  }

  Output<C> out_;
  std::size_t size_;
  va_list args_;
};

template <class C>
std::size_t run(C* buffer, std::size_t size, const C* format, va_list args) noexcept {
  static constexpr C kEmpty[1] = {};
  return Formatter<C>(buffer, size, args).run(format ? format : kEmpty);
}

} // namespace

std::size_t formatText(char* buffer, std::size_t size, const char* format, va_list args) noexcept {
  return run(buffer, size, format, args);
}

std::size_t formatText(qv::WChar* buffer, std::size_t size, const qv::WChar* format, va_list args) noexcept {
  return run(buffer, size, format, args);
}

std::size_t formatWithoutArguments(char* buffer, std::size_t size, const char* format) noexcept {
  Output<char> out(buffer, size);
  for (const char* p = format ? format : ""; *p; ++p) {
    if (p[0] == '%' && p[1] == '%') ++p; // no other directive holds a second percent sign
    out.put(*p);
  }
  out.terminate(size);
  return out.count();
}

const qv::WChar* plainLetter(const qv::WChar* p) noexcept {
  const auto skipDigits = [&p] {
    while (*p >= '0' && *p <= '9') ++p;
  };
  if (*p == '-') ++p;
  skipDigits();
  if (*p == '.') ++p;
  skipDigits();
  return p;
}

} // namespace qvString
