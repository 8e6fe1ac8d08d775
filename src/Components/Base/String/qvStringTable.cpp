#include "Base/String/qvStringTable.h"

#include "Base/Containers/qvHashMap.h"
#include "Base/Containers/qvMap.h"

#include <cstdint>
#include <utility>

namespace qvStringTable {

using qvString::IString;

namespace {

struct HashOfKey {
  std::uint64_t operator()(const Key* key) const { return hashfunction(key->value()); }
};

struct EqualKeys {
  bool operator()(const Key* a, const Key* b) const { return *a == *b; }
};

} // namespace

class StringTable::Impl {
public:
  [[nodiscard]] const IString* find(const Key& key) const {
    const auto entry = index_.find(&key);
    return entry == index_.end() ? nullptr : entry->second;
  }

  void assign(const Key& key, const IString& text) {
    const auto entry = strings.insert({key, IString()}).first;
    entry->second = text;
    index_[&entry->first] = &entry->second;
  }

  bool remove(const Key& key) {
    index_.erase(&key); // before the key that it points to
    return strings.erase(key) != 0;
  }

  void clear() {
    index_.clear();
    strings.clear();
  }

  qv::map<Key, IString> strings;
  const IString missing;

private:
  /// Finds a text without walking down the tree. Its pointers lead to the keys and texts in `strings`.
  qv::hash_map<const Key*, const IString*, HashOfKey, EqualKeys> index_;
};

StringTable::StringTable() : impl_(new Impl) {}

StringTable::~StringTable() { delete impl_; }

int StringTable::size() const { return impl_->strings.size(); }

bool StringTable::isEmpty() const { return impl_->strings.empty(); }

void StringTable::clear() { impl_->clear(); }

bool StringTable::keyExists(const Key& key) const { return impl_->find(key) != nullptr; }

const IString& StringTable::getString(const Key& key, bool* found) const {
  return getString(key, impl_->missing, found);
}

const IString& StringTable::getString(const Key& key, const IString& fallback, bool* found) const {
  const IString* const text = impl_->find(key);
  if (found) *found = text != nullptr;
  return text ? *text : fallback;
}

bool StringTable::assign(const Key& key, const IString& text) {
  impl_->assign(key, text);
  return true;
}

bool StringTable::remove(const Key& key) { return impl_->remove(key); }

int StringTable::getKeys(int (*compare)(const Key&, const Key&), const Key& key,
                         qv::vector<Key>& keys) const {
  qv::vector<Key> found; // `key` may lie in `keys`
  for (const auto& entry : impl_->strings)
    if (compare(key, entry.first) == 0) found.append(entry.first);
  keys = std::move(found);
  return keys.size();
}

int StringTable::getKeysInSet(const Key& key, qv::vector<Key>& keys) const {
  return getKeys([](const Key& a, const Key& b) { return a.compareSetID(b); }, key, keys);
}

StringTable& appStringTable() {
  static StringTable& table = *new StringTable;
  return table;
}

namespace {

// There before any thread could ask for it.
[[maybe_unused]] const StringTable& madeAtLoad = appStringTable();

} // namespace

} // namespace qvStringTable
