#include "Base/String/qvStringIString.h"

#include "Base/Containers/qvHashFunction.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringCharacter.h"
#include "Base/String/qvStringFormatInto.h"
#include "Base/String/qvStringLocale.h"
#include "Base/String/qvStringScan.h"
#include "Base/String/qvStringScratch.h"

#include <cwchar>

template class std::basic_string<qv::WChar>;

namespace qvString {

using qv::WChar;

/// The text, and its narrow form as it was last asked for.
struct IString::Record {
  enum ConversionState : int { NobodyAsked = 0, Clean = 1, LostSomething = 2 };

  std::basic_string<WChar> wide;
  bool stale = true; // `multibyte` does not reflect `wide`
  Encoding multibyteEncoding = DefaultEncoding;
  std::string multibyte;
  ConversionState conversionState = NobodyAsked; // what is known of the conversion that made `multibyte`

  [[nodiscard]] View<WChar> view() const noexcept { return wide; }
  void changed() noexcept {
    stale = true;
    conversionState = NobodyAsked;
  }
  unsigned int format(unsigned int bufferSize, const WChar* format, va_list args) {
    const unsigned int result = formatInto(wide, bufferSize, format, args);
    if (result != npos) changed();
    return result;
  }

  /// Makes `multibyte`, which keeps its old bytes if none come out, and notes how that went if `ok` asks for
  /// it.
  void encode(Encoding encoding, bool* ok) {
    const auto convert = encoding == UTF8Encoding ? &WCStoUTF8 : &WCStoMBS;
    const unsigned int size = convert(wide.c_str(), String::npos, nullptr, 0, nullptr);
    if (size == 0) {
      multibyte.clear();
      conversionState = LostSomething;
      return;
    }
    Scratch<char> bytes(std::size_t{size} + 1);
    const unsigned int count = convert(wide.c_str(), String::npos, bytes.data(), size + 1, ok);
    if (ok) conversionState = *ok ? Clean : LostSomething;
    if (count > 0) multibyte.assign(bytes.data(), count);
  }
};

namespace {

/// Tells quickly, and sometimes falsely, that a character is in a set; never falsely that it is not.
class Sieve {
public:
  explicit Sieve(View<WChar> set) noexcept : set_(set) {
    for (const WChar c : set) bits_ |= bit(c);
  }
  [[nodiscard]] bool operator()(WChar c) const noexcept {
    return (bits_ & bit(c)) != 0 && findChar(set_, c, 0) != nowhere;
  }

private:
  static std::uint64_t bit(WChar c) noexcept { return std::uint64_t{1} << (c & 63); }
  View<WChar> set_;
  std::uint64_t bits_ = 0;
};

void answer(bool* ok, bool value) noexcept {
  if (ok) *ok = value;
}

} // namespace

IString::IString() : str_(new Record) {}
IString::IString(const WChar* chars) : IString(viewOf(chars)) {}
IString::IString(const WChar* chars, int count) : IString() {
  if (count > 0) append(chars, static_cast<std::size_t>(count));
}
IString::IString(WChar c) : IString(1u, c) {}
IString::IString(unsigned int count, WChar c) : IString() {
  checkLength(0, count);
  str_->wide.assign(count, c);
}
IString::IString(const IString& other) : IString(terminated(other.str_->wide)) {}
IString::IString(const char* chars, Encoding encoding, bool* ok) : IString() {
  convertFromMultibyte(chars, encoding, ok);
}
IString::IString(const CString& text, Encoding encoding, bool* ok) : IString(text.asChar(), encoding, ok) {}
IString::IString(char c, Encoding encoding, bool* ok) : IString(CString(c), encoding, ok) {}
IString::IString(unsigned int count, char c, Encoding encoding, bool* ok)
    : IString(CString(count, c), encoding, ok) {}
IString::~IString() { delete str_; }

IString& IString::operator=(const IString& other) { return this == &other ? *this : assign(other); }
IString& IString::operator=(IString&& other) noexcept {
  std::swap(str_, other.str_);
  return *this;
}
IString& IString::assign(const IString& other) {
  str_->wide = other.str_->wide;
  str_->changed();
  return *this;
}
IString& IString::assign(const WChar* chars) {
  str_->wide = viewOf(chars);
  str_->changed();
  return *this;
}
IString& IString::assign(const char* chars, Encoding encoding, bool* ok) {
  return *this = IString(chars, encoding, ok);
}
IString& IString::assign(const CString& text, Encoding encoding, bool* ok) {
  return assign(text.asChar(), encoding, ok);
}

unsigned int IString::length() const { return static_cast<unsigned int>(str_->wide.size()); }
unsigned int IString::capacity() const {
  return static_cast<unsigned int>(std::min(str_->wide.capacity(), maxLength));
}
unsigned int IString::reserve(unsigned int size) {
  str_->wide.reserve(size);
  return capacity();
}
unsigned int IString::maxSize() const { return maxLength; }

IString& IString::append(const IString& other) {
  return append(other.str_->wide.data(), other.str_->wide.size());
}
IString& IString::append(const WChar* chars) {
  const View<WChar> added = viewOf(chars);
  return append(added.data(), added.size());
}
IString& IString::append(const WChar* chars, std::size_t count) {
  if (chars) {
    checkLength(str_->wide.size(), count);
    str_->wide.append(chars, count);
  }
  str_->changed();
  return *this;
}
IString& IString::append(WChar c) {
  appendChar(str_->wide, c);
  str_->changed();
  return *this;
}
IString& IString::prepend(const IString& other) { return insert(0, other); }
IString& IString::prepend(const WChar* chars) { return insert(0, chars); }
IString& IString::prepend(WChar c) { return insert(0, c); }
IString& IString::insert(unsigned int pos, const IString& other) { return replace(pos, 0, other); }
IString& IString::insert(unsigned int pos, const WChar* chars) { return replace(pos, 0, chars); }
IString& IString::insert(unsigned int pos, WChar c) { return replace(pos, 0, c); }

IString& IString::erase(unsigned int pos, unsigned int count) {
  if (str_->wide.empty()) return *this;
  str_->wide.erase(pos, count);
  str_->changed();
  return *this;
}
IString& IString::remove(unsigned int pos, unsigned int count) { return erase(pos, count); }

IString& IString::replace(unsigned int pos, unsigned int count, const IString& other) {
  replaceIn(str_->wide, pos, count, other.str_->view());
  str_->changed();
  return *this;
}
IString& IString::replace(unsigned int pos, unsigned int count, const WChar* chars) {
  replaceIn(str_->wide, pos, count, viewOf(chars));
  str_->changed();
  return *this;
}
IString& IString::replace(unsigned int pos, unsigned int count, WChar c) {
  replaceIn(str_->wide, pos, count, View<WChar>(&c, 1));
  str_->changed();
  return *this;
}

IString& IString::replace(const IString& from, const IString& to) {
  const View<WChar> text = view(), gone = from.view(), with = to.view();
  std::size_t match = findText(text, gone, 0);
  if (match == nowhere) return *this;
  std::basic_string<WChar> result;
  std::size_t done = 0;
  for (; match != nowhere; match = findText(text, gone, done)) {
    checkLength(result.size() + (match - done), with.size());
    result.append(text.substr(done, match - done)).append(with);
    done = match + gone.size();
  }
  checkLength(result.size(), text.size() - done);
  result.append(text.substr(done));
  str_->wide.swap(result);
  str_->changed();
  return *this;
}

WChar& IString::at(unsigned int pos) { return str_->wide.data()[pos]; }
WChar IString::at(unsigned int pos) const { return str_->wide.data()[pos]; }

unsigned int IString::find(const IString& text, unsigned int pos) const {
  return position(findText(view(), text.view(), pos));
}
unsigned int IString::find(const WChar* text, unsigned int pos) const {
  return position(findText(view(), viewOf(text), pos));
}
unsigned int IString::find(WChar c, unsigned int pos) const { return position(findChar(view(), c, pos)); }
unsigned int IString::find(bool (*predicate)(WChar), unsigned int pos) const {
  return position(findIf(view(), predicate, pos));
}
unsigned int IString::rfind(const IString& text, unsigned int pos) const {
  return position(rfindText(view(), text.view(), pos));
}
unsigned int IString::rfind(const WChar* text, unsigned int pos) const {
  return position(rfindText(view(), viewOf(text), pos));
}
unsigned int IString::rfind(WChar c, unsigned int pos) const {
  return position(rfindText(view(), View<WChar>(&c, 1), pos));
}
unsigned int IString::rfind(bool (*predicate)(WChar), unsigned int pos) const {
  return position(rfindIf(view(), predicate, pos));
}
unsigned int IString::findAny(const IString& set, unsigned int pos) const {
  return position(findIf(view(), Sieve(set.view()), pos));
}
unsigned int IString::rfindAny(const IString& set, unsigned int pos) const {
  return position(rfindIf(view(), Sieve(set.view()), pos));
}

IString IString::substr(unsigned int pos, unsigned int count) const {
  IString part;
  substr(part, pos, count);
  return part;
}
void IString::substr(IString& out, unsigned int pos, unsigned int count) const {
  // Cut at a NUL, as every copy into a new string is.
  const View<WChar> part = view().substr(pos, count);
  out.str_->wide = part.substr(0, findChar(part, WChar(), 0));
  out.str_->changed();
}

IString& IString::strip(WChar c) {
  stripIn(str_->wide, [c](WChar each) { return each == c; });
  str_->changed();
  return *this;
}
IString& IString::rstrip(WChar c) {
  rstripIn(str_->wide, [c](WChar each) { return each == c; });
  str_->changed();
  return *this;
}
IString& IString::stripSpaces() {
  stripIn(str_->wide, [](WChar each) { return isSpace(each); });
  str_->changed();
  return *this;
}
IString& IString::rstripSpaces() {
  rstripIn(str_->wide, [](WChar each) { return isSpace(each); });
  str_->changed();
  return *this;
}
IString& IString::toLowerCase() {
  for (WChar& c : str_->wide) c = toLower(c);
  str_->changed();
  return *this;
}
IString& IString::toUpperCase() {
  for (WChar& c : str_->wide) c = toUpper(c);
  str_->changed();
  return *this;
}
bool IString::isAscii() const { return allAscii(view()); }

int IString::compare(const IString& other) const { return compareText(str_->view(), other.str_->view()); }
int IString::collate(const IString& other) const {
  return std::wcscoll(runtimeForm(asWChar()).c_str(), runtimeForm(other.asWChar()).c_str());
}
int IString::compareNoCase(const IString& other) const {
  // What is compared are copies, which end at the first NUL.
  return compareLowered(terminated(str_->wide), terminated(other.str_->wide),
                        [](WChar c) { return toLower(c); });
}
int IString::collateNoCase(const IString& other) const {
  return IString(*this).toLowerCase().collate(IString(other).toLowerCase());
}

void IString::swap(IString& other) noexcept {
  str_->wide.swap(other.str_->wide);
  str_->changed(); // the other's narrow form deliberately stays
}

unsigned int IString::format(const WChar* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = str_->format(formatBufferSize, format, args);
  va_end(args);
  return result;
}
unsigned int IString::format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = str_->format(formatBufferSize, IString(format).asWChar(), args);
  va_end(args);
  return result;
}
unsigned int IString::format(const IString* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = str_->format(formatBufferSize, format ? format->asWChar() : nullptr, args);
  va_end(args);
  return result;
}
unsigned int IString::format(unsigned int bufferSize, const WChar* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = str_->format(bufferSize, format, args);
  va_end(args);
  return result;
}
unsigned int IString::format(unsigned int bufferSize, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = str_->format(bufferSize, IString(format).asWChar(), args);
  va_end(args);
  return result;
}
unsigned int IString::format(unsigned int bufferSize, const IString* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = str_->format(bufferSize, format ? format->asWChar() : nullptr, args);
  va_end(args);
  return result;
}
unsigned int IString::vformat(const WChar* format, va_list args) {
  return str_->format(formatBufferSize, format, args);
}
unsigned int IString::vformat(const char* format, va_list args) {
  return str_->format(formatBufferSize, IString(format).asWChar(), args);
}
const WChar* IString::asWChar() const { return str_->wide.c_str(); }
unsigned int IString::asWCharStoreSize() const {
  const std::size_t bytes = (str_->wide.size() + 1) * sizeof(WChar);
  return static_cast<unsigned int>(std::min<std::size_t>(bytes, 0xFFFFFFFFu));
}
WChar* IString::copyAsWChar() const { return heapCopy(view()); }

