// What the two string classes have in common: 32-bit counts and positions, and one interface of sizes.
#pragma once

#include "Base/qvBase.h"

namespace qvString {

/// Base of `CString` and `IString`. Positions and lengths count characters: bytes of a `CString`, 16-bit
/// units of an `IString`. The order of the virtual operations is part of the binary interface.
class QV_BASE_API String {
public:
  /// "No position" as a result, "to the end" as a count. As large as a position can be.
  static constexpr unsigned int npos = 0xFFFFFFFFu;

  String() noexcept = default;
  String(const String&) noexcept = default;
  String& operator=(const String&) noexcept = default;
  virtual ~String() = 0;

  /// True if there is no character.
  [[nodiscard]] virtual bool isEmpty() const;
  /// The same as `isEmpty`: there is no null state.
  [[nodiscard]] virtual bool isNull() const;
  /// The number of characters.
  [[nodiscard]] virtual unsigned int length() const = 0;
  /// The position of the first character: always 0.
  [[nodiscard]] virtual unsigned int first() const;
  /// The position of the last character; 0 for an empty string.
  [[nodiscard]] virtual unsigned int last() const;
  /// The number of characters for which there is room without a new allocation.
  [[nodiscard]] virtual unsigned int capacity() const = 0;
  /// Makes room for `size` characters in all. @return the new capacity.
  virtual unsigned int reserve(unsigned int size) = 0;
  /// The greatest length that can be told from `npos`: 0xFFFFFFFE.
  [[nodiscard]] virtual unsigned int maxSize() const = 0;

protected:
  /// True if `pos` is the position of a character.
  [[nodiscard]] bool doBoundsCheck(unsigned int pos) const;
  /// True if `pos` is the position of a character and `count` is `npos` or at most the whole length. `count`
  /// is deliberately not measured against what follows `pos`.
  [[nodiscard]] bool doBoundsCheck(unsigned int pos, unsigned int count) const;
};

} // namespace qvString
