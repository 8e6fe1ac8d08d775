// Work that must happen in a process of its own: because it ends the process, changes its rights or its
// limits, or reads a setting that the library reads once.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>

#include <csignal>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qvTest {

/// Runs `work` in a child and waits for it, a minute at most.
/// @return 0, 1 where an expectation failed in the child, what it exited with, or minus the signal that ended
/// it.
template <class Work>
int inChild(Work work) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    work();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  while (child < 0 || waitpid(child, &status, 0) != child) {
    if (child < 0 || errno != EINTR) return -SIGABRT;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Makes this process, a child, one of an ordinary user, for whom permissions count. False where it must stay
/// root.
[[nodiscard]] inline bool giveUpRoot() {
  constexpr unsigned nobody = 65534;
  return geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
}

} // namespace qvTest