const char* IString::asMultibyte(Encoding encoding, bool* ok) const {
  convertToMultibyte(encoding, ok);
  return str_->multibyte.c_str();
}
unsigned int IString::asMultibyteStoreSize(Encoding encoding) const {
  convertToMultibyte(encoding, nullptr);
  return static_cast<unsigned int>(str_->multibyte.size() + 1);
}
char* IString::copyAsMultibyte(Encoding encoding, bool* ok) const {
  convertToMultibyte(encoding, ok);
  return heapCopy(std::string_view(str_->multibyte));
}
CString IString::convertToCString() const { return CString(asMultibyte()); }

void IString::convertFromMultibyte(const char* chars, Encoding encoding, bool* ok) {
  answer(ok, false);
  const std::string_view source = viewOf(chars);
  if (source.empty()) {
    str_->wide.clear();
    str_->changed();
    answer(ok, true);
    return;
  }
  // No encoding makes more units than it reads bytes, so one pass suffices.
  checkLength(source.size(), 1);
  const auto room = static_cast<unsigned int>(source.size() + 1);
  Scratch<WChar> units(room);
  const unsigned int count = encoding == UTF8Encoding ? UTF8toWCS(chars, npos, units.data(), room, false, ok)
                                                      : MBStoWCS(chars, npos, units.data(), room, ok);
  if (count == 0) return; // nothing but a byte order mark: `*ok` is false
  str_->wide.assign(units.data(), count);
  str_->changed();
}

