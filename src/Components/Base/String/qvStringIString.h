// IString: wide text for anything that a person sees or that names a file, with a cached narrow form.
#pragma once

#include "Base/Containers/qvRelocatable.h"
#include "Base/String/qvStringBase.h"
#include "Base/String/qvStringConvert.h"

#include <cstdarg>
#include <string_view>

namespace qvString {

class CString;

/// A counted string of 16-bit units that always ends in a NUL; surrogates need not pair up. Copies are deep.
/// The narrow form is made when it is first asked for and kept, in one encoding at a time, until the text
/// changes.
///
/// A position beyond the string throws std::out_of_range where the operation checks it, and a length above
/// `maxSize` std::length_error. A null pointer counts as an empty string everywhere. An `ok` may always be
/// null; it tells whether a conversion lost nothing.
///
/// Asking for a narrow form writes the cache, even on a constant string: two threads must not do so at once
/// on one object. Other constant operations may run together. Any change invalidates the pointers that were
/// handed out, and any call for a narrow form may invalidate the pointer of an earlier one.
class QV_BASE_API IString : public String {
public:
  using String::npos;

  IString();
  IString(const qv::WChar* chars);
  /// The first `count` characters at `chars`, NULs included; a negative count counts as 0.
  IString(const qv::WChar* chars, int count);
  IString(qv::WChar c);
  IString(unsigned int count, qv::WChar c);
  explicit IString(std::basic_string_view<qv::WChar> text) : IString() { append(text.data(), text.size()); }
  /// Copies up to the first NUL only, unlike assignment, which copies everything.
  IString(const IString& other);
  /// Decodes narrow text.
  IString(const char* chars, Encoding encoding = DefaultEncoding, bool* ok = nullptr);
  IString(const CString& text, Encoding encoding = DefaultEncoding, bool* ok = nullptr);
  IString(char c, Encoding encoding = DefaultEncoding, bool* ok = nullptr);
  IString(unsigned int count, char c, Encoding encoding = DefaultEncoding, bool* ok = nullptr);
  ~IString() override;

  IString& operator=(const IString& other);
  /// Takes the content of `other`, which keeps some valid content.
  IString& operator=(IString&& other) noexcept;
  IString& assign(const IString& other);
  IString& assign(const qv::WChar* chars);
  /// Decodes narrow text. If that yields no characters, the string becomes empty.
  IString& assign(const char* chars, Encoding encoding = DefaultEncoding, bool* ok = nullptr);
  IString& assign(const CString& text, Encoding encoding = DefaultEncoding, bool* ok = nullptr);

  [[nodiscard]] unsigned int length() const override;
  [[nodiscard]] unsigned int capacity() const override;
  unsigned int reserve(unsigned int size) override;
  [[nodiscard]] unsigned int maxSize() const override;

  virtual IString& append(const IString& other);
  IString& append(const qv::WChar* chars);
  IString& append(const qv::WChar* chars, std::size_t count);
  IString& append(qv::WChar c);
  IString& prepend(const IString& other);
  IString& prepend(const qv::WChar* chars);
  IString& prepend(qv::WChar c);
  IString& insert(unsigned int pos, const IString& other);
  IString& insert(unsigned int pos, const qv::WChar* chars);
  IString& insert(unsigned int pos, qv::WChar c);

  /// Removes `count` characters from `pos`. Does nothing to an empty string, whatever `pos` is.
  IString& erase(unsigned int pos = 0, unsigned int count = npos);
  /// The same as `erase`.
  IString& remove(unsigned int pos = 0, unsigned int count = npos);
  /// Puts the second text in the place of `count` characters from `pos`.
  IString& replace(unsigned int pos, unsigned int count, const IString& other);
  IString& replace(unsigned int pos, unsigned int count, const qv::WChar* chars);
  IString& replace(unsigned int pos, unsigned int count, qv::WChar c);
  /// Replaces every occurrence of `from` by `to`. Inserted text is not searched again.
  IString& replace(const IString& from, const IString& to);

