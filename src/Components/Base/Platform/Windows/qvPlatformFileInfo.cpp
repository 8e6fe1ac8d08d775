// What a name stands for: status, owner, rights and attributes.
#include "Base/Platform/Windows/qvPlatformSystem.h"

#include <aclapi.h>
#include <io.h>

#include <memory>

namespace qvPlatform {

namespace {

constexpr unsigned readBits = 0444;
constexpr unsigned writeBits = 0222;
constexpr unsigned searchBits = 0111;
constexpr unsigned ownerWriteBit = 0200;

constexpr std::int64_t ticksPerSecond = 10'000'000;
constexpr std::int64_t nanosecondsPerTick = 100;
constexpr std::int64_t secondsTo1970 = 11'644'473'600; ///< From 1601, where the system's time begins.

std::int64_t ticksOf(const FILETIME& time) {
  return std::int64_t(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

unsigned permissionsOf(DWORD attributes) {
  if (attributes & FILE_ATTRIBUTE_DIRECTORY) return readBits | writeBits | searchBits;
  return attributes & FILE_ATTRIBUTE_READONLY ? readBits : readBits | writeBits;
}

FileKind kindOf(HANDLE handle, DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) && isLink(handle)) return FileKind::link;
  return attributes & FILE_ATTRIBUTE_DIRECTORY ? FileKind::directory : FileKind::file;
}

bool readInfo(HANDLE handle, FileInfo* info) {
  *info = {};
  ::SetLastError(0);
  const DWORD type = ::GetFileType(handle);
  if (type != FILE_TYPE_DISK) return type != FILE_TYPE_UNKNOWN || ::GetLastError() == 0;
  BY_HANDLE_FILE_INFORMATION status;
  if (!::GetFileInformationByHandle(handle, &status)) return false;
  const std::int64_t modified = ticksOf(status.ftLastWriteTime);
  info->kind = kindOf(handle, status.dwFileAttributes);
  info->size = std::int64_t(status.nFileSizeHigh) << 32 | status.nFileSizeLow;
  info->modified = modified / ticksPerSecond - secondsTo1970;
  info->modifiedNanoseconds = static_cast<std::int32_t>(modified % ticksPerSecond * nanosecondsPerTick);
  info->changed = ticksOf(status.ftCreationTime) / ticksPerSecond - secondsTo1970;
  info->permissions = permissionsOf(status.dwFileAttributes);
  info->volume = status.dwVolumeSerialNumber;
  info->serial = std::uint64_t(status.nFileIndexHigh) << 32 | status.nFileIndexLow;
  return true;
}

/// As operation `name`. A name that the system cannot have names nothing.
int query(const char* name, const char* path, DWORD flags, FileInfo* info) {
  FileInfo result;
  const int error = pathCall(name, path, [&](const wchar_t* system) {
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    Handle handle;
    handle.set(::CreateFileW(system, FILE_READ_ATTRIBUTES, share, nullptr, OPEN_EXISTING,
                             FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
    return handle.isOpen() && readInfo(handle.get(), &result);
  });
  if (!error) *info = result;
  return error == ERROR_INVALID_NAME ? ERROR_FILE_NOT_FOUND : error;
}

/// The path of what a link leads to; of anything else its own.
std::wstring followed(const wchar_t* path) {
  const DWORD attributes = ::GetFileAttributesW(path);
  Handle handle;
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT))
    handle.set(
        ::CreateFileW(path, 0, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!handle.isOpen()) return path;
  return filledText([&](wchar_t* buffer, DWORD room) {
    return ::GetFinalPathNameByHandleW(handle.get(), buffer, room, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
  });
}

/// What the system keeps of who may do what with a file.
class Security {
public:
  /// @return the system's number.
  int read(const wchar_t* path, SECURITY_INFORMATION wanted) {
    PSECURITY_DESCRIPTOR read = nullptr;
    const DWORD error = ::GetNamedSecurityInfoW(const_cast<wchar_t*>(path), SE_FILE_OBJECT, wanted, &owner,
                                                &group, &list, nullptr, &read);
    descriptor_.reset(read);
    return static_cast<int>(error);
  }
  /// Whether the file takes over no rights from its directory.
  [[nodiscard]] bool isProtected() const {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    return ::GetSecurityDescriptorControl(descriptor_.get(), &control, &revision) &&
           (control & SE_DACL_PROTECTED);
  }

  PSID owner = nullptr;
  PSID group = nullptr;
  PACL list = nullptr;

private:
  std::unique_ptr<void, decltype(&::LocalFree)> descriptor_{nullptr, &::LocalFree};
};

/// The names are in the system's own narrow encoding.
bool lookUp(PSID account, AccountName* result) {
  DWORD accountSize = 0;
  DWORD domainSize = 0;
  SID_NAME_USE use;
  ::LookupAccountSidA(nullptr, account, nullptr, &accountSize, nullptr, &domainSize, &use);
  if (!accountSize || !domainSize) return false;
  std::string name(accountSize, '\0');
  std::string domain(domainSize, '\0');
  if (!::LookupAccountSidA(nullptr, account, name.data(), &accountSize, domain.data(), &domainSize, &use))
    return false;
  *result = {domain.c_str(), name.c_str()};
  return true;
}

int queryAccount(const char* path, SECURITY_INFORMATION wanted, PSID Security::*account,
                 AccountName* result) {
  return pathCall("owner", path, [&](const wchar_t* system) {
    Security security;
    const int error = security.read(system, wanted);
    if (error) ::SetLastError(static_cast<DWORD>(error));
    return !error && lookUp(security.*account, result);
  });
}

/// Gives what may be given: an owner, for one, only by those who have the privilege.
void copySecurity(const wchar_t* from, wchar_t* to) {
  constexpr SECURITY_INFORMATION owners = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION;
  Security security;
  if (security.read(from, owners | DACL_SECURITY_INFORMATION)) return;
  const SECURITY_INFORMATION inheriting =
      security.isProtected() ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION;
  ::SetNamedSecurityInfoW(to, SE_FILE_OBJECT, owners, security.owner, security.group, nullptr, nullptr);
  ::SetNamedSecurityInfoW(to, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inheriting, nullptr, nullptr,
                          security.list, nullptr);
}

} // namespace

int queryFile(const char* path, FileInfo* info) noexcept { return query("stat", path, 0, info); }

int queryLink(const char* path, FileInfo* info) noexcept {
  return query("stat", path, FILE_FLAG_OPEN_REPARSE_POINT, info);
}

int queryHandle(FileHandle file, FileInfo* info) noexcept {
  FileInfo result;
  const int error = systemCall("stat", [&] { return readInfo(handleOf(file), &result); });
  if (!error) *info = result;
  return error;
}

int queryOwner(const char* path, AccountName* owner) {
  return queryAccount(path, OWNER_SECURITY_INFORMATION, &Security::owner, owner);
}

int queryGroup(const char* path, AccountName* group) {
  return queryAccount(path, GROUP_SECURITY_INFORMATION, &Security::group, group);
}

int checkAccess(const char* path, int rights) noexcept {
  FileInfo info;
  if (const int error = query("access", path, 0, &info)) return error;
  const bool readOnly = info.kind == FileKind::file && !(info.permissions & writeBits);
  return readOnly && (rights & accessWrite) ? ERROR_ACCESS_DENIED : 0;
}

int setPermissions(const char* path, unsigned permissions) noexcept {
  return pathCall("attributes", path, [&](const wchar_t* system) {
    const std::wstring target = followed(system);
    const DWORD before = ::GetFileAttributesW(target.c_str());
    if (before == INVALID_FILE_ATTRIBUTES) return FALSE;
    if (before & FILE_ATTRIBUTE_DIRECTORY) return TRUE;
    const DWORD rest = before & ~DWORD(FILE_ATTRIBUTE_READONLY);
    const DWORD wanted = permissions & ownerWriteBit ? rest : rest | FILE_ATTRIBUTE_READONLY;
    return ::SetFileAttributesW(target.c_str(), wanted ? wanted : FILE_ATTRIBUTE_NORMAL);
  });
}

int copyAttributes(const char* from, const char* to) noexcept {
  FileInfo info;
  if (const int error = queryFile(from, &info)) return error;
  const SystemPath source(from);
  const int error = pathCall("attributes", to, [&](wchar_t const* target) {
    std::wstring name(target);
    if (source.isValid()) copySecurity(source.get(), name.data());
    return true;
  });
  return error ? error : setPermissions(to, info.permissions);
}

int setModified(const char* path, std::int64_t seconds, std::int32_t nanoseconds) noexcept {
  constexpr std::int64_t latest = INT64_MAX / ticksPerSecond - secondsTo1970 - 1;
  if (seconds <= -secondsTo1970 || seconds > latest) return errorNumber(ErrorKind::invalid);
  const std::int64_t ticks = (seconds + secondsTo1970) * ticksPerSecond + nanoseconds / nanosecondsPerTick;
  const FILETIME time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
  Handle handle;
  const int error = openHandle("attributes", path, FILE_WRITE_ATTRIBUTES, OPEN_EXISTING,
                               FILE_FLAG_BACKUP_SEMANTICS, &handle);
  if (error) return error;
  return ::SetFileTime(handle.get(), nullptr, nullptr, &time) ? 0 : lastError();
}

} // namespace qvPlatform
