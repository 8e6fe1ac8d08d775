#include "Base/OS/qvOSFileTransport.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSLocalLink.h"

#include <algorithm>
#include <array>

namespace qvOS {

using qvString::IString;
using qvUtil::Error;

namespace {

Error notImplemented() { return Error(-1, "This function is not implemented."); }

/// The name of the directory, ready for the name of an entry behind it.
IString directoryName(const FileTransport& directory) {
  IString name = directory.getFullName();
  if (name.isEmpty() || name.at(name.last()) != directory.getSeparator())
    name.append(directory.getSeparator());
  return name;
}

bool isSelfOrParent(const IString& name) { return name == QV_W(".") || name == QV_W(".."); }

/// The name of an entry in `dest`. A listing may mark directories with the separator of its own side at the
/// end.
IString entryName(const FileTransport& source, const FileTransport& dest, const IString& entry) {
  IString name = directoryName(dest) + entry;
  if (source.getSeparator() != dest.getSeparator() && name.at(name.last()) == source.getSeparator())
    name.at(name.last()) = dest.getSeparator();
  return name;
}

Error copyEntry(File& source, File& dest) {
  if (!source.isValid() || !dest.isValid()) return File::getError(FileError::notImplemented);
  switch (copyKind(*source.getTransport())) {
  case CopyKind::link:
    return copyLink(*source.getTransport(), *dest.getTransport());
  case CopyKind::nothing:
    return File::getError(FileError::notFile);
  default:
    return source.copyTo(dest);
  }
}

} // namespace

FileTransport::~FileTransport() = default;

Error FileTransport::getError(int code) { return File::getError(code); }

Error FileTransport::openTemp(int) { return notImplemented(); }

Error FileTransport::makeTempDirectory() { return notImplemented(); }

Error FileTransport::makeDirectoryAll() { return notImplemented(); }

Error FileTransport::copyTo(FileTransport& dest) {
  if (isOpen() || dest.isOpen()) return getError(FileError::isOpen);
  if (isSameFile(*this, dest)) return getError(FileError::noOverwrite);
  if (isDirectory()) {
    if (liesInside(dest, *this)) return getError(FileError::noOverwrite);
    Error made = dest.makeDirectory();
    return made && made.num() != FileError::exists ? made : recreateDirStructure(dest, false);
  }
  if (dest.open(openAsCopy)) return getError(FileError::ioProblem);
  // That the source could not be opened is deliberately not told.
  if (!open(openToCopy)) copyBytesTo(dest);
  return dest.close();
}

/// Copies what is left of this file, and closes it. What goes wrong here is deliberately not told: the
/// outcome of a copy is that of closing its target.
void FileTransport::copyBytesTo(FileTransport& dest) {
  std::array<unsigned char, 4096> block;
  for (bool more = true; more;) {
    std::uint64_t count = 0;
    const Error got = read(block.data(), block.size(), &count);
    if (got && got.num() != FileError::endOfFile) break;
    const Error written = dest.write(block.data(), std::min<std::uint64_t>(count, block.size()), nullptr);
    more = !got && !written && count;
  }
  static_cast<void>(close());
}

Error FileTransport::moveTo(FileTransport& dest) {
  if (isOpen()) return getError(FileError::isOpen);
  if (isSameFile(*this, dest)) return getError(FileError::noOverwrite);
  Error copied = copyTo(dest);
  return copied ? copied : deleteSelf();
}

Error FileTransport::queryOwnerGroup(FileStatus& status) {
  status.setOwner("Unknown");
  status.setGroup("Unknown");
  return Error(-1, "This function still not supported.");
}

Error FileTransport::recursiveDeleteSelf() {
  if (!mayDescend(*this)) return deleteSelf();
  qv::vector<IString> names;
  if (Error error = readDir(names, false)) return error;
  const IString directory = directoryName(*this);
  for (const IString& name : names) {
    if (isSelfOrParent(name)) continue;
    // An entry that stays shows in the result below: the directory is not empty.
    static_cast<void>(File(directory + name).deleteSelf(deleteWithContents));
  }
  return deleteSelf();
}

Error FileTransport::recreateDirStructure(FileTransport& dest, bool deleteSource) {
  if (!isDirectory() || !dest.isDirectory()) return getError(FileError::notDirectory);
  qv::vector<IString> names;
  if (Error error = readDir(names, false)) return error;
  Error first;
  for (const IString& name : names) {
    if (isSelfOrParent(name)) continue;
    File source(directoryName(*this) + name);
    File target(entryName(*this, dest, name));
    Error error = copyEntry(source, target);
    if (!error && deleteSource) error = source.deleteSelf(deleteEntryOnly);
    if (!first) first = error;
  }
  return first;
}

} // namespace qvOS
