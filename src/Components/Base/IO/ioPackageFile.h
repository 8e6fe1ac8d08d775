// A package: one container file of named entries, each a stored file, optionally compressed. The directory is
// itself a small packet file that stands behind the entries; docs/formats.md has the bytes.
#pragma once

#include "Base/Containers/qvMap.h"
#include "Base/Containers/qvVector.h"
#include "Base/IO/ioBufferedStream.h"
#include "Base/String/qvStringIString.h"
#include "Base/Utility/qvUtilError.h"

#include <cstdint>

class ioPackageFile;
class ioPackageFileEntry;
class ioReadContext;

namespace ioPackageIO {
class PackageReadContext;
}

/// One region of a package: an entry, a free region (its name is empty), or the directory (its name is ".").
class ioPackageFileEntry {
public:
  QV_BASE_API ioPackageFileEntry();
  QV_BASE_API ioPackageFileEntry(ioPackageFile* package, const qvString::IString& name, std::int64_t offset,
                                 std::int64_t size, std::int64_t timeStamp, bool compressed);

  [[nodiscard]] ioPackageFile* getPackage() const noexcept { return package_; }
  /// The file name of the package; empty where the entry belongs to no package.
  [[nodiscard]] QV_BASE_API const qvString::IString& getPackageName() const;
  [[nodiscard]] const qvString::IString& getName() const noexcept { return name_; }
  /// Where the stored bytes begin in the package.
  [[nodiscard]] std::int64_t getOffset() const noexcept { return offset_; }
  /// The number of bytes as stored, that is, after compression.
  [[nodiscard]] std::int64_t getSize() const noexcept { return size_; }
  /// The last modification of the stored file, in seconds since 1970-01-01 00:00:00 UTC.
  [[nodiscard]] std::int64_t getTimeStamp() const noexcept { return timeStamp_; }
  /// True where the stored bytes are a checksum stream inside a compressed stream.
  [[nodiscard]] bool getCompressed() const noexcept { return compressed_; }

private:
  friend class ioPackageFile;

  [[nodiscard]] bool isFree() const { return name_.isEmpty(); }

  ioPackageFile* package_ = nullptr;
  qvString::IString name_;
  std::int64_t offset_ = -1;
  std::int64_t size_ = -1;
  std::int64_t timeStamp_ = -1;
  bool compressed_ = false;
};

template <>
inline constexpr bool qv::isRelocatable<ioPackageFileEntry> = true;

/// A package file. Entries are added and deleted at once in the file's data and in memory; the directory in
/// the file changes only in `update`, so a package that is closed without it still has its old directory.
///
/// A new package must be updated once before it can be opened again, and only a change makes `update` write:
/// a package that never got an entry, or only one that went into an exact hole of an earlier session, is left
/// as it was.
///
/// One thread at a time uses a package. Entries that were handed out are good until the next change.
class ioPackageFile {
public:
  /// Not opened: it holds the directory's own record only.
  QV_BASE_API ioPackageFile();
  QV_BASE_API ~ioPackageFile();
  ioPackageFile(const ioPackageFile&) = delete;
  ioPackageFile& operator=(const ioPackageFile&) = delete;

  /// Opens the package `name`, or creates it where no such file exists.
  /// @return code 2 where it cannot be created, 7 where it cannot be read, 17 where it is no package or its
  /// directory is damaged.
  [[nodiscard]] QV_BASE_API qvUtil::Error open(const qvString::IString& name);

  /// Ends writing. The package stays open for reading, and the directory is not written.
  QV_BASE_API void close();

  /// Writes the directory where something has changed since the package was opened.
  /// @return code 3 where no package is open, 4 where it is not writable, 10 where the directory cannot be
  /// written, 15 where the package cannot be opened for writing.
  [[nodiscard]] QV_BASE_API qvUtil::Error update();

  /// Writes a compact copy to the file `name`, which is replaced where it exists, and stands for that file
  /// from then on. Entries come out sorted by name. Its own file is refused as the target.
  /// @return code 4 where the target cannot be removed or written, and the codes of opening, copying and
  /// updating.
  [[nodiscard]] QV_BASE_API qvUtil::Error write(const qvString::IString& name);

  /// Stores the file `fileName` as the entry `entryName`, which is cleaned up by `cleanupName` first. An
  /// entry of that name is replaced. With `compress`, the file is compressed first (a large one through a
  /// temporary file), and the result is kept where it is smaller than the source. Files of 2 GiB and more are
  /// refused.
  /// @return code 3 or 4 where the package cannot be changed, 6 where the file does not exist, 7 where it
  /// cannot be read, 8 or 16 where it changes its size meanwhile, 9 and 10 for failures of reading and
  /// writing, 11 and 12 for a name that is not allowed, 15 where the package cannot be written. After a
  /// failed copy an entry of that name is gone.
  [[nodiscard]] QV_BASE_API qvUtil::Error addEntry(const qvString::IString& fileName,
                                                   const qvString::IString& entryName, bool compress);

  /// Copies the stored bytes of an entry of another package. The name must be new here.
  /// @return code 7 for a null entry or one that cannot be read, 11 for an empty name, 14 for a used one, 15
  /// for an entry of this package, and the codes of copying.
  [[nodiscard]] QV_BASE_API qvUtil::Error addEntry(const ioPackageFileEntry* entry,
                                                   const qvString::IString& entryName);

