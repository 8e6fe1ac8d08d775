#include "Base/OS/qvOSLocalLink.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSLocalFileTransport.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformPath.h"

#include <string>

namespace qvOS {

using qvPlatform::FileInfo;
using qvPlatform::FileKind;
using qvString::CString;
using qvString::IString;
using qvUtil::Error;

namespace {

/// Null for a transport of another kind.
const LocalFileTransport* asLocal(const FileTransport& transport) {
  return dynamic_cast<const LocalFileTransport*>(&transport);
}

} // namespace

bool mayDescend(const FileTransport& transport) {
  const LocalFileTransport* local = asLocal(transport);
  FileInfo info;
  return !local || (!local->queryLink(&info) && info.kind != FileKind::link);
}

CopyKind copyKind(const FileTransport& transport) {
  const LocalFileTransport* local = asLocal(transport);
  FileInfo info;
  if (!local || local->queryLink(&info)) return CopyKind::content;
  if (info.kind == FileKind::other) return CopyKind::nothing;
  if (info.kind != FileKind::link) return CopyKind::content;
  return !local->queryFile(&info) && info.kind == FileKind::file ? CopyKind::content : CopyKind::link;
}

Error copyLink(const FileTransport& source, const FileTransport& dest) {
  const LocalFileTransport* from = asLocal(source);
  const LocalFileTransport* to = asLocal(dest);
  if (!from || !to) return File::getError(FileError::notImplemented);
  FileInfo info;
  if (!to->queryLink(&info) && info.kind == FileKind::link)
    static_cast<void>(qvPlatform::deleteFile(to->nativeName().asChar()));
  return LocalFileTransport::creationError(
      qvPlatform::copyLink(from->nativeName().asChar(), to->nativeName().asChar()));
}

bool isSameFile(const FileTransport& a, const FileTransport& b) {
  if (a.getFullName() == b.getFullName()) return true;
  const LocalFileTransport* first = asLocal(a);
  const LocalFileTransport* second = asLocal(b);
  FileInfo one;
  FileInfo other;
  return first && second && !first->queryFile(&one) && !second->queryFile(&other) && one.isSameFile(other);
}

bool liesInside(const FileTransport& dest, const FileTransport& source) {
  const LocalFileTransport* outer = asLocal(source);
  if (!outer || !asLocal(dest)) return false;
  FileInfo directory;
  std::string name;
  const IString parent = Filename(dest.getFullName()).dirname();
  if (outer->queryFile(&directory) ||
      qvPlatform::realPath(parent.isEmpty() ? "." : toNativePath(parent).asChar(), &name))
    return false;
  Filename above(fromNativePath(CString(name.c_str())));
  for (;;) {
    FileInfo info;
    if (!qvPlatform::queryFile(toNativePath(above).asChar(), &info) && info.isSameFile(directory))
      return true;
    const IString next = above.dirname();
    if (next.length() >= above.name().length()) return false;
    above = next;
  }
}

} // namespace qvOS
