// CString: counted bytes for machines, such as keys, option names and narrow formats. It knows no encoding.
#pragma once

#include "Base/Containers/qvRelocatable.h"
#include "Base/String/qvStringBase.h"

#include <cstdarg>
#include <string_view>

namespace qvString {

/// A counted string of bytes that always ends in a NUL. Copies are deep. A position beyond the string throws
/// std::out_of_range where the operation checks it, and a length above `maxSize` std::length_error. Any
/// change invalidates the pointers that were handed out. A null pointer counts as an empty string everywhere.
/// Not thread-safe while it changes; constant operations may run together.
class QV_BASE_API CString : public String {
public:
  using String::npos;

  CString();
  CString(const char* chars);
  /// The first `count` characters at `chars`, NULs included; a negative count counts as 0.
  CString(const char* chars, int count);
  CString(char c);
  CString(unsigned int count, char c);
  explicit CString(std::string_view text) : CString() { append(text.data(), text.size()); }
  CString(const CString& other);
  ~CString() override;

  CString& operator=(const CString& other);
  /// Takes the content of `other`, which keeps some valid content.
  CString& operator=(CString&& other) noexcept;
  CString& assign(const CString& other);
  CString& assign(const char* chars);

  [[nodiscard]] unsigned int length() const override;
  [[nodiscard]] unsigned int capacity() const override;
  unsigned int reserve(unsigned int size) override;
  [[nodiscard]] unsigned int maxSize() const override;

  virtual CString& append(const CString& other);
  CString& append(const char* chars);
  CString& append(const char* chars, std::size_t count);
  CString& append(char c);
  CString& prepend(const CString& other);
  CString& prepend(const char* chars);
  CString& prepend(char c);
  CString& insert(unsigned int pos, const CString& other);
  CString& insert(unsigned int pos, const char* chars);
  CString& insert(unsigned int pos, char c);

  /// Removes `count` characters from `pos`. Does nothing to an empty string, whatever `pos` is.
  CString& erase(unsigned int pos = 0, unsigned int count = npos);
  /// The same as `erase`.
  CString& remove(unsigned int pos = 0, unsigned int count = npos);
  /// Puts the second text in the place of `count` characters from `pos`.
  CString& replace(unsigned int pos, unsigned int count, const CString& other);
  CString& replace(unsigned int pos, unsigned int count, const char* chars);
  CString& replace(unsigned int pos, unsigned int count, char c);

  /// The character at `pos`, unchecked; `length()` gives the terminator.
  [[nodiscard]] char& at(unsigned int pos);
  [[nodiscard]] char at(unsigned int pos) const;
  [[nodiscard]] char& operator[](unsigned int pos) { return at(pos); }
  [[nodiscard]] char operator[](unsigned int pos) const { return at(pos); }

  /// The first match that begins at or after `pos`; `npos` if there is none or if either string is empty.
  [[nodiscard]] unsigned int find(const CString& text, unsigned int pos = 0) const;
  [[nodiscard]] unsigned int find(const char* text, unsigned int pos = 0) const;
  [[nodiscard]] unsigned int find(char c, unsigned int pos = 0) const;
  /// The first character at or after `pos` for which the predicate holds, else `npos`.
  [[nodiscard]] unsigned int find(bool (*predicate)(char), unsigned int pos = 0) const;
  /// The last match that begins at or before `pos`; `npos` if there is none or if either string is empty.
  [[nodiscard]] unsigned int rfind(const CString& text, unsigned int pos = npos) const;
  [[nodiscard]] unsigned int rfind(const char* text, unsigned int pos = npos) const;
  [[nodiscard]] unsigned int rfind(char c, unsigned int pos = npos) const;
  /// The last character at or before `pos` for which the predicate holds, else `npos`.
  [[nodiscard]] unsigned int rfind(bool (*predicate)(char), unsigned int pos = npos) const;

  /// At most `count` characters from `pos`.
  [[nodiscard]] CString substr(unsigned int pos = 0, unsigned int count = npos) const;

