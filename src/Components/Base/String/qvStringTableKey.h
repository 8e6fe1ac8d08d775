// Key: what a text in a string table is asked for by.
#pragma once

#include "Base/Containers/qvRelocatable.h"
#include "Base/String/qvStringCString.h"
#include "Base/qvBase.h"

namespace qvStringTable {

/// A text such as "menu.open": the name of a set of texts and the name of an entry in it. Any text may be
/// held; `isValidKeyString` tells which are keys. A program that looks up often keeps its keys ready.
class Key {
public:
  Key() = default;
  Key(const qvString::CString& text) : text_(text) {}
  Key(const char* text) : text_(text) {}
  Key& assign(const Key& other) { return *this = other; }
  Key& assign(const qvString::CString& text) { return *this = text; }
  Key& assign(const char* text) { return *this = text; }
  Key& operator=(const qvString::CString& text) {
    text_ = text;
    return *this;
  }
  Key& operator=(const char* text) {
    text_.assign(text);
    return *this;
  }

  [[nodiscard]] const qvString::CString& value() const noexcept { return text_; }
  /// Compares the texts as unsigned bytes. @return below, at or above zero.
  [[nodiscard]] int compare(const Key& other) const { return text_.compare(other.text_); }
  [[nodiscard]] bool operator==(const Key& other) const { return text_ == other.text_; }
  [[nodiscard]] bool operator<(const Key& other) const { return compare(other) < 0; }

  /// True if `text` consists of what `qvString::isAlnum` accepts, underscores and full stops, and
  /// `qvUtil::split` cuts it at these into exactly two parts that are not empty: a full stop at the very end
  /// is passed over, as it is there.
  [[nodiscard]] QV_BASE_API static bool isValidKeyString(const qvString::CString& text);
  /// Stores what `qvUtil::split` makes of the text where that is two parts, of which the first or second may
  /// be empty. Otherwise `setID` becomes empty, `rest` the whole text, and the result is false.
  QV_BASE_API bool getSubParts(qvString::CString& setID, qvString::CString& rest) const;
  /// Compares the `setID` of both keys, as unsigned bytes.
  [[nodiscard]] QV_BASE_API int compareSetID(const Key& other) const;

private:
  qvString::CString text_;
};

static_assert(sizeof(Key) == sizeof(qvString::CString));

} // namespace qvStringTable

template <>
inline constexpr bool qv::isRelocatable<qvStringTable::Key> = true;
