#include "Base/String/qvStringIntern.h"

#include "Base/Containers/qvHashTableImpl.h"

#include <atomic>
#include <string>

namespace qvString {

namespace {

using qv::HashTableImpl;

void (*lockHook)() = nullptr;
void (*unlockHook)() = nullptr;
void (*incrementHook)(int&) = nullptr;
int (*decrementHook)(int&) = nullptr;

class TableLock {
public:
  TableLock() {
    if (lockHook) lockHook();
  }
  TableLock(const TableLock&) = delete;
  TableLock& operator=(const TableLock&) = delete;
  ~TableLock() {
    if (unlockHook) unlockHook();
  }
};

/// What a table is searched for: a text, or one record by its address.
template <class T>
struct Key {
  const T* text;
  const InternalString<T>* record;
};

template <class T>
class Table {
public:
  using Record = InternalString<T>;
  using Node = HashTableImpl::HashNodeImpl;

  Record* insert(const T& text) {
    if (!table_) table_ = new HashTableImpl(&kType);
    table_->rehash(table_->size() + 1);
    const Key<T> key{&text, nullptr};
    return recordOf(table_->insert_unique_noresize(hashfunction(text), &key, nullptr));
  }

  /// Erases the record unless it is held. Looks it up by its address, since another holder may have erased
  /// it.
  void eraseUnheld(const Record* record, std::uint64_t hash) {
    const Key<T> key{nullptr, record};
    Node* const node = table_ ? table_->findNode(hash, &key) : nullptr;
    if (node && refsOf(*recordOf(node)).load(std::memory_order_relaxed) == 0 && !recordOf(node)->constant)
      table_->eraseNode(node);
  }

  [[nodiscard]] int size() const { return table_ ? table_->size() : 0; }

  void destroy() {
    delete table_;
    table_ = nullptr;
  }

  static std::atomic_ref<std::int32_t> refsOf(Record& record) {
    return std::atomic_ref<std::int32_t>(record.refs);
  }
  static std::atomic_ref<bool> constantOf(Record& record) { return std::atomic_ref<bool>(record.constant); }

  /// The hash that the table keeps in front of the record.
  static std::uint64_t hashOf(const Record* record) {
    return reinterpret_cast<const Node*>(reinterpret_cast<const char*>(record) - kRecordOffset)->hash;
  }

private:
  static constexpr std::int32_t kRecordOffset = sizeof(Node);
  static_assert(sizeof(Node) % alignof(Record) == 0);

  static Record* recordOf(Node* node) {
    return reinterpret_cast<Record*>(reinterpret_cast<char*>(node) + kRecordOffset);
  }

  static bool equal(const void* nodeKey, const void* wanted) {
    const Record* const record = static_cast<const Record*>(nodeKey);
    const Key<T>& key = *static_cast<const Key<T>*>(wanted);
    return key.record ? key.record == record : record->string == *key.text;
  }
  static void construct(void* to, const void* key) {
    new (to) Record{*static_cast<const Key<T>*>(key)->text};
  }
  static void destruct(void* record) { static_cast<Record*>(record)->~Record(); }

  static constexpr HashTableImpl::TypeUtil kType = {
      .nodeSize = kRecordOffset + static_cast<std::int32_t>(sizeof(Record)),
      .valueSize = 0,
      .dataOffset = kRecordOffset,
      .keyOffset = kRecordOffset,
      .valueOffset = kRecordOffset,
      .equal = equal,
      .copyKey = construct,
      .copyValue = nullptr,
      .constructValue = nullptr,
      .destructKey = destruct,
      .destructValue = nullptr,
  };

  HashTableImpl* table_ = nullptr;
};

// Plain pointers inside, and no destructor: handles of static objects may outlive this file's statics.
constinit Table<CString> cstrings;
constinit Table<IString> istrings;

Table<CString>& tableOf(const CString*) { return cstrings; }
Table<IString>& tableOf(const IString*) { return istrings; }

template <class T>
void increase(InternalString<T>* record) {
  if (!record) return;
  if (incrementHook)
    incrementHook(record->refs);
  else
    ++record->refs;
}

template <class T>
void decrease(InternalString<T>* record) {
  if (!record) return;
  // After the decrement another thread may erase the record, so what is needed of it is read before. A record
  // that becomes constant in between is kept by the second test.
  const bool constant = Table<T>::constantOf(*record).load(std::memory_order_relaxed);
  const std::uint64_t hash = Table<T>::hashOf(record);
  const int refs = decrementHook ? decrementHook(record->refs) : --record->refs;
  if (refs != 0 || constant) return;
  const TableLock lock;
  tableOf(static_cast<const T*>(nullptr)).eraseUnheld(record, hash);
}

template <class T>
ConstantString<T> internIn(Table<T>& table, const T& text) {
  const TableLock lock;
  InternalString<T>* const record = table.insert(text);
  table.constantOf(*record).store(true, std::memory_order_relaxed);
  return ConstantString<T>(record);
}

template <class T>
DynamicString<T> internDynamicIn(Table<T>& table, const T& text) {
  const TableLock lock;
  InternalString<T>* const record = table.insert(text);
  increase(record);
  return DynamicString<T>(record);
}

/// A copy of an `IString` ends at its first NUL, so a record is looked up by the text that it would have.
bool hasNul(const IString& text) {
  return std::char_traits<qv::WChar>::length(text.asWChar()) != text.length();
}

} // namespace

void increaseStringRef(InternalString<CString>* record) { increase(record); }
void increaseStringRef(InternalString<IString>* record) { increase(record); }
void decreaseStringRef(InternalString<CString>* record) { decrease(record); }
void decreaseStringRef(InternalString<IString>* record) { decrease(record); }

ConstantCString intern(const CString& text) { return internIn(cstrings, text); }
ConstantCString intern(const char* text) { return internIn(cstrings, CString(text)); }
ConstantIString intern(const IString& text) {
  if (hasNul(text)) return internIn(istrings, IString(text));
  return internIn(istrings, text);
}
ConstantIString intern(const qv::WChar* text) { return internIn(istrings, IString(text)); }

DynamicCString intern_dynamic(const CString& text) { return internDynamicIn(cstrings, text); }
DynamicCString intern_dynamic(const char* text) { return internDynamicIn(cstrings, CString(text)); }
DynamicIString intern_dynamic(const IString& text) {
  if (hasNul(text)) return internDynamicIn(istrings, IString(text));
  return internDynamicIn(istrings, text);
}
DynamicIString intern_dynamic(const qv::WChar* text) { return internDynamicIn(istrings, IString(text)); }

int numInternedCStrings() {
  const TableLock lock;
  return cstrings.size();
}

int numInternedIStrings() {
  const TableLock lock;
  return istrings.size();
}

void deleteStringTables() {
  const TableLock lock;
  cstrings.destroy();
  istrings.destroy();
}

void sharedStringThreading(void (*lock)(), void (*unlock)(), void (*increment)(int&),
                           int (*decrement)(int&)) noexcept {
  lockHook = lock;
  unlockHook = unlock;
  incrementHook = increment;
  decrementHook = decrement;
}

} // namespace qvString
