// The back end of a file: what `File` forwards to. The library brings one, for the local disk; others are
// plugged in through `FileFactory`. Here are also the operations that any back end gets for nothing, a copy
// and a move between any two transports and the recursive walks, which stand on the virtual ones alone.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSIOStream.h"
#include "Base/String/qvStringIString.h"

namespace qvOS {

class FileStatus;

/// One name in some store of files, and the stream on it while it is open. Codes are those of
/// `FileError`. Nothing here checks whether the file is open or closed; `File` does.
/// Not thread-safe: a transport belongs to one thread at a time.
class QV_BASE_API FileTransport : public IOStream {
public:
  /// The bits of `open`, as the local transport reads them. The bits 2 and 32 are accepted and mean nothing
  /// to it; `copyTo` passes them, so that other back ends may.
  enum OpenFlags {
    openText = 1,       ///< text mode; without it the stream is binary
    openRead = 4,       ///< for reading; the file must exist
    openWrite = 8,      ///< for writing; an existing file is emptied. Without effect beside `openRead`
    openAppend = 16,    ///< for reading and for writing at the end; overrides the two above
    openToCopy = 6,     ///< what `copyTo` opens its source with
    openAsCopy = 8 | 32 ///< what `copyTo` opens its destination with
  };

  /// The bits of a delete. 128 has no effect of its own.
  enum DeleteFlags { deleteEntryOnly = 64, deleteWithContents = 128 };

  ~FileTransport() override;

  qvUtil::Error read(void* buffer, std::uint64_t size, std::uint64_t* count) override = 0;
  qvUtil::Error write(const void* buffer, std::uint64_t size, std::uint64_t* count) override = 0;

  /// Opens the file with `OpenFlags`. An open stream is closed first.
  virtual qvUtil::Error open(int flags) = 0;
  /// Opens a fresh file whose name is made from this one's, and takes that name. Code -1 unless overridden.
  virtual qvUtil::Error openTemp(int flags);
  /// Closes the stream; nothing happens where none is open.
  virtual qvUtil::Error close() = 0;
  /// Makes the directory of this name. Code 2 where something of that name exists.
  virtual qvUtil::Error makeDirectory() = 0;
  /// Makes a fresh directory beside this name, and takes its name. Code -1 unless overridden.
  virtual qvUtil::Error makeTempDirectory();
  /// Makes the directory of this name and all that are missing above it; an existing directory is no error.
  /// Code -1 unless overridden.
  virtual qvUtil::Error makeDirectoryAll();
  /// Lists the directory into `names`, "." and ".." included where the store has them. With `fullPath` each
  /// entry is preceded by this directory's name and a separator.
  virtual qvUtil::Error readDir(qv::vector<qvString::IString>& names, bool fullPath) = 0;

  /// Copies this file, or this directory with all that is in it, to the name of `dest`. An existing file is
  /// overwritten, an existing directory is added to. A symbolic link to a directory that is met inside the
  /// directory is copied as a link and never descended through.
  ///
  /// The result for a file is that of closing `dest`: a read or write that failed on the way, for want of
  /// space say, is not reported when the close succeeds. A caller who needs certainty compares the files, or
  /// uses `fileCopy`.
  /// @return code 9 if either is open; 7 if both names are one file, or if `dest` is inside this directory; 4
  /// if `dest` cannot be opened.
  virtual qvUtil::Error copyTo(FileTransport& dest);
  /// `copyTo`, and `deleteSelf` if that gave no error; the warning there holds here too. A directory that is
  /// copied and not empty stays, with the error of its deletion.
  /// @return code 9 if this is open; 7 if both names are one file.
  virtual qvUtil::Error moveTo(FileTransport& dest);
  /// Deletes this file, link or empty directory.
  virtual qvUtil::Error deleteSelf() = 0;

  /// True if the name is that of a directory, or of a link to one. A back end may remember the answer.
  virtual bool isDirectory() const = 0;
  virtual bool isOpen() const = 0;
  /// The name in full, as this back end writes it.
  virtual qvString::IString getFullName() const = 0;
  /// The full name up to and including the last separator; empty where there is none.
  virtual qvString::IString getNameTitle() const = 0;
  /// What follows the last separator; empty where there is none.
  virtual qvString::IString getNameBase() const = 0;
  virtual qv::WChar getSeparator() const = 0;
  /// The name of the back end. Two transports of one back end have the same.
  virtual qvString::IString transportId() const = 0;

  /// Fills in what is known of the file. A file that does not exist is no error and leaves `status` clear.
  virtual qvUtil::Error query(FileStatus& status) = 0;
  /// Fills in owner and group, "Unknown" where they cannot be told. Code -1 unless overridden.
  virtual qvUtil::Error queryOwnerGroup(FileStatus& status);

  /// Deletes the directory and everything in it, links themselves and not what they point to. Goes on past
  /// entries that cannot be deleted, and then fails with that of the directory itself.
  qvUtil::Error recursiveDeleteSelf();
  /// Copies every entry of this directory into the directory `dest`, and with `deleteSource` deletes each
  /// file that was copied. Goes on past a failed entry.
  /// @return code 10 unless both are directories; otherwise the first failure.
  qvUtil::Error recreateDirStructure(FileTransport& dest, bool deleteSource);

protected:
  FileTransport() = default;
  FileTransport(const FileTransport&) = default;
  FileTransport& operator=(const FileTransport&) = default;

private:
  static qvUtil::Error getError(int code);
  void copyBytesTo(FileTransport& dest);
};

} // namespace qvOS
