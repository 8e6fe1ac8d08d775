// Error: the value that nearly every fallible operation returns, or throws where it returns something else.
#pragma once

#include "Base/Containers/qvRelocatable.h"
#include "Base/qvBase.h"

#include <cstdarg>
#include <utility>

namespace qvString {
class IString;
}

namespace qvUtil {

/// No failure is lost by oversight: a result that is thrown away needs a cast to void.
class [[nodiscard]] Error;

/// A code and an optional message. Code 0 is success, so `if (error)` means that something went wrong. Other
/// codes mean something only to a caller that knows which operation it called. Copies are deep; a success
/// value allocates nothing. Separate values may live in separate threads.
class QV_BASE_API Error {
public:
  /// Success.
  Error() noexcept : num_(0), msg_(nullptr) {}
  Error(const Error& other) : num_(other.num_), msg_(other.msg_ ? copyOf(*other.msg_) : nullptr) {}
  /// Leaves `other` a success value.
  Error(Error&& other) noexcept
      : num_(std::exchange(other.num_, 0)), msg_(std::exchange(other.msg_, nullptr)) {}
  /// Has a message even if `message` is empty.
  Error(int num, const qvString::IString& message);
  /// With a formatted message: `%s` is narrow text and `%S` wide text, in either kind of format. A null or
  /// empty format gives no message.
  Error(int num, const char* format, ...);
  Error(int num, const qv::WChar* format, ...);
  /// The same with a list that was started.
  Error(qv::VaListTag, int num, const char* format, va_list args);
  Error(qv::VaListTag, int num, const qv::WChar* format, va_list args);
  virtual ~Error() { deleteMsg(); }

  Error& operator=(const Error& other);
  Error& operator=(Error&& other) noexcept {
    Error(std::move(other)).swap(*this);
    return *this;
  }
  void swap(Error& other) noexcept {
    std::swap(num_, other.num_);
    std::swap(msg_, other.msg_);
  }

  /// The code; 0 is success.
  [[nodiscard]] int num() const noexcept { return num_; }
  /// True on failure, that is, if the code is not 0. A message alone does not make a failure.
  [[nodiscard]] explicit operator bool() const noexcept { return num_ != 0; }
  /// The message in the C runtime's encoding; empty if there is none. Valid while this value lives and is not
  /// changed. Not to be called by two threads at once on one value.
  [[nodiscard]] const char* message() const;

  /// True if the codes are equal and the messages are both absent, or both present and equal. An empty
  /// message does not equal an absent one.
  [[nodiscard]] bool operator==(const Error& other) const;
  [[nodiscard]] bool operator!=(const Error& other) const { return !(*this == other); }

protected:
  /// Formats the message; a null or empty format removes it.
  void setMsg(const char* format, va_list args);
  void setMsg(const qv::WChar* format, va_list args);

private:
  static qvString::IString* copyOf(const qvString::IString& message);
  void deleteMsg() noexcept {
    if (msg_) destroy(msg_);
  }
  static void destroy(qvString::IString* message) noexcept;

  int num_;
  qvString::IString* msg_; // null if there is no message
};

static_assert(sizeof(Error) == 3 * sizeof(void*));

inline void swap(Error& a, Error& b) noexcept { a.swap(b); }

} // namespace qvUtil

template <>
inline constexpr bool qv::isRelocatable<qvUtil::Error> = true;
