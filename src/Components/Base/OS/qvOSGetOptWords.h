// The words of a command line that are not read yet, as wide text in one block. Not installed.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringIString.h"
#include "Base/qvBase.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace qvOS {

/// A queue of words. What it hands out is valid until words are added or cleared, and ends in a NUL.
class GetOptWords {
public:
  using Word = std::basic_string_view<qv::WChar>;

  void clear() noexcept;
  /// Adds a terminated word.
  void add(const qv::WChar* word);
  /// Adds a terminated native word, read as `fromNativePath` reads a path.
  void addNative(const char* word);

  [[nodiscard]] bool empty() const noexcept { return next_ == starts_.size(); }
  /// The first word; there is one.
  [[nodiscard]] Word front() const noexcept;
  /// The same, taken off.
  Word take() noexcept;
  /// Replaces `words` by those that are left.
  void copyTo(qv::vector<qvString::IString>& words) const;

private:
  [[nodiscard]] Word at(std::size_t index) const noexcept;

  std::vector<qv::WChar> text_;
  std::vector<std::size_t> starts_; // in `text_`
  std::size_t next_ = 0;
};

} // namespace qvOS
