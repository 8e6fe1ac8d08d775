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
  [[nodiscard]] static PlatformScript& running() { return *current_; }

  /// The call with index `n` from now on, among those called `name` or among all for null, fails with `error`
  /// instead of reaching the system; `times` of them in a row do. Adds a rule to those that are there.
  void failCall(int n, int error, const char* name = nullptr, int times = 1) {
    const std::lock_guard lock(mutex_);
    rules_.push_back({name ? name : "", n, times, error, 0});
  }
  /// How many calls the first rule made to fail.
  [[nodiscard]] int failures() const {
    const std::lock_guard lock(mutex_);
    return rules_.at(0).failures;
  }
  /// The names of all calls so far, in order.
  [[nodiscard]] std::vector<std::string> calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  /// How many calls of that name came.
  [[nodiscard]] int count(const char* name) const {
    const std::vector<std::string> all = calls();
    return static_cast<int>(std::count(all.begin(), all.end(), name));
  }

private:
  struct Rule {
    std::string name;
    std::int64_t skip, times;
    int error, failures;
  };

  static void install(PlatformScript* script) {
    current_ = script;
    qvPlatform::callHook = script ? &hook : nullptr;
  }
  static int hook(const char* name) noexcept { return current_->announced(name); }

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

  static inline PlatformScript* current_ = nullptr;
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
