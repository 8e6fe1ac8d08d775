// The hash map.
#pragma once

#include "Base/Containers/qvHashFace.h"

#include <type_traits>
#include <utility>

namespace qv {

/// Values by key, in no particular order. An element is a `qv::pair<const Key, Mapped>`. The other operations
/// are those of `qv::detail::HashFace`.
template <class Key, class Mapped, class Hash = hash<Key>, class Equal = equal_to<Key>>
class hash_map : public detail::HashFace<Key, Mapped, Hash, Equal> {
  using Base = detail::HashFace<Key, Mapped, Hash, Equal>;

public:
  using mapped_type = Mapped;
  using Base::Base;
  using typename Base::iterator;

  /// The value of that key, which is inserted with a default value where it is missing.
  Mapped& operator[](const Key& key) { return this->elementAt(key).second; }

  /// Sets the value of that key, new or not. True comes with a new element.
  template <class Value>
  pair<iterator, bool> insert_or_assign(const Key& key, Value&& value) {
    if constexpr (std::is_default_constructible_v<Mapped>) {
      const pair<iterator, bool> result = this->insertKey(key);
      result.first->second = std::forward<Value>(value);
      return result;
    } else {
      const pair<iterator, bool> result = this->emplace(key, value);
      if (!result.second) result.first->second = std::forward<Value>(value);
      return result;
    }
  }
};

template <class Key, class Mapped, class Hash, class Equal>
inline constexpr bool isRelocatable<hash_map<Key, Mapped, Hash, Equal>> = true;

} // namespace qv