  /// The character at `pos`, unchecked; `length()` gives the terminator. Writing through the reference does
  /// not make a narrow form anew that was made before: it keeps the earlier text until the next other change.
  [[nodiscard]] qv::WChar& at(unsigned int pos);
  [[nodiscard]] qv::WChar at(unsigned int pos) const;
  [[nodiscard]] qv::WChar& operator[](unsigned int pos) { return at(pos); }
  [[nodiscard]] qv::WChar operator[](unsigned int pos) const { return at(pos); }

  /// The first match that begins at or after `pos`; `npos` if there is none or if either string is empty.
  [[nodiscard]] unsigned int find(const IString& text, unsigned int pos = 0) const;
  [[nodiscard]] unsigned int find(const qv::WChar* text, unsigned int pos = 0) const;
  [[nodiscard]] unsigned int find(qv::WChar c, unsigned int pos = 0) const;
  /// The first character at or after `pos` for which the predicate holds, else `npos`.
  [[nodiscard]] unsigned int find(bool (*predicate)(qv::WChar), unsigned int pos = 0) const;
  /// The last match that begins at or before `pos`; `npos` if there is none or if either string is empty.
  [[nodiscard]] unsigned int rfind(const IString& text, unsigned int pos = npos) const;
  [[nodiscard]] unsigned int rfind(const qv::WChar* text, unsigned int pos = npos) const;
  [[nodiscard]] unsigned int rfind(qv::WChar c, unsigned int pos = npos) const;
  /// The last character at or before `pos` for which the predicate holds, else `npos`.
  [[nodiscard]] unsigned int rfind(bool (*predicate)(qv::WChar), unsigned int pos = npos) const;
  /// The first character at or after `pos` that belongs to `set`; `npos` if there is none.
  [[nodiscard]] unsigned int findAny(const IString& set, unsigned int pos = 0) const;
  /// The last character at or before `pos` that belongs to `set`; `npos` if there is none.
  [[nodiscard]] unsigned int rfindAny(const IString& set, unsigned int pos = npos) const;

  /// At most `count` characters from `pos`, cut at the first NUL among them.
  [[nodiscard]] IString substr(unsigned int pos = 0, unsigned int count = npos) const;
  void substr(IString& out, unsigned int pos = 0, unsigned int count = npos) const;

  /// Removes every copy of `c` from the start only.
  IString& strip(qv::WChar c);
  /// Removes every copy of `c` from the end only.
  IString& rstrip(qv::WChar c);
  /// Removes what `isSpace` accepts from the start only.
  IString& stripSpaces();
  /// Removes what `isSpace` accepts from the end only.
  IString& rstripSpaces();
  /// Turns each character with `toLower` or `toUpper`, as the C runtime's locale has it.
  IString& toLowerCase();
  IString& toUpperCase();
  /// True if every character is below 128.
  [[nodiscard]] bool isAscii() const;

  /// Compares as unsigned 16-bit units. @return below, at or above zero.
  [[nodiscard]] int compare(const IString& other) const;
  /// Compares in the order of the C runtime's locale.
  [[nodiscard]] int collate(const IString& other) const;
  /// The same two, of lower-case copies.
  [[nodiscard]] int compareNoCase(const IString& other) const;
  [[nodiscard]] int collateNoCase(const IString& other) const;

  /// Exchanges the texts. Only this string's narrow form is made anew: one that `other` made before stays,
  /// though it belongs to the old text, until `other` changes. Assign where the narrow form matters.
  void swap(IString& other) noexcept;

  /// Replaces the content by the formatted text; `%s` is narrow text and `%S` wide text, in a narrow format
  /// (which is decoded with `DefaultEncoding`) and a wide one alike. The arguments may point into this
  /// string. `bufferSize`, in characters, is the first guess of the room that the text needs.
  /// @return the new length; `npos` if the text is empty, and then the old content stays.
  unsigned int format(const qv::WChar* format, ...);
  unsigned int format(const char* format, ...);
  unsigned int format(const IString* format, ...);
  unsigned int format(unsigned int bufferSize, const qv::WChar* format, ...);
  unsigned int format(unsigned int bufferSize, const char* format, ...);
  unsigned int format(unsigned int bufferSize, const IString* format, ...);
  unsigned int vformat(const qv::WChar* format, va_list args);
  unsigned int vformat(const char* format, va_list args);

