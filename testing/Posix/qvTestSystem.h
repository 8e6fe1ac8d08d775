// What test support asks of the system, in the form that is the same everywhere. Private.
#pragma once

#include <arpa/inet.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace qvTest::system {

// ---- The environment ----

inline constexpr const char* temporaryPlaceVariable = "TMPDIR";
inline void setVariable(const char* name, const char* value) { ::setenv(name, value, 1); }
inline void removeVariable(const char* name) { ::unsetenv(name); }

// ---- Processors ----

/// A bit for each of the first 64 processors that this thread, and those it starts, may run on.
inline std::uint64_t processors() {
  std::uint64_t mask = 0;
  cpu_set_t set;
  if (::sched_getaffinity(0, sizeof set, &set) != 0) return 0;
  for (int i = 0; i < 64; ++i) mask |= std::uint64_t{CPU_ISSET(i, &set) != 0} << i;
  return mask;
}
inline void setProcessors(std::uint64_t mask) {
  cpu_set_t set;
  CPU_ZERO(&set);
  for (int i = 0; i < 64; ++i)
    if (mask >> i & 1) CPU_SET(i, &set);
  (void)::sched_setaffinity(0, sizeof set, &set);
}
inline double processorSeconds() {
  timespec used{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return double(used.tv_sec) + double(used.tv_nsec) * 1e-9;
}

// ---- Descriptors ----

inline void openPipe(int* ends) { (void)::pipe2(ends, O_NONBLOCK | O_CLOEXEC); }

// ---- Libraries ----

inline void* loadLibrary(const std::filesystem::path& file) {
  void* const library = ::dlopen(file.c_str(), RTLD_NOW);
  if (!library) std::cerr << ::dlerror() << '\n';
  return library;
}
inline void* symbolOf(void* library, const char* name) { return ::dlsym(library, name); }

inline bool isMapped(const std::string& fileName) {
  std::ifstream maps("/proc/self/maps");
  const std::string all{std::istreambuf_iterator<char>(maps), {}};
  return all.find('/' + fileName + '\n') != std::string::npos;
}

// ---- Sockets ----

inline constexpr int unreachableNumber = ENETUNREACH;
inline constexpr int addressInUseNumber = EADDRINUSE;
inline constexpr int gaveUpNumber = ECONNABORTED;

inline int handleOf(std::intptr_t socket) { return static_cast<int>(socket); }

inline std::intptr_t openSocket(int family) { return ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0); }
inline void closeSocket(std::intptr_t socket) { ::close(handleOf(socket)); }
inline std::intptr_t acceptSocket(std::intptr_t socket) {
  return ::accept4(handleOf(socket), nullptr, nullptr, SOCK_CLOEXEC);
}
/// Waits ten seconds at most.
inline bool waitReadable(std::intptr_t socket) {
  pollfd entry{handleOf(socket), POLLIN, 0};
  return ::poll(&entry, 1, 10'000) > 0;
}
inline constexpr int noSignal = MSG_NOSIGNAL;

inline bool isInherited(std::intptr_t socket) { return ::fcntl(handleOf(socket), F_GETFD) != FD_CLOEXEC; }
inline bool isDescriptorInherited(int descriptor) { return isInherited(descriptor); }

/// The least number that the next descriptor gets: unchanged where nothing leaked.
inline int descriptorMark() {
  const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::close(descriptor);
  return descriptor;
}

} // namespace qvTest::system
