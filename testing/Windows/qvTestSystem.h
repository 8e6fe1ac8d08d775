// What test support asks of the system, in the form that is the same everywhere. Private.
#pragma once

#include <fcntl.h>
#include <io.h>
#include <winsock2.h>
#include <ws2tcpip.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

namespace qvTest::system {

// ---- The environment ----

inline constexpr const char* temporaryPlaceVariable = "TMP";
inline void setVariable(const char* name, const char* value) { ::_putenv_s(name, value); }
inline void removeVariable(const char* name) { ::_putenv_s(name, ""); }

// ---- Processors ----

/// A bit for each processor that this process may run on.
inline std::uint64_t processors() {
  DWORD_PTR mask = 0, all = 0;
  return ::GetProcessAffinityMask(::GetCurrentProcess(), &mask, &all) ? mask : 0;
}
inline void setProcessors(std::uint64_t mask) { ::SetProcessAffinityMask(::GetCurrentProcess(), mask); }
inline double processorSeconds() {
  FILETIME created, ended, kernel = {}, user = {};
  ::GetProcessTimes(::GetCurrentProcess(), &created, &ended, &kernel, &user);
  const auto ticks = [](FILETIME time) {
    return double(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime;
  };
  return (ticks(kernel) + ticks(user)) * 1e-7;
}

// ---- Descriptors ----

inline void openPipe(int* ends) { (void)::_pipe(ends, 65536, _O_BINARY | _O_NOINHERIT); }

// ---- Libraries ----

inline void* loadLibrary(const std::filesystem::path& file) {
  HMODULE const library = ::LoadLibraryW(file.c_str());
  if (!library) std::cerr << "error " << ::GetLastError() << '\n';
  return library;
}
inline void* symbolOf(void* library, const char* name) {
  return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

inline bool isMapped(const std::string& fileName) {
  wchar_t name[MAX_PATH] = {};
  ::MultiByteToWideChar(CP_UTF8, 0, fileName.c_str(), -1, name, MAX_PATH);
  return ::GetModuleHandleW(name) != nullptr;
}

// ---- Sockets ----

inline constexpr int unreachableNumber = WSAENETUNREACH;
inline constexpr int addressInUseNumber = WSAEADDRINUSE;
inline constexpr int gaveUpNumber = WSAECONNRESET;

inline SOCKET handleOf(std::intptr_t socket) { return static_cast<SOCKET>(socket); }

inline std::intptr_t openSocket(int family) {
  static WSADATA data;
  [[maybe_unused]] static const int started = ::WSAStartup(MAKEWORD(2, 2), &data);
  return static_cast<std::intptr_t>(::socket(family, SOCK_STREAM, 0));
}
inline void closeSocket(std::intptr_t socket) { ::closesocket(handleOf(socket)); }
inline std::intptr_t acceptSocket(std::intptr_t socket) {
  return static_cast<std::intptr_t>(::accept(handleOf(socket), nullptr, nullptr));
}
/// Waits ten seconds at most.
inline bool waitReadable(std::intptr_t socket) {
  fd_set set = {1, {handleOf(socket)}};
  timeval limit = {10, 0};
  return ::select(0, &set, nullptr, nullptr, &limit) > 0;
}
inline constexpr int noSignal = 0;

inline bool isInherited(std::intptr_t socket) {
  DWORD flags = 0;
  return !::GetHandleInformation(reinterpret_cast<HANDLE>(socket), &flags) || (flags & HANDLE_FLAG_INHERIT);
}
inline bool isDescriptorInherited(int descriptor) { return isInherited(::_get_osfhandle(descriptor)); }

/// How many of the handles that this process may hold are sockets.
inline int descriptorMark() {
  int sockets = 0;
  for (std::intptr_t handle = 4; handle < 4096; handle += 4) {
    BOOL listens = FALSE;
    int size = sizeof listens;
    sockets += ::getsockopt(handleOf(handle), SOL_SOCKET, SO_ACCEPTCONN, reinterpret_cast<char*>(&listens),
                            &size) == 0;
  }
  return sockets;
}

} // namespace qvTest::system