  /// The characters and a terminating NUL, valid until the next change.
  [[nodiscard]] const qv::WChar* asWChar() const;
  [[nodiscard]] const qv::WChar* asUnicode() const { return asWChar(); }
  /// The number of bytes (not characters) at `asWChar()`, the terminator included; at most 0xFFFFFFFF.
  [[nodiscard]] unsigned int asWCharStoreSize() const;
  [[nodiscard]] unsigned int asUnicodeStoreSize() const { return asWCharStoreSize(); }
  /// A terminated copy that the caller frees with `free`.
  [[nodiscard]] qv::WChar* copyAsWChar() const;

  /// The text up to its first NUL in a narrow encoding, with a terminating NUL. What the encoding cannot
  /// express is replaced, and `*ok` is false then. Never null.
  [[nodiscard]] const char* asMultibyte(Encoding encoding = DefaultEncoding, bool* ok = nullptr) const;
  /// The number of bytes of the narrow form, the terminator included.
  [[nodiscard]] unsigned int asMultibyteStoreSize(Encoding encoding = DefaultEncoding) const;
  [[nodiscard]] const char* asUTF8(bool* ok = nullptr) const { return asMultibyte(UTF8Encoding, ok); }
  [[nodiscard]] unsigned int asUTF8StoreSize() const { return asMultibyteStoreSize(UTF8Encoding); }
  /// A terminated copy of the narrow form that the caller frees with `free`.
  [[nodiscard]] char* copyAsMultibyte(Encoding encoding = DefaultEncoding, bool* ok = nullptr) const;
  /// The `DefaultEncoding` form.
  [[nodiscard]] CString convertToCString() const;

  /// The content, NULs included, valid until the next change.
  [[nodiscard]] std::basic_string_view<qv::WChar> view() const { return {asWChar(), length()}; }

private:
  void convertFromMultibyte(const char* chars, Encoding encoding, bool* ok);
  void convertToMultibyte(Encoding encoding, bool* ok) const;

  struct Record;
  Record* str_; // never null
};

static_assert(sizeof(IString) == 2 * sizeof(void*));

QV_BASE_API bool operator==(const IString& a, const IString& b);
inline bool operator!=(const IString& a, const IString& b) { return !(a == b); }
inline bool operator<(const IString& a, const IString& b) { return a.compare(b) < 0; }
inline bool operator>(const IString& a, const IString& b) { return a.compare(b) > 0; }
inline bool operator<=(const IString& a, const IString& b) { return a.compare(b) <= 0; }
inline bool operator>=(const IString& a, const IString& b) { return a.compare(b) >= 0; }

/// A copy of `a` with `b` appended.
[[nodiscard]] QV_BASE_API IString operator+(const IString& a, const IString& b);
inline IString& operator+=(IString& a, const IString& b) { return a.append(b); }
inline IString& operator+=(IString& a, const qv::WChar* b) { return a.append(b); }
inline IString& operator+=(IString& a, qv::WChar b) { return a.append(b); }

inline void swap(IString& a, IString& b) noexcept { a.swap(b); }

/// The counted byte hash of the characters, two bytes for each.
[[nodiscard]] QV_BASE_API unsigned int hashfunction(const IString& text);

} // namespace qvString

template <>
inline constexpr bool qv::isRelocatable<qvString::IString> = true;

/// The `DefaultEncoding` form as an array of the library's `new char[]`, for callers that cannot hold the
/// class. The caller releases it with `delete[]`.
extern "C" QV_BASE_API char* IStringToTCHARCopy(const qvString::IString& text);
