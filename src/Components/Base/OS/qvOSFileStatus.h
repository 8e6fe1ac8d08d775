// What is known of a file: the answer of `File::query`.
#pragma once

#include "Base/String/qvStringCString.h"
#include "Base/qvBase.h"

#include <cstdint>

namespace qvOS {

/// Flags, size, dates, owner and group of a file. A plain value; every setter has its getter.
class FileStatus {
public:
  /// All flags false, size and dates 0, owner and group empty.
  FileStatus() = default;

  /// Back to the state of a new value.
  QV_BASE_API void reset();

  void setExists(bool on) { exists_ = on; }
  void setIsReadable(bool on) { readable_ = on; }
  void setIsWritable(bool on) { writable_ = on; }
  void setIsDirectory(bool on) { directory_ = on; }
  void setIsFile(bool on) { file_ = on; }
  void setIsRemote(bool on) { remote_ = on; }
  void setIsCheckedout(bool on) { checkedOut_ = on; }
  void setSize(long bytes) { size_ = bytes; }
  void setCreationDate(std::int64_t seconds) { creationDate_ = seconds; }
  void setLastModification(std::int64_t seconds) { lastModification_ = seconds; }
  void setOwner(const qvString::CString& name) { owner_ = name; }
  void setGroup(const qvString::CString& name) { group_ = name; }

  /// True if there is a file or a directory of the name.
  [[nodiscard]] bool exists() const noexcept { return exists_; }
  [[nodiscard]] bool isReadable() const noexcept { return readable_; }
  [[nodiscard]] bool isWritable() const noexcept { return writable_; }
  [[nodiscard]] bool isDirectory() const noexcept { return directory_; }
  [[nodiscard]] bool isFile() const noexcept { return file_; }
  [[nodiscard]] bool isRemote() const noexcept { return remote_; }
  [[nodiscard]] bool isCheckedout() const noexcept { return checkedOut_; }
  /// In bytes.
  [[nodiscard]] long getSize() const noexcept { return size_; }
  /// In seconds since 1970-01-01 00:00:00 UTC. For a local file the time of its last status change.
  [[nodiscard]] std::int64_t getCreationDate() const noexcept { return creationDate_; }
  /// In seconds since 1970-01-01 00:00:00 UTC.
  [[nodiscard]] std::int64_t getLastModifiedDate() const noexcept { return lastModification_; }
  [[nodiscard]] const qvString::CString& getOwner() const noexcept { return owner_; }
  [[nodiscard]] const qvString::CString& getGroup() const noexcept { return group_; }

private:
  bool exists_ = false;
  bool readable_ = false;
  bool writable_ = false;
  bool directory_ = false;
  bool file_ = false;
  bool remote_ = false;
  bool checkedOut_ = false;
  long size_ = 0;
  std::int64_t creationDate_ = 0;
  std::int64_t lastModification_ = 0;
  qvString::CString owner_;
  qvString::CString group_;
};

} // namespace qvOS
