#include "Base/Utility/qvUtilError.h"

#include "Base/String/qvStringIString.h"

#include <memory>

using qvString::IString;

namespace qvUtil {

namespace {

template <class C>
IString* formatted(const C* format, va_list args) {
  if (!format || *format == C()) return nullptr;
  auto message = std::make_unique<IString>();
  message->vformat(format, args);
  return message.release();
}

} // namespace

Error::Error(int num, const IString& message) : num_(num), msg_(copyOf(message)) {}

Error::Error(int num, const char* format, ...) : num_(num), msg_(nullptr) {
  va_list args;
  va_start(args, format);
  setMsg(format, args);
  va_end(args);
}

Error::Error(int num, const qv::WChar* format, ...) : num_(num), msg_(nullptr) {
  va_list args;
  va_start(args, format);
  setMsg(format, args);
  va_end(args);
}

Error::Error(qv::VaListTag, int num, const char* format, va_list args) : num_(num), msg_(nullptr) {
  setMsg(format, args);
}

Error::Error(qv::VaListTag, int num, const qv::WChar* format, va_list args) : num_(num), msg_(nullptr) {
  setMsg(format, args);
}

Error& Error::operator=(const Error& other) {
  Error(other).swap(*this);
  return *this;
}

const char* Error::message() const { return msg_ ? msg_->asMultibyte() : ""; }

bool Error::operator==(const Error& other) const {
  if (num_ != other.num_ || !msg_ != !other.msg_) return false;
  return !msg_ || *msg_ == *other.msg_;
}

void Error::setMsg(const char* format, va_list args) {
  IString* const message = formatted(format, args);
  deleteMsg();
  msg_ = message;
}

void Error::setMsg(const qv::WChar* format, va_list args) {
  IString* const message = formatted(format, args);
  deleteMsg();
  msg_ = message;
}

IString* Error::copyOf(const IString& message) { return new IString(message); }

void Error::destroy(IString* message) noexcept { delete message; }

} // namespace qvUtil
