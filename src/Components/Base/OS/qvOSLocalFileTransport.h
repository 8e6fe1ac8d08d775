// The transport for names on the local disk, over the C runtime's buffered streams. Private to the library.
#pragma once

#include "Base/OS/qvOSFileTransport.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/String/qvStringCString.h"

#include <cstdio>

namespace qvOS {

class LocalFileTransport : public FileTransport {
public:
  explicit LocalFileTransport(const qvString::IString& path);
  ~LocalFileTransport() override;
  LocalFileTransport(const LocalFileTransport&) = delete;
  LocalFileTransport& operator=(const LocalFileTransport&) = delete;

  qvUtil::Error read(void* buffer, std::uint64_t size, std::uint64_t* count) override;
  qvUtil::Error write(const void* buffer, std::uint64_t size, std::uint64_t* count) override;
  qvUtil::Error open(int flags) override;
  qvUtil::Error openTemp(int flags) override;
  /// Never fails, even where the last buffered bytes could not be written.
  qvUtil::Error close() override;
  qvUtil::Error makeDirectory() override;
  qvUtil::Error makeTempDirectory() override;
  qvUtil::Error makeDirectoryAll() override;
  qvUtil::Error readDir(qv::vector<qvString::IString>& names, bool fullPath) override;
  qvUtil::Error moveTo(FileTransport& dest) override;
  qvUtil::Error deleteSelf() override;
  /// Remembered once it could be told, and then never asked again, even if the file changes.
  bool isDirectory() const override;
  bool isOpen() const override;
  qvString::IString getFullName() const override;
  qvString::IString getNameTitle() const override;
  qvString::IString getNameBase() const override;
  qv::WChar getSeparator() const override;
  qvString::IString transportId() const override;
  qvUtil::Error query(FileStatus& status) override;
  qvUtil::Error queryOwnerGroup(FileStatus& status) override;

  /// The failure of a call that makes a name, from the system's number; no error for 0.
  [[nodiscard]] static qvUtil::Error creationError(int failed);
  /// The name as the system takes it, with no separator at its end: of a link, the link's own.
  [[nodiscard]] qvString::CString nativeName() const;
  /// What the name itself is, a link as a link. The system's number, 0 for success.
  [[nodiscard]] int queryLink(qvPlatform::FileInfo* info) const;
  /// What the name leads to.
  [[nodiscard]] int queryFile(qvPlatform::FileInfo* info) const;

private:
  /// A stream that was last read must be positioned before it is written, and the other way round.
  enum class Direction { none, reading, writing };

  [[nodiscard]] int turn(Direction direction);
  void rename(const qvString::IString& path);
  [[nodiscard]] int openStream(const qvString::IString& path, int flags);

  qvString::IString path_;
  std::FILE* stream_ = nullptr;
  mutable bool typeKnown_ = false;
  mutable bool directoryFlag_ = false;
  Direction direction_ = Direction::none;
};

} // namespace qvOS