void IString::convertToMultibyte(Encoding encoding, bool* ok) const {
  Record& record = *str_;
  // A conversion that nobody asked about left no answer, so it is made again.
  if (ok && record.conversionState == Record::NobodyAsked) record.stale = true;
  if (!record.stale && record.multibyteEncoding == encoding) {
    answer(ok, record.conversionState == Record::Clean);
    return;
  }
  answer(ok, false);
  record.conversionState = Record::NobodyAsked;
  if (record.wide.empty()) {
    record.multibyte.clear();
    record.conversionState = Record::Clean;
    answer(ok, true);
  } else {
    record.encode(encoding, ok);
  }
  record.multibyteEncoding = encoding;
  record.stale = false;
}

bool operator==(const IString& a, const IString& b) {
  const View<WChar> left = a.view(), right = b.view();
  return left.size() == right.size() && equalChars(left.data(), right.data(), left.size());
}

IString operator+(const IString& a, const IString& b) {
  const View<WChar> left(a.asWChar()); // the left side is copied, so it ends at its first NUL
  IString sum;
  sum.reserve(static_cast<unsigned int>(std::min<std::size_t>(left.size() + b.length(), maxLength)));
  sum.append(left.data(), left.size());
  sum.append(b);
  return sum;
}

unsigned int hashfunction(const IString& text) {
  return qv::hashfunction(text.asWChar(), static_cast<int>(text.length()));
}

} // namespace qvString

char* IStringToTCHARCopy(const qvString::IString& text) {
  const unsigned int size = text.asMultibyteStoreSize();
  char* const copy = new char[size];
  std::memcpy(copy, text.asMultibyte(), size);
  return copy;
}
