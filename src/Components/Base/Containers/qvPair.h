// A pair of values: an element of the maps, and the shape of a result that comes with an error.
#pragma once

#include "Base/Containers/qvRelocatable.h"

#include <type_traits>
#include <utility>

namespace qv {

/// Two values, held in order. Fallible functions return `qv::pair<T, qvUtil::Error>`; maps hold pairs of key
/// and value. Works with structured bindings.
template <class First, class Second>
struct pair {
  using first_type = First;
  using second_type = Second;

  First first;
  Second second;

  /// Both values are value-initialised.
  constexpr pair() requires std::is_default_constructible_v<First> && std::is_default_constructible_v<Second>
      : first(), second() {}
  constexpr pair(const First& firstValue, const Second& secondValue)
      : first(firstValue), second(secondValue) {}
  template <class A, class B>
  requires std::is_constructible_v<First, A> && std::is_constructible_v<Second, B>
  constexpr explicit(!std::is_convertible_v<A, First> || !std::is_convertible_v<B, Second>)
      pair(A&& firstValue, B&& secondValue)
      : first(std::forward<A>(firstValue)), second(std::forward<B>(secondValue)) {}
  template <class A, class B>
  requires std::is_constructible_v<First, const A&> && std::is_constructible_v<Second, const B&>
  constexpr explicit(!std::is_convertible_v<const A&, First> || !std::is_convertible_v<const B&, Second>)
      pair(const pair<A, B>& other)
      : first(other.first), second(other.second) {}
  template <class A, class B>
  requires std::is_constructible_v<First, A> && std::is_constructible_v<Second, B>
  constexpr explicit(!std::is_convertible_v<A, First> || !std::is_convertible_v<B, Second>)
      pair(pair<A, B>&& other)
      : first(std::forward<A>(other.first)), second(std::forward<B>(other.second)) {}

  /// Equal if both values are equal; ordered by the first, then by the second.
  friend constexpr bool operator==(const pair& a, const pair& b) {
    return a.first == b.first && a.second == b.second;
  }
  friend constexpr bool operator<(const pair& a, const pair& b) {
    return a.first < b.first || (!(b.first < a.first) && a.second < b.second);
  }
  friend constexpr bool operator>(const pair& a, const pair& b) { return b < a; }
  friend constexpr bool operator<=(const pair& a, const pair& b) { return !(b < a); }
  friend constexpr bool operator>=(const pair& a, const pair& b) { return !(a < b); }
};

template <class First, class Second>
pair(First, Second) -> pair<First, Second>;

/// A pair of copies of the two values.
template <class First, class Second>
[[nodiscard]] constexpr pair<std::decay_t<First>, std::decay_t<Second>> make_pair(First&& first,
                                                                                  Second&& second) {
  return pair<std::decay_t<First>, std::decay_t<Second>>(std::forward<First>(first),
                                                         std::forward<Second>(second));
}

template <class First, class Second>
inline constexpr bool isRelocatable<pair<First, Second>> = isRelocatable<First>&& isRelocatable<Second>;

} // namespace qv
