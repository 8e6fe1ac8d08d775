#include "Base/String/qvStringCString.h"

#include "Base/Containers/qvHashFunction.h"
#include "Base/String/qvStringCharacter.h"
#include "Base/String/qvStringFormatInto.h"
#include "Base/String/qvStringScan.h"

#include <cstring>

namespace qvString {

struct CString::Record {
  std::string text;
};

CString::CString() : str_(new Record) {}
CString::CString(const char* chars) : str_(new Record{std::string(viewOf(chars))}) {}
CString::CString(const char* chars, int count) : CString() {
  if (chars && count > 0) str_->text.assign(chars, static_cast<std::size_t>(count));
}
CString::CString(char c) : CString(1u, c) {}
CString::CString(unsigned int count, char c) : CString() {
  checkLength(0, count);
  str_->text.assign(count, c);
}
CString::CString(const CString& other) : String(), str_(new Record(*other.str_)) {}
CString::~CString() { delete str_; }

CString& CString::operator=(const CString& other) { return assign(other); }
CString& CString::operator=(CString&& other) noexcept {
  std::swap(str_, other.str_);
  return *this;
}
CString& CString::assign(const CString& other) {
  str_->text = other.str_->text;
  return *this;
}
CString& CString::assign(const char* chars) {
  str_->text = viewOf(chars);
  return *this;
}

unsigned int CString::length() const { return static_cast<unsigned int>(str_->text.size()); }
unsigned int CString::capacity() const {
  return static_cast<unsigned int>(std::min(str_->text.capacity(), maxLength));
}
unsigned int CString::reserve(unsigned int size) {
  str_->text.reserve(size);
  return capacity();
}
unsigned int CString::maxSize() const { return maxLength; }

CString& CString::append(const CString& other) {
  return append(other.str_->text.data(), other.str_->text.size());
}
CString& CString::append(const char* chars) {
  const std::string_view added = viewOf(chars);
  return append(added.data(), added.size());
}
CString& CString::append(const char* chars, std::size_t count) {
  if (!chars) return *this;
  checkLength(str_->text.size(), count);
  str_->text.append(chars, count);
  return *this;
}
CString& CString::append(char c) {
  appendChar(str_->text, c);
  return *this;
}
CString& CString::prepend(const CString& other) { return insert(0, other); }
CString& CString::prepend(const char* chars) { return insert(0, chars); }
CString& CString::prepend(char c) { return insert(0, c); }
CString& CString::insert(unsigned int pos, const CString& other) { return replace(pos, 0, other); }
CString& CString::insert(unsigned int pos, const char* chars) { return replace(pos, 0, chars); }
CString& CString::insert(unsigned int pos, char c) { return replace(pos, 0, c); }

CString& CString::erase(unsigned int pos, unsigned int count) {
  if (!str_->text.empty()) str_->text.erase(pos, count);
  return *this;
}
CString& CString::remove(unsigned int pos, unsigned int count) { return erase(pos, count); }

CString& CString::replace(unsigned int pos, unsigned int count, const CString& other) {
  replaceIn(str_->text, pos, count, std::string_view(other.str_->text));
  return *this;
}
CString& CString::replace(unsigned int pos, unsigned int count, const char* chars) {
  replaceIn(str_->text, pos, count, viewOf(chars));
  return *this;
}
CString& CString::replace(unsigned int pos, unsigned int count, char c) {
  replaceIn(str_->text, pos, count, std::string_view(&c, 1));
  return *this;
}

char& CString::at(unsigned int pos) { return str_->text.data()[pos]; }
char CString::at(unsigned int pos) const { return str_->text.data()[pos]; }

unsigned int CString::find(const CString& text, unsigned int pos) const {
  return position(findText(view(), text.view(), pos));
}
unsigned int CString::find(const char* text, unsigned int pos) const {
  return position(findText(view(), viewOf(text), pos));
}
unsigned int CString::find(char c, unsigned int pos) const { return position(findChar(view(), c, pos)); }
unsigned int CString::find(bool (*predicate)(char), unsigned int pos) const {
  return position(findIf(view(), predicate, pos));
}
unsigned int CString::rfind(const CString& text, unsigned int pos) const {
  return position(rfindText(view(), text.view(), pos));
}
unsigned int CString::rfind(const char* text, unsigned int pos) const {
  return position(rfindText(view(), viewOf(text), pos));
}
unsigned int CString::rfind(char c, unsigned int pos) const {
  return position(rfindText(view(), std::string_view(&c, 1), pos));
}
unsigned int CString::rfind(bool (*predicate)(char), unsigned int pos) const {
  return position(rfindIf(view(), predicate, pos));
}

CString CString::substr(unsigned int pos, unsigned int count) const {
  return CString(view().substr(pos, count));
}

CString& CString::strip(char c) {
  stripIn(str_->text, [c](char each) { return each == c; });
  return *this;
}
CString& CString::rstrip(char c) {
  rstripIn(str_->text, [c](char each) { return each == c; });
  return *this;
}
CString& CString::stripSpaces() {
  stripIn(str_->text, [](char each) { return isSpace(each); });
  return *this;
}
CString& CString::rstripSpaces() {
  rstripIn(str_->text, [](char each) { return isSpace(each); });
  return *this;
}
CString& CString::toLowerCase() {
  for (char& c : str_->text) c = toLower(c);
  return *this;
}
CString& CString::toUpperCase() {
  for (char& c : str_->text) c = toUpper(c);
  return *this;
}
bool CString::isAscii() const { return allAscii(view()); }

int CString::compare(const CString& other) const { return compareText(view(), other.view()); }
int CString::compare(const char* chars) const { return compareText(view(), viewOf(chars)); }
int CString::collate(const CString& other) const { return std::strcoll(asChar(), other.asChar()); }
int CString::compareNoCase(const CString& other) const {
  return compareLowered(view(), other.view(), [](char c) { return toLower(c); });
}
int CString::collateNoCase(const CString& other) const {
  return CString(*this).toLowerCase().collate(CString(other).toLowerCase());
}

void CString::swap(CString& other) noexcept { str_->text.swap(other.str_->text); }

unsigned int CString::format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = formatInto(str_->text, formatBufferSize, format, args);
  va_end(args);
  return result;
}
unsigned int CString::format(const CString* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result =
      formatInto(str_->text, formatBufferSize, format ? format->asChar() : nullptr, args);
  va_end(args);
  return result;
}
unsigned int CString::format(unsigned int bufferSize, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = formatInto(str_->text, bufferSize, format, args);
  va_end(args);
  return result;
}
unsigned int CString::format(unsigned int bufferSize, const CString* format, ...) {
  va_list args;
  va_start(args, format);
  const unsigned int result = formatInto(str_->text, bufferSize, format ? format->asChar() : nullptr, args);
  va_end(args);
  return result;
}
unsigned int CString::vformat(const char* format, va_list args) {
  return formatInto(str_->text, formatBufferSize, format, args);
}

const char* CString::asChar() const { return str_->text.c_str(); }
unsigned int CString::asCharStoreSize() const { return length() + 1; }
char* CString::copyAsChar() const { return heapCopy(view()); }

bool operator==(const CString& a, const CString& b) {
  const std::string_view left = a.view(), right = b.view();
  return left.size() == right.size() && equalChars(left.data(), right.data(), left.size());
}
bool operator==(const CString& a, const char* b) { return a.compare(b) == 0; }

CString operator+(const CString& a, const CString& b) {
  CString sum;
  sum.reserve(
      static_cast<unsigned int>(std::min<std::size_t>(std::size_t{a.length()} + b.length(), maxLength)));
  sum.append(a);
  sum.append(b);
  return sum;
}

unsigned int hashfunction(const CString& text) {
  const std::string_view chars = text.view();
  return qv::hashfunction(chars.data(), chars.data() + chars.size());
}

} // namespace qvString

qvString::CString* CString_create(const char* chars) { return new qvString::CString(chars); }
void CString_delete(qvString::CString* string) { delete string; }
