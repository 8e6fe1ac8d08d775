// Mapped files. That nobody else opens one comes from the way in which it is opened, and the mapping gives it
// its size.
#include "Base/Platform/qvPlatformMap.h"

#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <limits>
#include <utility>

namespace qvPlatform {

namespace {

DWORD low(std::uint64_t value) { return static_cast<DWORD>(value); }
DWORD high(std::uint64_t value) { return static_cast<DWORD>(value >> 32); }

HANDLE systemHandle(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

void closeSystemHandle(std::intptr_t handle) {
  if (handle == noMapHandle) return;
  (void)beforeCall("close");
  ::CloseHandle(systemHandle(handle));
}

int openAlone(const char* path, bool deleteOnClose, Handle* file) {
  const DWORD flags = FILE_ATTRIBUTE_NORMAL | (deleteOnClose ? FILE_FLAG_DELETE_ON_CLOSE : 0);
  return pathCall("open", path, [&](const wchar_t* system) {
    constexpr DWORD shareNothing = 0;
    file->set(::CreateFileW(system, GENERIC_READ | GENERIC_WRITE, shareNothing, nullptr, CREATE_ALWAYS, flags,
                            nullptr));
    return file->isOpen();
  });
}

int moveTo(HANDLE file, std::uint64_t position) {
  LARGE_INTEGER to{};
  to.QuadPart = static_cast<LONGLONG>(position);
  return systemCall("seek", [&] { return ::SetFilePointerEx(file, to, nullptr, FILE_BEGIN); });
}

int openMapping(HANDLE file, std::uint64_t size, Handle* mapping) {
  return systemCall("mapping", [&] {
    const HANDLE made = ::CreateFileMappingW(file, nullptr, PAGE_READWRITE, high(size), low(size), nullptr);
    if (made) mapping->set(made);
    return made != nullptr;
  });
}

} // namespace

int createMapFile(const char* path, std::uint64_t size, bool deleteOnClose, MapFile* made) noexcept {
  if (size == 0 || size > std::numeric_limits<std::int64_t>::max()) return ERROR_INVALID_PARAMETER;
  Handle file, mapping;
  int error = openAlone(path, deleteOnClose, &file);
  if (!error) error = moveTo(file.get(), size - 1);
  if (!error) error = openMapping(file.get(), size, &mapping);
  if (error) return error;
  *made = {reinterpret_cast<std::intptr_t>(file.release()),
           reinterpret_cast<std::intptr_t>(mapping.release())};
  return 0;
}

void closeMapFile(MapFile* file) noexcept {
  const MapFile closed = std::exchange(*file, MapFile());
  closeSystemHandle(closed.mappingHandle);
  closeSystemHandle(closed.fileHandle);
}

int mapWindow(const MapFile& file, std::int64_t offset, std::uint64_t size, void** address) noexcept {
  const auto from = static_cast<std::uint64_t>(offset);
  return systemCall("map", [&] {
    void* const mapped = ::MapViewOfFile(systemHandle(file.mappingHandle), FILE_MAP_READ | FILE_MAP_WRITE,
                                         high(from), low(from), size);
    if (mapped) *address = mapped;
    return mapped != nullptr;
  });
}

void unmapWindow(void* address, std::uint64_t) noexcept {
  (void)beforeCall("unmap");
  ::UnmapViewOfFile(address);
}

int flushWindow(void* address, std::uint64_t begin, std::uint64_t end) noexcept {
  return systemCall("flush",
                    [&] { return ::FlushViewOfFile(static_cast<char*>(address) + begin, end - begin); });
}

std::uint64_t mapGranularity() noexcept {
  SYSTEM_INFO info{};
  ::GetSystemInfo(&info);
  return info.dwAllocationGranularity;
}

} // namespace qvPlatform
