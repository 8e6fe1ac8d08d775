// Locales of the C runtime.
#pragma once

#include <clocale>

namespace qvTest {

/// A locale for the length of a scope, and "C" behind it.
class Locale {
public:
  explicit Locale(const char* name) : isSet_(std::setlocale(LC_ALL, name) != nullptr) {}
  ~Locale() { std::setlocale(LC_ALL, "C"); }
  Locale(const Locale&) = delete;
  Locale& operator=(const Locale&) = delete;

  /// Whether this system has it.
  explicit operator bool() const { return isSet_; }

private:
  bool isSet_;
};

/// One that speaks UTF-8.
inline constexpr char utf8Locale[] = "C.UTF-8";

} // namespace qvTest
