// Texts by key, such as those of a program's user interface in one language. The process has one table, which
// catalog files fill (see qvStringTableCatalog.h).
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringIString.h"
#include "Base/String/qvStringTableKey.h"
#include "Base/qvBase.h"

namespace qvStringTable {

/// Texts by key, in the order of the keys' texts. No lookup fails: a key that is not there gives an empty
/// text, or the one that the caller falls back to. A reference to a text is good until that key is removed.
/// Not thread-safe: it is filled before several threads look up in it.
class StringTable {
public:
  QV_BASE_API StringTable();
  QV_BASE_API ~StringTable();
  StringTable(const StringTable&) = delete;
  StringTable& operator=(const StringTable&) = delete;

  [[nodiscard]] QV_BASE_API int size() const;
  [[nodiscard]] QV_BASE_API bool isEmpty() const;
  QV_BASE_API void clear();

  [[nodiscard]] QV_BASE_API bool keyExists(const Key& key) const;
  /// The text of that key, or an empty one. `*found`, where `found` is not null, tells which.
  [[nodiscard]] QV_BASE_API const qvString::IString& getString(const Key& key, bool* found = nullptr) const;
  /// The text of that key, or `fallback` itself.
  [[nodiscard]] QV_BASE_API const qvString::IString&
  getString(const Key& key, const qvString::IString& fallback, bool* found = nullptr) const;

  /// Sets the text of that key, which may be one of this table. Always true.
  QV_BASE_API bool assign(const Key& key, const qvString::IString& text);
  /// False where the key is not there.
  QV_BASE_API bool remove(const Key& key);

  /// Replaces `keys` by those of the table for which `compare(key, that one)` is 0, in order. Looks at every
  /// key of the table. @return how many there are.
  QV_BASE_API int getKeys(int (*compare)(const Key&, const Key&), const Key& key,
                          qv::vector<Key>& keys) const;
  /// The keys with the same set as `key`. See `Key::compareSetID`.
  QV_BASE_API int getKeysInSet(const Key& key, qv::vector<Key>& keys) const;

private:
  class Impl;
  Impl* impl_;
};

static_assert(sizeof(StringTable) == sizeof(void*));

/// The process's table, which lives until the process ends.
[[nodiscard]] QV_BASE_API StringTable& appStringTable();

} // namespace qvStringTable
