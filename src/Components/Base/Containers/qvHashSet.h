// The hash set.
#pragma once

#include "Base/Containers/qvHashFace.h"

namespace qv {

/// Keys, each once, in no particular order. The operations are those of `qv::detail::HashFace`.
template <class Key, class Hash = hash<Key>, class Equal = equal_to<Key>>
class hash_set : public detail::HashFace<Key, void, Hash, Equal> {
public:
  using detail::HashFace<Key, void, Hash, Equal>::HashFace;
};

template <class Key, class Hash, class Equal>
inline constexpr bool isRelocatable<hash_set<Key, Hash, Equal>> = true;

} // namespace qv
