// A copy of a file, made by the system: it keeps the read-only mark and the time, shares blocks where the
// file system can, and deletes what it could not finish.
#include "Base/Platform/Windows/qvPlatformSystem.h"

namespace qvPlatform {

namespace {

/// Takes the room that a longer content needs, before the old one goes. What else stands in the way is left
/// for the copy to tell.
int reserveRoom(const char* from, const char* to) {
  FileInfo source;
  FileInfo target;
  if (queryFile(from, &source) || queryFile(to, &target) || source.size <= target.size) return 0;
  Handle handle;
  if (openHandle("open", to, GENERIC_WRITE, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, &handle)) return 0;
  const int error = systemCall("reserve", [&] {
    FILE_ALLOCATION_INFO room{};
    room.AllocationSize.QuadPart = source.size;
    return ::SetFileInformationByHandle(handle.get(), FileAllocationInfo, &room, sizeof room);
  });
  return errorKind(error) == ErrorKind::noSpace ? error : 0;
}

} // namespace

int copyFile(const char* from, const char* to, bool overwrite) noexcept {
  if (overwrite)
    if (const int error = reserveRoom(from, to)) return error;
  const SystemPath source(from);
  return pathCall("copy", to, [&](const wchar_t* target) {
    if (!source.isValid()) return FALSE;
    // A link takes a name too, wherever it leads.
    if (!overwrite && ::GetFileAttributesW(target) != INVALID_FILE_ATTRIBUTES) {
      ::SetLastError(ERROR_FILE_EXISTS);
      return FALSE;
    }
    return ::CopyFileW(source.get(), target, !overwrite);
  });
}

} // namespace qvPlatform