  /// Removes every copy of `c` from the start only.
  CString& strip(char c);
  /// Removes every copy of `c` from the end only.
  CString& rstrip(char c);
  /// Removes what `isSpace` accepts from the start only.
  CString& stripSpaces();
  /// Removes what `isSpace` accepts from the end only.
  CString& rstripSpaces();
  /// Turns each character with `toLower` or `toUpper`, as the C runtime's locale has it.
  CString& toLowerCase();
  CString& toUpperCase();
  /// True if every character is below 128.
  [[nodiscard]] bool isAscii() const;

  /// Compares as unsigned bytes. @return below, at or above zero.
  [[nodiscard]] int compare(const CString& other) const;
  [[nodiscard]] int compare(const char* chars) const;
  /// Compares in the order of the C runtime's locale.
  [[nodiscard]] int collate(const CString& other) const;
  /// The same two, of lower-case copies.
  [[nodiscard]] int compareNoCase(const CString& other) const;
  [[nodiscard]] int collateNoCase(const CString& other) const;

  void swap(CString& other) noexcept;

  /// Replaces the content by the formatted text; `%s` is narrow text and `%S` wide text. The arguments may
  /// point into this string. `bufferSize`, in characters, is the first guess of the room that the text needs.
  /// @return the new length; `npos` if the text is empty, and then the old content stays.
  unsigned int format(const char* format, ...);
  unsigned int format(const CString* format, ...);
  unsigned int format(unsigned int bufferSize, const char* format, ...);
  unsigned int format(unsigned int bufferSize, const CString* format, ...);
  unsigned int vformat(const char* format, va_list args);

  /// The characters and a terminating NUL, valid until the next change.
  [[nodiscard]] const char* asChar() const;
  [[nodiscard]] const char* asMultibyte() const { return asChar(); }
  /// The number of bytes at `asChar()`, the terminator included.
  [[nodiscard]] unsigned int asCharStoreSize() const;
  [[nodiscard]] unsigned int asMultibyteStoreSize() const { return asCharStoreSize(); }
  /// A terminated copy that the caller frees with `free`.
  [[nodiscard]] char* copyAsChar() const;
  [[nodiscard]] char* copyAsMultibyte() const { return copyAsChar(); }

  /// The content, valid until the next change.
  [[nodiscard]] std::string_view view() const { return {asChar(), length()}; }

private:
  struct Record;
  Record* str_; // never null
};

static_assert(sizeof(CString) == 2 * sizeof(void*));

QV_BASE_API bool operator==(const CString& a, const CString& b);
QV_BASE_API bool operator==(const CString& a, const char* b);
inline bool operator!=(const CString& a, const CString& b) { return !(a == b); }
inline bool operator!=(const CString& a, const char* b) { return !(a == b); }
inline bool operator<(const CString& a, const CString& b) { return a.compare(b) < 0; }
inline bool operator>(const CString& a, const CString& b) { return a.compare(b) > 0; }
inline bool operator<=(const CString& a, const CString& b) { return a.compare(b) <= 0; }
inline bool operator>=(const CString& a, const CString& b) { return a.compare(b) >= 0; }

/// A copy of `a` with `b` appended.
[[nodiscard]] QV_BASE_API CString operator+(const CString& a, const CString& b);
inline CString& operator+=(CString& a, const CString& b) { return a.append(b); }
inline CString& operator+=(CString& a, const char* b) { return a.append(b); }
inline CString& operator+=(CString& a, char b) { return a.append(b); }

inline void swap(CString& a, CString& b) noexcept { a.swap(b); }

/// The counted byte hash of the characters.
[[nodiscard]] QV_BASE_API unsigned int hashfunction(const CString& text);

} // namespace qvString

template <>
inline constexpr bool qv::isRelocatable<qvString::CString> = true;

/// A new string on the heap for callers that cannot hold the class; `CString_delete` destroys it.
extern "C" QV_BASE_API qvString::CString* CString_create(const char* chars);
/// Destroys what `CString_create` returned; null is accepted.
extern "C" QV_BASE_API void CString_delete(qvString::CString* string);
