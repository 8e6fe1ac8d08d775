// What the tool tells: failures, progress, and texts in the form that a reader expects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Prints one line on standard error for one failure, and remembers that there was one.
void fail(const std::string& subject, const std::string& reason);

/// 1 where something failed, otherwise 0.
[[nodiscard]] int exitStatus();

/// A bar on standard error, where that is a terminal, for work of `total` units.
class Progress {
public:
  Progress(const char* label, std::int64_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  void advance(std::int64_t units) { show(done_ + units); }
  /// Tells how much is done in all.
  void show(std::int64_t done);
  [[nodiscard]] bool isVisible() const { return visible_; }

private:
  const char* label_;
  std::int64_t total_;
  std::int64_t done_ = 0;
  std::int64_t shown_ = -1;
  bool visible_;
};

/// `text` as a JSON string, quotes included. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string jsonString(const std::string& text);

/// The time stamp of an entry that has none.
constexpr std::int64_t noTime = -1;

/// Seconds since 1970 as local date and time, as in "2026-01-31 23:59"; "-" for `noTime`.
[[nodiscard]] std::string dateText(std::int64_t seconds);
