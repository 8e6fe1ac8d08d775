#include "Base/IO/ioPackageFile.h"

#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioHeader.h"
#include "Base/IO/ioPackageIO.h"
#include "Base/IO/ioPacketType.h"
#include "Base/IO/ioReadContext.h"
#include "Base/IO/ioWriteContext.h"
#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSMemoryIOStream.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/OS/qvOSTemporary.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/String/qvStringInt64.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

using qvString::IString;
using qvUtil::Error;

namespace {

// The bytes at the front of every package:
//   0   1   0x8F, or "." in packages that were made by hand
//   1   56  the two magic lines
//   57  2   the format version
//   59  2   the end of the header; a reader passes over text before the "@"
//   61  24  the directory's offset in decimal, padded with blanks, and a newline; -1 before the first
//   directory
constexpr char firstByte = '\x8F';
constexpr char alternativeFirstByte = '.';
constexpr char magic[] = "KestrovaPortablePackageFile\neliFegakcaPelbatroPavortseK\n";
constexpr int magicSize = sizeof magic - 1;
constexpr char version[] = "1\n";
constexpr char endOfHeader[] = "@\n";
constexpr int pointerSize = 24;
constexpr int blockSize = 4096;
static_assert(1 + magicSize == 57);

/// An entry's bytes are counted in 32 bits.
constexpr std::int64_t largestEntry = std::numeric_limits<std::int32_t>::max();
/// A file of at most this size is compressed in memory, and a larger one in a temporary file.
constexpr std::int64_t largestInMemory = 4 << 20;

template <class... Texts>
Error failure(int code, const qv::WChar* format, const Texts&... texts) {
  return Error(code, format, texts.asWChar()...);
}

Error notOpened() { return Error(3, "The package file has not been opened yet."); }

/// A stream that closes itself on every way out.
template <class Stream>
class Closing : public Stream {
public:
  ~Closing() override { this->close(); }
};

using Input = Closing<ioBufferedStreamInput>;
using Output = Closing<ioBufferedStreamOutput>;

/// Passes over the header of a packet file as its reader does, to make sure that it ends before the data
/// does: the header's own reader waits for its end.
bool headerIsComplete(ioBufferedStreamInput& input) {
  constexpr int markerSize = 3;
  constexpr int numbers = 11;
  for (int i = 0; i < markerSize; ++i) (void)input.readChar();
  for (int i = 0; i < numbers; ++i) (void)input.readInt();
  while (input.good())
    if (input.readChar() == '@') break;
  return input.good();
}

/// True where a packet file of the method of directories begins at `offset`. Other methods are damage: the
/// reader of one stops the program at a wrong tag. The stream stands at `offset` afterwards.
bool directoryBegins(ioBufferedStreamInput& input, std::int64_t offset) {
  if (!headerIsComplete(input) || !input.seek(offset)) return false;
  ioHeader header;
  return header.readHeader(input) && header.method == ioWriteBinary && input.seek(offset);
}

enum class CopyResult { done, readFailed, writeFailed };

/// Copies until the input ends or one side fails.
CopyResult copyToEnd(ioBufferedStreamInput& input, ioBufferedStreamOutput& output, std::int64_t& total) {
  char block[blockSize];
  total = 0;
  while (input.good() && output.good()) {
    const int count = input.readData(block, blockSize);
    if (count <= 0) break;
    output.writeData(block, count);
    total += count;
  }
  if (!output.good()) return CopyResult::writeFailed;
  const ioStreamStatus status = input.getStatus();
  const bool ended = status == ioStreamAtEnd || status == ioStreamCompressedEnd;
  return ended ? CopyResult::done : CopyResult::readFailed;
}

/// Compresses `source` into `output`, which is closed.
Error compressFile(const IString& source, std::int64_t sourceSize, ioBufferedStreamOutput& output) {
  Input input;
  input.openFile(source);
  if (!input.good()) return failure(9, QV_W("Error reading file: %S"), source);
  output.compress(true);
  output.checksum(true);
  std::int64_t total = 0;
  CopyResult result = copyToEnd(input, output, total);
  output.close();
  if (!output.good()) result = CopyResult::writeFailed;
  if (result == CopyResult::writeFailed) return failure(10, QV_W("Error compressing file: %S"), source);
  if (result == CopyResult::readFailed) return failure(9, QV_W("Error reading file: %S"), source);
  if (total != sourceSize) return failure(8, QV_W("While compressing file it changed size: %S"), source);
  return Error();
}

/// A file that is removed when it goes out of scope.
class TemporaryFile {
public:
  TemporaryFile() : name_(qvOS::createTmpFilename(IString("tmp"), nullptr).name()) {}
  ~TemporaryFile() {
    if (qvOS::doesFileExist(qvOS::Filename(name_))) (void)qvOS::fileDelete(qvOS::Filename(name_));
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  [[nodiscard]] const IString& name() const noexcept { return name_; }

private:
  IString name_;
};

Error createDirectory(const IString& name) {
  qvOS::File directory(name);
  const Error error = directory.makeDirectoryAll();
  return error ? Error(5, "%s", error.message()) : Error();
}

/// True where both names lead to one file that exists.
bool sameFile(const IString& a, const IString& b) {
  qvPlatform::FileInfo infoA;
  qvPlatform::FileInfo infoB;
  return !qvPlatform::queryFile(qvOS::toNativePath(a).asChar(), &infoA) &&
         !qvPlatform::queryFile(qvOS::toNativePath(b).asChar(), &infoB) && infoA.isSameFile(infoB);
}

/// True for a name that would lead out of the directory that it is joined to. A hostile package may hold one.
bool leavesDirectory(const IString& name) {
  const std::basic_string_view<qv::WChar> text = name.view();
  if (text.find_first_of(QV_W("/\\")) == 0 || (text.size() > 1 && text[1] == ':')) return true;
  for (std::size_t begin = 0, end = 0; end < text.size(); begin = end + 1) {
    end = std::min(text.find_first_of(QV_W("/\\"), begin), text.size());
    if (text.substr(begin, end - begin) == QV_W("..")) return true;
  }
  return false;
}

} // namespace

// ioPackageFileEntry

ioPackageFileEntry::ioPackageFileEntry() = default;

ioPackageFileEntry::ioPackageFileEntry(ioPackageFile* package, const IString& name, std::int64_t offset,
                                       std::int64_t size, std::int64_t timeStamp, bool compressed)
    : package_(package),
      name_(name),
      offset_(offset),
      size_(size),
      timeStamp_(timeStamp),
      compressed_(compressed) {}

const IString& ioPackageFileEntry::getPackageName() const {
  static const IString none;
  return package_ ? package_->getPackageFileName() : none;
}

// The records

ioPackageFile::ioPackageFile() { entries_.append(ioPackageFileEntry(this, IString("."), 0, -1, -1, false)); }

ioPackageFile::~ioPackageFile() { closePackageForOutput(); }

int ioPackageFile::size() const { return static_cast<int>(directory_.size()); }

const ioPackageFileEntry* ioPackageFile::getEntry(int index) const {
  if (index < 0 || index >= static_cast<int>(entries_.size()) || entries_[index].isFree()) return nullptr;
  return &entries_[index];
}

const ioPackageFileEntry* ioPackageFile::getEntry(const IString& name) const {
  const auto found = directory_.find(name);
  if (found == directory_.end()) return nullptr;
  const ioPackageFileEntry& entry = entries_[found->second];
  return entry.name_ == name ? &entry : nullptr;
}

/// Frees the region of the entry of that name. An index that a failed copy left behind leads to a record that
/// is free or belongs to another entry, and changes nothing.
void ioPackageFile::freeNamedEntry(const IString& name) {
  if (getEntry(name)) freeEntry(directory_[name]);
}

void ioPackageFile::appendEntry(const IString& name, std::int64_t offset, std::int64_t size,
                                std::int64_t timeStamp, bool compressed) {
  if (name.isEmpty())
    ++freeCount_;
  else if (name != IString("."))
    directory_[name] = static_cast<int>(entries_.size());
  entries_.append(ioPackageFileEntry(this, name, offset, size, timeStamp, compressed));
  directoryDirty_ = true;
}

int ioPackageFile::createEntry(std::int64_t size) {
  const int count = static_cast<int>(entries_.size());
  for (int i = 0; freeCount_ > 0 && i < count; ++i) {
    if (!entries_[i].isFree() || entries_[i].size_ < size) continue;
    if (entries_[i].size_ > size) splitEntry(i, size);
    // An exact fit leaves the directory unmarked, so `update` alone does not write a name that only filled a
    // hole.
    --freeCount_;
    return i;
  }
  const int last = count - 1;
  const std::int64_t offset = entries_[last].offset_;
  entries_.insert(entries_.begin() + last, ioPackageFileEntry(this, IString(), offset, size, -1, false));
  entries_[last + 1].offset_ += size;
  directoryDirty_ = true;
  return last;
}

void ioPackageFile::splitEntry(int index, std::int64_t size) {
  const std::int64_t offset = entries_[index].offset_;
  entries_.insert(entries_.begin() + index, ioPackageFileEntry(this, IString(), offset, size, -1, false));
  entries_[index + 1].offset_ += size;
  entries_[index + 1].size_ -= size;
  ++freeCount_;
  shiftIndexes(index, 1);
  directoryDirty_ = true;
}

void ioPackageFile::freeEntry(int index) {
  entries_[index].name_ = IString();
  ++freeCount_;
  if (index + 1 < static_cast<int>(entries_.size()) && entries_[index + 1].isFree()) joinEntries(index);
  if (index > 0 && entries_[index - 1].isFree()) joinEntries(index - 1);
  directoryDirty_ = true;
}

void ioPackageFile::joinEntries(int index) {
  entries_[index].size_ += entries_[index + 1].size_;
  entries_.erase(entries_.begin() + index + 1);
  --freeCount_;
  shiftIndexes(index + 1, -1);
  directoryDirty_ = true;
}

void ioPackageFile::shiftIndexes(int first, int by) {
  for (auto& [name, index] : directory_)
    if (index >= first) index += by;
}

void ioPackageFile::updateDirectoryEntry(std::int64_t offset) { entries_.back().offset_ = offset; }

void ioPackageFile::swap(ioPackageFile& other) {
  closePackageForOutput();
  other.closePackageForOutput();
  packageName_.swap(other.packageName_);
  std::swap(writable_, other.writable_);
  std::swap(directoryDirty_, other.directoryDirty_);
  std::swap(pointerOffset_, other.pointerOffset_);
  directory_.swap(other.directory_);
  entries_.swap(other.entries_);
  std::swap(freeCount_, other.freeCount_);
  for (ioPackageFileEntry& entry : entries_) entry.package_ = this;
  for (ioPackageFileEntry& entry : other.entries_) entry.package_ = &other;
}

// Opening and the header

Error ioPackageFile::open(const IString& packageName) {
  const IString name = packageName; // it may be this package's own, which is emptied here
  ioPackageFile fresh;
  swap(fresh);
  qvOS::FileStatus status;
  if (qvOS::File::query(name, status)) return failure(2, QV_W("Can not create file: %S"), name);
  packageName_ = name;
  Error error = status.exists() ? readPackageHeader(name) : createPackage(name);
  if (!error && status.exists()) error = readDirectory();
  if (error) {
    packageName_ = IString();
    return error;
  }
  (void)qvOS::File::query(name, status);
  writable_ = status.isWritable();
  return error;
}

Error ioPackageFile::createPackage(const IString& name) {
  Output created;
  created.openFile(name);
  created.close();
  return created.good() ? writePackageHeader() : failure(2, QV_W("Can not create file: %S"), name);
}

void ioPackageFile::close() { closePackageForOutput(); }

Error ioPackageFile::openPackageForOutput() {
  // A stream that failed keeps its status, so it is opened anew.
  if (outputOpen_ && !output_.good()) closePackageForOutput();
  if (outputOpen_) return Error();
  output_.truncateOnOpen(false);
  output_.openFile(packageName_);
  output_.flush(); // shows whether the opening failed
  outputOpen_ = true;
  if (output_.good()) return Error();
  closePackageForOutput();
  return failure(15, QV_W("Could not open package for write: %S"), packageName_);
}

void ioPackageFile::closePackageForOutput() {
  if (!outputOpen_) return;
  output_.close();
  outputOpen_ = false;
}

Error ioPackageFile::writePackageHeader() {
  if (Error error = openPackageForOutput()) return error;
  output_.writeData(&firstByte, 1);
  output_.writeString(magic);
  output_.writeString(version);
  output_.writeString(endOfHeader);
  pointerOffset_ = output_.tell();
  output_.flush();
  writeDirectoryPointer(-1);
  updateDirectoryEntry(output_.tell());
  if (output_.good()) return Error();
  return failure(2, QV_W("Can not create file: %S"), packageName_);
}

void ioPackageFile::writeDirectoryPointer(std::int64_t offset) {
  if (!output_.seek(pointerOffset_)) return;
  output_.printf("%-23I64d\n", offset);
  output_.flush();
}

Error ioPackageFile::readPackageHeader(const IString& name) {
  Input input;
  input.openFile(name);
  if (!input.good()) return failure(7, QV_W("Could not read the package file: %S"), name);
  const Error noPackage = failure(17, QV_W("The file is not a package file: %S"), name);

  char front[1 + magicSize];
  if (input.readData(front, sizeof front) != static_cast<int>(sizeof front)) return noPackage;
  if (front[0] != firstByte && front[0] != alternativeFirstByte) return noPackage;
  if (std::memcmp(front + 1, magic, magicSize) != 0) return noPackage;
  char versionRead[2];
  if (input.readData(versionRead, 2) != 2 || std::memcmp(versionRead, version, 2) != 0) return noPackage;

  std::int64_t headerSize = sizeof front + sizeof versionRead;
  char c = 0;
  do {
    c = input.readChar();
    ++headerSize;
  } while (input.good() && c != '@');
  (void)input.readChar();
  ++headerSize;

  char pointer[pointerSize + 1] = {};
  if (input.readData(pointer, pointerSize) != pointerSize) return noPackage;
  const std::int64_t offset = asciiToInt64(pointer);
  if (offset <= headerSize || offset > ioBufferedStream::fileSize(name)) return noPackage;
  updateDirectoryEntry(offset);
  pointerOffset_ = headerSize;
  return Error();
}

bool ioPackageFile::isFilePackageFile(const IString& name) {
  if (name.isEmpty()) return false;
  ioPackageFile package;
  return !package.readPackageHeader(name);
}

// The directory

Error ioPackageFile::readDirectory() {
  const std::int64_t offset = entries_.back().offset_;
  if (offset <= 0) return Error();
  closePackageForOutput();
  Error error = readDirectoryPackets(offset);
  if (!error && !directoryIsSound(offset))
    error = failure(17, QV_W("Error reading directory: %S"), packageName_);
  if (error) {
    ioPackageFile empty;
    swap(empty);
    return error;
  }
  directoryDirty_ = false;
  return error;
}

Error ioPackageFile::readDirectoryPackets(std::int64_t offset) {
  Input input;
  input.openFile(packageName_);
  if (input.good()) input.seek(offset);
  if (!input.good()) return failure(17, QV_W("Can not open directory: %S"), packageName_);
  const Error damaged = failure(17, QV_W("Error reading directory: %S"), packageName_);
  if (!directoryBegins(input, offset)) return damaged;

  ioPackageIO::PackageRegistry registry(true);
  const std::unique_ptr<ioReadContext> context(ioReadContextAlloc(input, &registry));
  if (!context) return damaged;
  entries_.clear();
  directory_.clear();
  freeCount_ = 0;
  ioPackageIO::PackageReadContext client(context.get(), *this);
  context->readFile(client);
  const bool good = context->good() && !client.damaged();
  return good ? Error() : damaged;
}

/// Whoever changes a package relies on records that lie in order behind the header, do not overlap, and end
/// with the directory's.
bool ioPackageFile::directoryIsSound(std::int64_t offset) const {
  const int last = static_cast<int>(entries_.size()) - 1;
  if (last < 0 || entries_[last].name_ != IString(".") || entries_[last].offset_ != offset) return false;
  std::int64_t end = pointerOffset_ + pointerSize;
  if (offset < end) return false;
  for (int i = 0; i < last; ++i) {
    const ioPackageFileEntry& entry = entries_[i];
    if (entry.name_ == IString(".")) return false;
    if (entry.size_ < 0 || entry.offset_ < end || entry.offset_ > offset - entry.size_) return false;
    end = entry.offset_ + entry.size_;
  }
  return true;
}

Error ioPackageFile::update() {
  if (packageName_.isEmpty()) return notOpened();
  if (!writable_) return Error(4, "The package file is not writable.");
  return directoryDirty_ ? writeDirectory() : Error();
}

Error ioPackageFile::writeDirectory() {
  const std::int64_t offset = entries_.back().offset_;
  if (Error error = openPackageForOutput()) return error;
  (void)output_.seek(offset); // a failure shows in the status
  const Error error = writeDirectoryPackets();
  // The pointer is written after a failure too.
  writeDirectoryPointer(offset);
  if (error || output_.good()) return error;
  return failure(10, QV_W("Error writing directory: %S"), packageName_);
}

Error ioPackageFile::writeDirectoryPackets() {
  ioPackageIO::PackageRegistry registry(false);
  const std::unique_ptr<ioWriteContext> context(ioWriteContextAlloc(output_, ioWriteBinary, &registry));
  if (!context) return Error(1, "Internal error.");
  context->startFile();
  for (const ioPackageFileEntry& entry : entries_) ioPackageIO::writeEntry(*context, entry);
  context->endFile();
  output_.flush();
  if (context->good() && output_.good()) return Error();
  return failure(10, QV_W("Error writing directory: %S"), packageName_);
}

// Changing the package

void ioPackageFile::cleanupName(IString& name) {
  name.replace(IString("\\"), IString("/"));
  if (name.length() > 1 && name[1] == ':') name.erase(0, 2);
  for (;;) {
    if (name.length() > 2 && name[0] == '.' && name[1] == '/')
      name.erase(0, 2);
    else if (name.length() > 3 && name[0] == '.' && name[1] == '.' && name[2] == '/')
      name.erase(0, 3);
    else if (!name.isEmpty() && name[0] == '/')
      name.erase(0, 1);
    else
      return;
  }
}

Error ioPackageFile::verifyChange() const {
  if (packageName_.isEmpty()) return notOpened();
  if (!writable_) return Error(4, "This package file can not be modified as it is not writable.");
  return Error();
}

Error ioPackageFile::verifyAddEntry(const IString& name) const {
  if (Error error = verifyChange()) return error;
  if (qvOS::isWindowsReservedDeviceName(qvOS::Filename(name)))
    return failure(11, QV_W("File is using a windows reserved device name.  Please choose another name: %S"),
                   name);
  if (name == IString(".") || name == IString(".."))
    return failure(12, QV_W("File is using a name which is not allowed: %S"), name);
  return Error();
}

Error ioPackageFile::addEntry(const IString& fileName, const IString& entryName, bool compress) {
  IString name = entryName;
  cleanupName(name);
  if (Error error = verifyAddEntry(name)) return error;
  if (name.isEmpty()) return Error(11, "The name can not be empty.");
  qvOS::FileStatus status;
  const Error queryError = qvOS::File::query(fileName, status);
  if (!queryError && !status.exists()) return failure(6, QV_W("File does not exist: %S\n"), fileName);
  if (queryError || !status.isReadable() || status.getSize() > largestEntry)
    return failure(7, QV_W("Could not read file: %S\n"), fileName);

  const std::int64_t size = status.getSize();
  const std::int64_t timeStamp = status.getLastModifiedDate();
  if (!compress || size == 0) return copyFileIntoPackage(fileName, size, timeStamp, false, name);
  return size <= largestInMemory ? addThroughMemory(fileName, size, timeStamp, name)
                                 : addThroughTemporary(fileName, size, timeStamp, name);
}

Error ioPackageFile::addThroughMemory(const IString& fileName, std::int64_t size, std::int64_t timeStamp,
                                      const IString& name) {
  qvOS::MemoryIOStream compressed;
  Output output;
  output.openIOStream(&compressed);
  if (Error error = compressFile(fileName, size, output)) return error;
  const auto compressedSize = static_cast<std::int64_t>(compressed.size());
  if (compressedSize >= size) return copyFileIntoPackage(fileName, size, timeStamp, false, name);
  compressed.seek(0);
  Input input;
  input.openIOStream(&compressed);
  return copyStreamIntoPackage(input, compressedSize, timeStamp, true, name);
}

Error ioPackageFile::addThroughTemporary(const IString& fileName, std::int64_t size, std::int64_t timeStamp,
                                         const IString& name) {
  const TemporaryFile compressed;
  Output output;
  output.openFile(compressed.name());
  if (Error error = compressFile(fileName, size, output)) return error;
  const std::int64_t compressedSize = ioBufferedStream::fileSize(compressed.name());
  if (compressedSize < 0 || compressedSize >= size)
    return copyFileIntoPackage(fileName, size, timeStamp, false, name);
  return copyFileIntoPackage(compressed.name(), compressedSize, timeStamp, true, name);
}

Error ioPackageFile::addEntry(const ioPackageFileEntry* entry, const IString& entryName) {
  IString name = entryName;
  cleanupName(name);
  if (Error error = verifyAddEntry(name)) return error;
  if (!entry) return Error(7, "The given package file entry is NULL.");
  if (entry->getPackage() == this) return Error(15, "The source entry can not be in the package.");
  return copyEntryIntoPackage(*entry, name);
}

Error ioPackageFile::copyFileIntoPackage(const IString& fileName, std::int64_t size, std::int64_t timeStamp,
                                         bool compressed, const IString& name) {
  Input input;
  input.openFile(fileName);
  if (!input.good()) return failure(7, QV_W("Could not read file: %S\n"), fileName);
  return copyStreamIntoPackage(input, size, timeStamp, compressed, name);
}

Error ioPackageFile::copyEntryIntoPackage(const ioPackageFileEntry& entry, const IString& name) {
  if (name.isEmpty()) return Error(11, "The name can not be empty.");
  if (directory_.find(name) != directory_.end())
    return failure(14, QV_W("The entry is already present in the package: %S"), name);
  Input input;
  input.openPackageFileEntry(&entry);
  const bool readable = input.good() || input.getStatus() == ioStreamAtEnd;
  if (!readable || entry.getSize() < 0 || entry.getSize() > largestEntry)
    return failure(7, QV_W("Could not read package file entry: %S\n"), entry.getName());
  return copyStreamIntoPackage(input, entry.getSize(), entry.getTimeStamp(), entry.getCompressed(), name);
}

Error ioPackageFile::copyStreamIntoPackage(ioBufferedStreamInput& input, std::int64_t size,
                                           std::int64_t timeStamp, bool compressed, const IString& name) {
  if (Error error = openPackageForOutput()) return error;
  freeNamedEntry(name);
  const int index = createEntry(size);
  if (Error error = copyBytes(input, entries_[index].offset_, size, name)) {
    // The old entry of this name is gone by now, and its index in the directory stays behind.
    freeEntry(index);
    return error;
  }
  entries_[index].name_ = name;
  entries_[index].timeStamp_ = timeStamp;
  entries_[index].compressed_ = compressed;
  directory_[name] = index;
  return Error();
}

Error ioPackageFile::copyBytes(ioBufferedStreamInput& input, std::int64_t offset, std::int64_t size,
                               const IString& name) {
  if (!output_.seek(offset)) return failure(10, QV_W("Error writing entry: %S"), name);
  char block[blockSize];
  std::int64_t total = 0;
  while (input.good() && output_.good() && total < size) {
    const int count =
        input.readData(block, static_cast<int>(std::min<std::int64_t>(blockSize, size - total)));
    if (count <= 0) break;
    output_.writeData(block, count);
    total += count;
  }
  // One more byte tells whether the input really ends here.
  if (input.good()) (void)input.readChar();
  output_.flush();
  if (!input.good() && input.getStatus() != ioStreamAtEnd)
    return failure(9, QV_W("Error reading file for entry: %S"), name);
  // So does a copy that stopped before the input's end because the disk was full.
  if (input.good() || total != size)
    return failure(16, QV_W("While writing file for entry it changed size: %S"), name);
  if (!output_.good()) return failure(10, QV_W("Error writing entry: %S"), name);
  return Error();
}

Error ioPackageFile::deleteEntry(const IString& name) {
  if (Error error = verifyChange()) return error;
  const auto found = directory_.find(name);
  if (found == directory_.end())
    return failure(13, QV_W("Can not delete named entry as it does not exist: %S"), name);
  freeNamedEntry(name);
  directory_.erase(found);
  return Error();
}

Error ioPackageFile::write(const IString& name) {
  if (sameFile(name, packageName_)) return Error(4, "The package file is not writable.");
  const qvOS::Filename target(name);
  if (qvOS::doesFileExist(target) && qvOS::fileDelete(target))
    return Error(4, "The pacakge is not writable.");
  ioPackageFile copy;
  if (Error error = copy.open(name)) return error;
  if (!copy.writable_) return Error(4, "The package file is not writable.");
  for (const auto& named : directory_)
    if (const ioPackageFileEntry* entry = getEntry(named.first))
      if (Error error = copy.copyEntryIntoPackage(*entry, named.first)) return error;
  if (Error error = copy.update()) return error;
  swap(copy);
  return Error();
}

// Getting entries out

Error ioPackageFile::extractEntry(const ioPackageFileEntry* entry, const IString& fileName) {
  if (!entry) return Error();
  const IString folder = qvOS::Filename(fileName).dirname();
  if (!folder.isEmpty())
    if (Error error = createDirectory(folder)) return error;

  closePackageForOutput();
  Input input;
  input.openPackageFileEntry(entry);
  if (!input.good() && input.getStatus() != ioStreamAtEnd)
    return failure(7, QV_W("Could not read package file entry: %S\n"), entry->getName());
  if (entry->getCompressed()) {
    input.compress(true);
    input.checksum(true);
  }
  Output output;
  output.openFile(fileName);
  output.flush(); // shows whether the opening failed
  if (!output.good()) {
    output.close();
    return failure(2, QV_W("Can not create file: %S"), fileName);
  }
  std::int64_t total = 0;
  CopyResult result = copyToEnd(input, output, total);
  output.close();
  if (!output.good()) result = CopyResult::writeFailed;
  if (result == CopyResult::writeFailed) return failure(10, QV_W("Error writing file: %S"), fileName);
  if (result == CopyResult::readFailed)
    return failure(9, QV_W("Error reading package file entry: %S"), entry->getName());
  return Error();
}

Error ioPackageFile::expand(const IString& directory) {
  if (Error error = createDirectory(directory)) return error;
  for (const auto& named : directory_) {
    const IString& name = named.first;
    if (leavesDirectory(name))
      return failure(12, QV_W("File is using a name which is not allowed: %S"), name);
    if (Error error = extractEntry(getEntry(name), qvOS::Filename::join(directory, name))) return error;
  }
  return Error();
}

// The directory's packets

namespace ioPackageIO {

void PackageRegistry::registerAllTypes() {
  // A directory holds no string packets; the ordinary type would leave their text to a client that is not
  // there.
  if (forReading_)
    supportedType(new ioReadPacketByFunction("packetFile_string", &PackageReadContext::readDamage));
  supportedType(new ioReadPacketByFunction("package.entry", &PackageReadContext::readEntry));
}

void PackageReadContext::readEntry(ioClientReadContext& client) {
  auto& self = static_cast<PackageReadContext&>(client);
  ioReadContext& context = client.getContext();
  if (context.getPacketReference() != 0) return readDamage(client);
  const char* text = context.fetchCString();
  const IString name(text ? text : "", qvString::UTF8Encoding, nullptr);
  const std::int64_t offset = context.fetchInt64();
  const std::int64_t size = context.fetchInt64();
  const std::int64_t timeStamp = context.fetchInt64();
  self.package_.appendEntry(name, offset, size, timeStamp, context.fetchBool());
}

void PackageReadContext::readDamage(ioClientReadContext& client) {
  static_cast<PackageReadContext&>(client).damaged_ = true;
  client.getContext().invalidPacket();
}

void writeEntry(ioWriteContext& context, const ioPackageFileEntry& entry) {
  context.startPacket("package.entry", nullptr);
  context.writeCString(entry.getName().asUTF8());
  context.writeInt64(entry.getOffset());
  context.writeInt64(entry.getSize());
  context.writeInt64(entry.getTimeStamp());
  context.writeBool(entry.getCompressed());
  context.endPacket();
}

} // namespace ioPackageIO
