// What a tool tells: failures and progress.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Sets the name of the program, with which each line of `fail` begins.
void failAs(const char* program);

/// Prints one line on standard error for one failure, behind what was printed so far, and remembers that
/// there was one.
void fail(const std::string& subject, const std::string& reason);

/// Remembers that something is wrong, which the tool itself tells.
void markFailed();

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
