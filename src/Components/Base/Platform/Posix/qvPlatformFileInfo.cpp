// What a name stands for: status, owner, rights and attributes.
#include "Base/Platform/Posix/qvPlatformDescriptor.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformProcess.h"

#include <errno.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

namespace qvPlatform {

static_assert(accessExists == F_OK && accessExecute == X_OK && accessWrite == W_OK && accessRead == R_OK);

namespace {

constexpr unsigned permissionBits = 0777;

FileKind kindOf(mode_t mode) {
  if (S_ISREG(mode)) return FileKind::file;
  if (S_ISDIR(mode)) return FileKind::directory;
  return S_ISLNK(mode) ? FileKind::link : FileKind::other;
}

template <class Query>
int query(FileInfo* info, Query call) {
  struct stat status;
  const int error = retryCall("stat", [&] { return call(&status); });
  if (!error) *info = infoOf(status);
  return error;
}

/// The name that `find` (getpwuid_r or getgrgid_r) has for the number, or else the number itself.
template <class Record, class Find>
std::string accountName(unsigned long id, Find find, char* Record::*name) {
  Record record;
  Record* found = nullptr;
  for (std::vector<char> buffer(1024);; buffer.resize(buffer.size() * 4)) {
    const int error = find(&record, buffer.data(), buffer.size(), &found);
    if (error == EINTR || (error == ERANGE && buffer.size() < (std::size_t(1) << 24))) continue;
    return error || !found ? std::to_string(id) : found->*name;
  }
}

template <class NameOf>
int queryAccount(const char* path, AccountName* result, NameOf nameOf) {
  struct stat status;
  if (const int error = retryCall("owner", [&] { return ::stat(path, &status); })) return error;
  *result = {machineName(), nameOf(status)};
  return 0;
}

} // namespace

FileInfo infoOf(const struct stat& status) noexcept {
  FileInfo info;
  info.kind = kindOf(status.st_mode);
  info.size = status.st_size;
  info.modified = status.st_mtim.tv_sec;
  info.modifiedNanoseconds = static_cast<std::int32_t>(status.st_mtim.tv_nsec);
  info.changed = status.st_ctim.tv_sec;
  info.permissions = status.st_mode & permissionBits;
  info.volume = status.st_dev;
  info.serial = status.st_ino;
  return info;
}

int queryFile(const char* path, FileInfo* info) noexcept {
  return query(info, [&](struct stat* status) { return ::stat(path, status); });
}

int queryLink(const char* path, FileInfo* info) noexcept {
  return query(info, [&](struct stat* status) { return ::lstat(path, status); });
}

int queryHandle(FileHandle file, FileInfo* info) noexcept {
  return query(info, [&](struct stat* status) { return ::fstat(descriptorOf(file), status); });
}

int queryOwner(const char* path, AccountName* owner) {
  return queryAccount(path, owner, [](const struct stat& status) {
    const auto find = [&](passwd* record, char* buffer, std::size_t size, passwd** found) {
      return getpwuid_r(status.st_uid, record, buffer, size, found);
    };
    return accountName(status.st_uid, find, &passwd::pw_name);
  });
}

int queryGroup(const char* path, AccountName* group) {
  return queryAccount(path, group, [](const struct stat& status) {
    const auto find = [&](::group* record, char* buffer, std::size_t size, ::group** found) {
      return getgrgid_r(status.st_gid, record, buffer, size, found);
    };
    return accountName(status.st_gid, find, &::group::gr_name);
  });
}

int checkAccess(const char* path, int rights) noexcept {
  return retryCall("access", [&] { return ::faccessat(AT_FDCWD, path, rights, AT_EACCESS); });
}

int setPermissions(const char* path, unsigned permissions) noexcept {
  return retryCall("attributes", [&] { return ::chmod(path, permissions & permissionBits); });
}

int copyAttributes(const char* from, const char* to) noexcept {
  struct stat status;
  if (const int error = retryCall("stat", [&] { return ::stat(from, &status); })) return error;
  // The owner first, because a new owner takes bits away. Who may not give it may still give the group.
  const auto own = [&](uid_t owner) {
    return retryCall("attributes", [&] { return ::chown(to, owner, status.st_gid); });
  };
  if (const int error = own(status.st_uid); errorKind(error) == ErrorKind::denied)
    (void)own(static_cast<uid_t>(-1));
  return setPermissions(to, status.st_mode);
}

int setModified(const char* path, std::int64_t seconds, std::int32_t nanoseconds) noexcept {
  const timespec times[2] = {{0, UTIME_OMIT}, {seconds, nanoseconds}};
  return retryCall("attributes", [&] { return ::utimensat(AT_FDCWD, path, times, 0); });
}

} // namespace qvPlatform
