#include "Base/OS/qvOSFile.h"

#include "Base/OS/qvOSFileFactory.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSFilename.h"

#include <iterator>

namespace qvOS {

using qvString::IString;
using qvUtil::Error;

namespace {

const char* const errorTexts[] = {
    "",
    "Not Implemented",
    "File Exists",
    "End Of File",
    "An I/O problem has occurred",
    "No write permission",
    "No read permission",
    "No Overwrite permission",
    "File is not open",
    "File is open",
    "Resource is not a directory",
    "Resource is not a file",
    "The path is too long",
    "The directory is not empty",
    "ErrSyscall",
    "The URL is invalid",
    "Permission Denied",
    "Authentication Failed",
    "File does not exist",
    "Cannot become the parent of a root directory",
};
static_assert(std::size(errorTexts) == FileError::parentOfRoot + 1);

/// Runs an operation that needs the file closed.
template <class Operation>
Error whenClosed(FileTransport* transport, Operation operation) {
  if (!transport) return File::getError(FileError::notImplemented);
  if (transport->isOpen()) return File::getError(FileError::isOpen);
  return operation(*transport);
}

} // namespace

static_assert(sizeof(File) == 2 * sizeof(void*));

Error File::getError(int code) {
  const bool known = code >= 0 && code < static_cast<int>(std::size(errorTexts));
  return Error(code, known ? errorTexts[code] : nullptr);
}

File::File(const IString& name) : transport_(FileFactory::getFileFactory()->createTransport(name)) {}

File::File(FileTransport* transport) : transport_(transport) {}

File::~File() { delete transport_; }

Error File::read(void* buffer, std::uint64_t size, std::uint64_t* count) {
  if (transport_) return transport_->read(buffer, size, count);
  if (count) *count = 0;
  return getError(FileError::notImplemented);
}

Error File::write(const void* buffer, std::uint64_t size, std::uint64_t* count) {
  if (transport_) return transport_->write(buffer, size, count);
  if (count) *count = 0;
  return getError(FileError::notImplemented);
}

bool File::isValid() const { return transport_ != nullptr; }

bool File::isDirectory() const { return transport_ && transport_->isDirectory(); }

bool File::isOpen() const { return transport_ && transport_->isOpen(); }

IString File::getFullName() const { return transport_ ? transport_->getFullName() : IString(); }

IString File::getNameTitle() const { return transport_ ? transport_->getNameTitle() : IString(); }

IString File::getNameBase() const { return transport_ ? transport_->getNameBase() : IString(); }

qv::WChar File::getSeparator() const { return transport_ ? transport_->getSeparator() : qv::WChar(0); }

IString File::transportId() const { return transport_ ? transport_->transportId() : IString(); }

FileTransport* File::getTransport() { return transport_; }

const FileTransport* File::getTransport() const { return transport_; }

Error File::open(int flags) {
  return whenClosed(transport_, [&](FileTransport& transport) { return transport.open(flags); });
}

Error File::openTemp(int flags) {
  return whenClosed(transport_, [&](FileTransport& transport) { return transport.openTemp(flags); });
}

Error File::close() {
  if (!transport_) return getError(FileError::notImplemented);
  return transport_->isOpen() ? transport_->close() : getError(FileError::notOpen);
}

Error File::readDir(qv::vector<IString>& names, bool fullPath) {
  if (!transport_) return getError(FileError::notImplemented);
  if (!transport_->isDirectory()) return getError(FileError::notDirectory);
  names.clear();
  return transport_->readDir(names, fullPath);
}

Error File::copyTo(File& dest) {
  return whenClosed(transport_, [&](FileTransport& transport) {
    return dest.transport_ ? transport.copyTo(*dest.transport_) : getError(FileError::notImplemented);
  });
}

Error File::moveTo(File& dest) {
  return whenClosed(transport_, [&](FileTransport& transport) {
    return dest.transport_ ? transport.moveTo(*dest.transport_) : getError(FileError::notImplemented);
  });
}

Error File::deleteSelf(int flags) {
  return whenClosed(transport_, [&](FileTransport& transport) {
    const bool withContents = !(flags & FileTransport::deleteEntryOnly) && transport.isDirectory();
    return withContents ? transport.recursiveDeleteSelf() : transport.deleteSelf();
  });
}

Error File::makeDirectory() {
  return whenClosed(transport_, [](FileTransport& transport) { return transport.makeDirectory(); });
}

Error File::makeTempDirectory() {
  return whenClosed(transport_, [](FileTransport& transport) { return transport.makeTempDirectory(); });
}

Error File::makeDirectoryAll() {
  return whenClosed(transport_, [](FileTransport& transport) { return transport.makeDirectoryAll(); });
}

Error File::query(FileStatus& status, bool ownerGroup) {
  status.reset();
  if (!transport_) return getError(FileError::notImplemented);
  Error error = transport_->query(status);
  return !error && ownerGroup ? transport_->queryOwnerGroup(status) : error;
}

Error File::query(const IString& name, FileStatus& status) {
  File file(name);
  return file.query(status, false);
}

Error File::query(const Filename& name, FileStatus& status) { return query(name.name(), status); }

} // namespace qvOS