  /// Frees the entry's region, which merges with free neighbours and is found again by later additions.
  /// @return code 3 or 4 where the package cannot be changed, 13 for an unknown name.
  [[nodiscard]] QV_BASE_API qvUtil::Error deleteEntry(const qvString::IString& name);

  /// Writes the content of `entry` to the file `fileName`, and makes its directory. A null entry is no error.
  /// @return code 2 where the file cannot be created, 5 for its directory, 7 and 9 for failures of reading,
  /// 10 for failures of writing.
  [[nodiscard]] QV_BASE_API qvUtil::Error extractEntry(const ioPackageFileEntry* entry,
                                                       const qvString::IString& fileName);

  /// Extracts every entry below `directory`, by name order, and stops at the first failure.
  /// @return code 12 for a name that would lead out of `directory`, and the codes of extracting.
  [[nodiscard]] QV_BASE_API qvUtil::Error expand(const qvString::IString& directory);

  /// The record at `index`, from 0 to the number of records, in offset order. The last is the directory's
  /// own.
  /// @return null for a free record and for an index outside.
  [[nodiscard]] QV_BASE_API const ioPackageFileEntry* getEntry(int index) const;
  /// The entry of that name; null where there is none, or where a failed copy has taken it away: its name
  /// stays in `getDirectory` until it is added again or deleted.
  [[nodiscard]] QV_BASE_API const ioPackageFileEntry* getEntry(const qvString::IString& name) const;

  /// Names and the indexes of their records.
  [[nodiscard]] const qv::map<qvString::IString, int>& getDirectory() const noexcept { return directory_; }
  /// The number of names.
  [[nodiscard]] QV_BASE_API int size() const;
  [[nodiscard]] const qvString::IString& getPackageFileName() const noexcept { return packageName_; }

  /// Turns backslashes into slashes, and removes a leading drive letter with its colon and every leading
  /// "./", "../" and "/".
  QV_BASE_API static void cleanupName(qvString::IString& name);

  /// Tells whether the file `name` begins as a package does and points to a directory.
  [[nodiscard]] QV_BASE_API static bool isFilePackageFile(const qvString::IString& name);

private:
  friend class ioPackageIO::PackageReadContext;

  void appendEntry(const qvString::IString& name, std::int64_t offset, std::int64_t size,
                   std::int64_t timeStamp, bool compressed);
  [[nodiscard]] int createEntry(std::int64_t size);
  void splitEntry(int index, std::int64_t size);
  void freeEntry(int index);
  void freeNamedEntry(const qvString::IString& name);
  void joinEntries(int index);
  void updateDirectoryEntry(std::int64_t offset);
  void shiftIndexes(int first, int by);
  void swap(ioPackageFile& other);

  [[nodiscard]] qvUtil::Error openPackageForOutput();
  void closePackageForOutput();
  [[nodiscard]] qvUtil::Error createPackage(const qvString::IString& name);
  [[nodiscard]] qvUtil::Error writePackageHeader();
  void writeDirectoryPointer(std::int64_t offset);
  [[nodiscard]] qvUtil::Error writeDirectory();
  [[nodiscard]] qvUtil::Error writeDirectoryPackets();
  [[nodiscard]] qvUtil::Error readPackageHeader(const qvString::IString& name);
  [[nodiscard]] qvUtil::Error readDirectory();
  [[nodiscard]] qvUtil::Error readDirectoryPackets(std::int64_t offset);
  [[nodiscard]] bool directoryIsSound(std::int64_t offset) const;

  [[nodiscard]] qvUtil::Error verifyChange() const;
  [[nodiscard]] qvUtil::Error verifyAddEntry(const qvString::IString& name) const;
  [[nodiscard]] qvUtil::Error addThroughMemory(const qvString::IString& fileName, std::int64_t size,
                                               std::int64_t timeStamp, const qvString::IString& name);
  [[nodiscard]] qvUtil::Error addThroughTemporary(const qvString::IString& fileName, std::int64_t size,
                                                  std::int64_t timeStamp, const qvString::IString& name);
  [[nodiscard]] qvUtil::Error copyFileIntoPackage(const qvString::IString& fileName, std::int64_t size,
                                                  std::int64_t timeStamp, bool compressed,
                                                  const qvString::IString& name);
  [[nodiscard]] qvUtil::Error copyEntryIntoPackage(const ioPackageFileEntry& entry,
                                                   const qvString::IString& name);
  [[nodiscard]] qvUtil::Error copyStreamIntoPackage(ioBufferedStreamInput& input, std::int64_t size,
                                                    std::int64_t timeStamp, bool compressed,
                                                    const qvString::IString& name);
  [[nodiscard]] qvUtil::Error copyBytes(ioBufferedStreamInput& input, std::int64_t offset, std::int64_t size,
                                        const qvString::IString& name);

  qvString::IString packageName_;
  bool writable_ = false;
  bool directoryDirty_ = false;
  std::int64_t pointerOffset_ = -1;
  qv::map<qvString::IString, int> directory_;
  qv::vector<ioPackageFileEntry> entries_;
  int freeCount_ = 0;
  ioBufferedStreamOutput output_;
  bool outputOpen_ = false;
};
