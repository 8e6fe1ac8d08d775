// Interned strings: one record for each distinct text of the process, so that a handle is one pointer and two
// handles of equal text are equal pointers. A text is kept for good by a constant handle, or for as long as a
// dynamic handle refers to it.
#pragma once

#include "Base/Containers/qvRelocatable.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"

#include <cstdint>
#include <utility>

namespace qvString {

/// The interned record, for `T` of `CString` or `IString`. It never moves.
template <class T>
struct InternalString {
  T string;
  std::int32_t refs = 0; ///< Dynamic handles. Changed by `increaseStringRef` and `decreaseStringRef` only.
  bool constant = false; ///< Interned for good: never removed by the count.
};

/// Adds one holder. Ignores null.
QV_BASE_API void increaseStringRef(InternalString<CString>* record);
QV_BASE_API void increaseStringRef(InternalString<IString>* record);

/// Takes one holder away; with the last one the record goes, unless it is constant. Ignores null.
QV_BASE_API void decreaseStringRef(InternalString<CString>* record);
QV_BASE_API void decreaseStringRef(InternalString<IString>* record);

/// What both handles offer: a pointer to the record, null in a default-built handle.
template <class T>
class StringHandle {
public:
  [[nodiscard]] bool isNull() const noexcept { return !record_; }
  /// The text; only for a handle that isn't null.
  [[nodiscard]] const T& string() const noexcept { return record_->string; }
  [[nodiscard]] const InternalString<T>* record() const noexcept { return record_; }
  /// Handles are equal exactly when their texts are: one comparison of pointers.
  [[nodiscard]] bool operator==(const StringHandle& other) const noexcept { return record_ == other.record_; }

protected:
  StringHandle() = default;
  explicit StringHandle(InternalString<T>* record) noexcept : record_(record) {}

  InternalString<T>* record_ = nullptr;
};

/// Refers to a text that stays for good. Copies freely and holds no count.
template <class T>
class ConstantString : public StringHandle<T> {
public:
  ConstantString() = default;
  explicit ConstantString(InternalString<T>* record) noexcept : StringHandle<T>(record) {}
};

/// Holds one count of its record for as long as it lives.
template <class T>
class DynamicString : public StringHandle<T> {
public:
  DynamicString() = default;
  /// Takes over one count that the caller holds.
  explicit DynamicString(InternalString<T>* record) noexcept : StringHandle<T>(record) {}
  DynamicString(const DynamicString& other) : StringHandle<T>(other) { increaseStringRef(this->record_); }
  DynamicString(DynamicString&& other) noexcept : StringHandle<T>(std::exchange(other.record_, nullptr)) {}
  ~DynamicString() { decreaseStringRef(this->record_); }
  DynamicString& operator=(DynamicString other) noexcept {
    std::swap(this->record_, other.record_);
    return *this;
  }
};

using ConstantCString = ConstantString<CString>;
using ConstantIString = ConstantString<IString>;
using DynamicCString = DynamicString<CString>;
using DynamicIString = DynamicString<IString>;

static_assert(sizeof(InternalString<CString>) == sizeof(CString) + 8);
static_assert(sizeof(ConstantCString) == sizeof(void*) && sizeof(DynamicIString) == sizeof(void*));

/// The handle of the one record for `text`, added if absent and kept for good. A null text is an empty one.
[[nodiscard]] QV_BASE_API ConstantCString intern(const CString& text);
[[nodiscard]] QV_BASE_API ConstantCString intern(const char* text);
[[nodiscard]] QV_BASE_API ConstantIString intern(const IString& text);
[[nodiscard]] QV_BASE_API ConstantIString intern(const qv::WChar* text);

/// The same, kept while a dynamic handle refers to it.
[[nodiscard]] QV_BASE_API DynamicCString intern_dynamic(const CString& text);
[[nodiscard]] QV_BASE_API DynamicCString intern_dynamic(const char* text);
[[nodiscard]] QV_BASE_API DynamicIString intern_dynamic(const IString& text);
[[nodiscard]] QV_BASE_API DynamicIString intern_dynamic(const qv::WChar* text);

/// Records in the table; 0 if there is none.
[[nodiscard]] QV_BASE_API int numInternedCStrings();
[[nodiscard]] QV_BASE_API int numInternedIStrings();

/// Destroys both tables, under the lock. Every handle still alive dangles: even its destructor may not run.
QV_BASE_API void deleteStringTables();

/// Supplies the lock around the tables and the atomic changes of the counts; `decrement` returns the new
/// value. Any may be null: then there is no lock, or the count changes plainly. To be called before more than
/// one thread uses interned strings; until then they are for one thread. The lock needn't be recursive.
QV_BASE_API void sharedStringThreading(void (*lock)(), void (*unlock)(), void (*increment)(int&),
                                       int (*decrement)(int&)) noexcept;

} // namespace qvString

template <class T>
inline constexpr bool qv::isRelocatable<qvString::DynamicString<T>> = true;
