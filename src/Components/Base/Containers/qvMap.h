// The ordered maps.
#pragma once

#include "Base/Containers/qvTree.h"

#include <type_traits>
#include <utility>

namespace qv {

/// Values by key, in the keys' ascending order. An element is a `qv::pair<const Key, Mapped>`. The other
/// operations are those of `qv::detail::Tree`.
template <class Key, class Mapped, class Less = less<Key>>
class map : public detail::Tree<Key, Mapped, Less, true> {
  using Base = detail::Tree<Key, Mapped, Less, true>;

public:
  using mapped_type = Mapped;
  using Base::Base;
  using typename Base::iterator;

  /// The value of that key, which is inserted with a default value where it is missing.
  Mapped& operator[](const Key& key) { return this->insertKey(key).first->second; }

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

/// Values by key, in the keys' ascending order; elements with equal keys stand in the order in which they
/// came.
template <class Key, class Mapped, class Less = less<Key>>
class multimap : public detail::Tree<Key, Mapped, Less, false> {
public:
  using mapped_type = Mapped;
  using detail::Tree<Key, Mapped, Less, false>::Tree;
};

} // namespace qv
