// Scripted platform calls: listens to every call that Platform/ announces, counts and records them, and makes
// chosen ones fail. For white-box tests only, since it reaches a hidden variable of the library.
#pragma once

#include "Base/Platform/qvPlatformCall.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace qvTest {

/// While it lives, every announced platform call of every thread passes through it. One at a time.
class PlatformScript {
public:
  PlatformScript() { install(this); }
  ~PlatformScript() { install(nullptr); }
  PlatformScript(const PlatformScript&) = delete;
  PlatformScript& operator=(const PlatformScript&) = delete;

  /// The script that is running.
  [[nodiscard]] static PlatformScript& running() { return *current(); }

  /// The call with index `n` from now on, among those called `name` or among all for null, fails with `error`
  /// instead of reaching the system; `times` of them in a row do. Adds a rule to those that are there.
  /// @return the rule's number.
  int failCall(int n, int error, const char* name = nullptr, int times = 1) {
    const std::lock_guard lock(mutex_);
    rules_.push_back({name ? name : "", n, times, error, 0});
    return static_cast<int>(rules_.size()) - 1;
  }
  /// How many calls that rule made to fail.
  [[nodiscard]] int failures(int rule = 0) const {
    const std::lock_guard lock(mutex_);
    return rules_.empty() ? 0 : rules_.at(static_cast<std::size_t>(rule)).failures;
  }
  /// The names of all calls so far, in order.
  [[nodiscard]] std::vector<std::string> calls() const { return locked(calls_); }
  /// How many calls of that name came, or of all for null.
  [[nodiscard]] int count(const char* name = nullptr) const {
    const std::vector<std::string> all = calls();
    return static_cast<int>(name ? std::count(all.begin(), all.end(), name)
                                 : static_cast<std::ptrdiff_t>(all.size()));
  }
  void clear() {
    const std::lock_guard lock(mutex_);
    calls_.clear();
  }

private:
  struct Rule {
    std::string name;
    std::int64_t skip;
    std::int64_t times;
    int error;
    int failures;
  };

  static void install(PlatformScript* script) {
    current() = script;
    qvPlatform::callHook = script ? &hook : nullptr;
  }
  static PlatformScript*& current() {
    static PlatformScript* script = nullptr;
    return script;
  }
  static int hook(const char* name) noexcept { return current()->announced(name); }

  int announced(const char* name) {
    const std::lock_guard lock(mutex_);
    calls_.emplace_back(name);
    int error = 0;
    for (Rule& rule : rules_) {
      if (!rule.name.empty() && rule.name != name) continue;
      if (rule.skip-- > 0 || rule.times-- <= 0 || error) continue;
      error = rule.error;
      ++rule.failures;
    }
    return error;
  }

  template <class T>
  T locked(const T& value) const {
    const std::lock_guard lock(mutex_);
    return value;
  }

  mutable std::mutex mutex_;
  std::vector<std::string> calls_;
  std::vector<Rule> rules_;
};

/// Runs `operation` with its call 0, 1, 2 and so on failing with `error`, until a run in which nothing failed
/// any more. Only the calls called `name` fail, or all for null. `prepare` sets the scene before each run,
/// and `check` tests afterwards that what must survive did; neither is scripted.
/// @return the number of runs in which a call failed.
template <class Prepare, class Operation, class Check>
int failEveryCall(int error, const char* name, Prepare prepare, Operation operation, Check check) {
  for (int n = 0; n < 10000; ++n) {
    SCOPED_TRACE("call " + std::to_string(n) + " fails");
    prepare();
    int failures = 0;
    {
      PlatformScript script;
      script.failCall(n, error, name);
      operation();
      failures = script.failures();
    }
    check();
    if (!failures) return n;
  }
  ADD_FAILURE() << "the operation never ran without a failure";
  return 10000;
}

} // namespace qvTest
