// Work that must happen in a process of its own: because it ends the process, changes its rights or its
// limits, or reads a setting that the library reads once.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

#include <csignal>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qvTest {

/// Runs `work` in a child process, for a minute at most.
class Child {
public:
  template <class Work>
  explicit Child(Work work) {
    std::fflush(nullptr);
    process_ = fork();
    if (process_ != 0) return;
    alarm(60);
    work();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  ~Child() { (void)wait(); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Waits for its end. Once only.
  /// @return 0, 1 where an expectation failed in the child, what it exited with, or minus the signal that
  /// ended it.
  int wait() {
    const pid_t process = std::exchange(process_, -1);
    int status = 0;
    while (process < 0 || waitpid(process, &status, 0) != process) {
      if (process < 0 || errno != EINTR) return -SIGABRT;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

private:
  pid_t process_;
};

/// Runs `work` in a child and waits for it; the result is that of `Child::wait`.
template <class Work>
int inChild(Work work) {
  return Child(work).wait();
}

/// Makes this process, a child, one of an ordinary user, for whom permissions count. False where it must stay
/// root.
[[nodiscard]] inline bool giveUpRoot() {
  constexpr unsigned nobody = 65534;
  return geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
}

} // namespace qvTest
