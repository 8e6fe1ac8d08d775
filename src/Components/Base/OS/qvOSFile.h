// A file as the rest of the library sees it: a handle that owns a transport, chosen by the file's name, and
// refuses what does not fit its state. The free functions that work on names alone are in
// qvOSFileOperations.h.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSFileError.h"
#include "Base/OS/qvOSFileTransport.h"
#include "Base/OS/qvOSIOStream.h"
#include "Base/String/qvStringIString.h"

namespace qvOS {

class Filename;
class FileStatus;

/// A handle on one file or directory. All failures have the codes and texts of `FileError`. A handle that is
/// not valid answers every operation with code 1 "Not Implemented", and every question with false or empty.
/// Not thread-safe: a file belongs to one thread at a time.
class QV_BASE_API File : public IOStream {
public:
  /// A file of that name, in the state closed; nothing is touched and the file need not exist. The transport
  /// comes from the file factory.
  explicit File(const qvString::IString& name);
  /// Takes ownership of `transport`, which may be null.
  explicit File(FileTransport* transport);
  ~File() override;
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  /// Forwarded without a look at whether the file is open; a closed local file gives code 4.
  qvUtil::Error read(void* buffer, std::uint64_t size, std::uint64_t* count) override;
  qvUtil::Error write(const void* buffer, std::uint64_t size, std::uint64_t* count) override;

  /// A failure with `code` and its text from `FileError`; no text for a code that is not there.
  static qvUtil::Error getError(int code);

  /// False if no transport answers to the name.
  bool isValid() const;
  bool isDirectory() const;
  bool isOpen() const;
  qvString::IString getFullName() const;
  qvString::IString getNameTitle() const;
  qvString::IString getNameBase() const;
  qv::WChar getSeparator() const;
  qvString::IString transportId() const;
  /// The transport, which the file keeps; null for an unresolved name.
  FileTransport* getTransport();
  const FileTransport* getTransport() const;

  /// Opens the file with the bits of `FileTransport::OpenFlags`.
  /// @return code 9 if it is open; 18 if it does not exist; 2 if it exists and must not; 4 for all else.
  qvUtil::Error open(int flags);
  /// Opens a fresh file with a name made from this one's, which the file then has. Code 9 if open.
  qvUtil::Error openTemp(int flags);
  /// Code 8 if not open; otherwise never fails for a local file.
  qvUtil::Error close();
  /// Replaces `names` by the entries of this directory. Code 10 if this is not a directory.
  qvUtil::Error readDir(qv::vector<qvString::IString>& names, bool fullPath);
  /// `FileTransport::copyTo`, with the warning there. Code 9 if this file is open.
  qvUtil::Error copyTo(File& dest);
  /// `FileTransport::moveTo`, with the warning there. Code 9 if this file is open.
  qvUtil::Error moveTo(File& dest);
  /// Deletes the file, and a directory with everything in it unless `flags` has bit 64. A symbolic link is
  /// deleted itself, whatever it points to. Code 9 if open.
  qvUtil::Error deleteSelf(int flags);
  /// Makes the directory of this name. Code 9 if open; 2 if something of that name exists.
  qvUtil::Error makeDirectory();
  /// Makes a fresh directory beside this name, whose name the file then has. Code 9 if open.
  qvUtil::Error makeTempDirectory();
  /// Makes the directory of this name and those above it that are missing. Code 9 if open.
  qvUtil::Error makeDirectoryAll();

  /// Resets `status` and fills it in, with `ownerGroup` also the owner and the group, whose failure is then
  /// the result. A file that does not exist is no error.
  qvUtil::Error query(FileStatus& status, bool ownerGroup);
  /// The same for a name, without owner and group. Code 1 if no transport answers to the name.
  static qvUtil::Error query(const qvString::IString& name, FileStatus& status);
  static qvUtil::Error query(const Filename& name, FileStatus& status);

private:
  FileTransport* transport_;
};

} // namespace qvOS
