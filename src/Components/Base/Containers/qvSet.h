// The ordered sets.
#pragma once

#include "Base/Containers/qvTree.h"

namespace qv {

/// Keys in ascending order, each once. The operations are those of `qv::detail::Tree`.
template <class Key, class Less = less<Key>>
class set : public detail::Tree<Key, void, Less, true> {
public:
  using detail::Tree<Key, void, Less, true>::Tree;
};

/// Keys in ascending order; equal keys stand in the order in which they came.
template <class Key, class Less = less<Key>>
class multiset : public detail::Tree<Key, void, Less, false> {
public:
  using detail::Tree<Key, void, Less, false>::Tree;
};

} // namespace qv
