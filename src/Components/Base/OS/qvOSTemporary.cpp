#include "Base/OS/qvOSTemporary.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFileStatus.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/OS/qvOSUniqueFile.h"
#include "Base/Platform/qvPlatformPath.h"
#include "Base/Platform/qvPlatformProcess.h"
#include "Base/Platform/qvPlatformTime.h"

#include <cstdint>
#include <cstring>

namespace qvOS {

using qvString::CString;
using qvString::IString;

namespace {

constexpr std::int64_t keptSeconds = 7 * 24 * 60 * 60;

/// A form of scratch file names. In `end` a `#` stands for one digit.
struct ScratchForm {
  const qv::WChar* begin;
  const qv::WChar* end;
  unsigned least; // the least length of the name
};

const ScratchForm scratchForms[] = {
    {QV_W("kel"), QV_W(".unload"), 13}, {QV_W("kelpaTempWire."), QV_W(""), 15}, {QV_W(""), QV_W(".ac$"), 5},
    {QV_W("jam"), QV_W("out#"), 10},    {QV_W("jam"), QV_W("cmd#.bat"), 14},
};

bool matches(qv::WChar c, qv::WChar pattern) {
  return pattern == QV_W('#') ? c >= QV_W('0') && c <= QV_W('9') : c == pattern;
}

/// True if `text` has `pattern` at `position`.
bool hasAt(const IString& text, unsigned position, const IString& pattern) {
  if (position > text.length() || text.length() - position < pattern.length()) return false;
  for (unsigned i = 0; i < pattern.length(); ++i) {
    if (!matches(text.at(position + i), pattern.at(i))) return false;
  }
  return true;
}

/// True if the name that begins at `base` in `path` is that of a scratch file.
bool isScratchFile(const IString& path, unsigned base) {
  for (const ScratchForm& form : scratchForms) {
    const IString end(form.end);
    if (path.length() >= std::uint64_t(base) + form.least && hasAt(path, base, form.begin) &&
        hasAt(path, path.length() - end.length(), end))
      return true;
  }
  return false;
}

bool isOlderThan(std::int64_t limit, const IString& path) {
  FileStatus status;
  return !File::query(path, status) && status.exists() && status.getLastModifiedDate() < limit;
}

/// A name that nothing had a moment ago, made longer by the process number and the suffix.
Filename freshName(const Filename& directory, const IString& prefix, const IString& suffix) {
  Filename unique;
  if (!makeUniqueFile(directory, prefix, &unique)) static_cast<void>(fileDelete(unique));
  IString name = unique.dirname();
  name.append(Filename::separator()).append(unique.baseTrunk());
  IString process;
  process.format("%d", qvPlatform::processId());
  name.append(process);
  if (!suffix.isEmpty()) name.append(QV_W(".")).append(suffix);
  return Filename(name);
}

} // namespace

Filename getTempDirectory() {
  const IString directory = fromNativePath(CString(qvPlatform::temporaryDirectory().c_str()));
  return Filename(directory.isEmpty() ? IString(QV_W("C:\\")) : directory);
}

Filename createTmpFilename(IString suffix, const qv::WChar* prefix) {
  return freshName(getTempDirectory(), prefix ? prefix : QV_W("QVTMP"), suffix);
}

Filename createNewFilenameVariant(Filename directory, const qv::WChar* prefix, IString suffix) {
  return freshName(directory, prefix ? prefix : QV_W("recover"), suffix);
}

int cleanupTempDirectory(const IString& directory) {
  qv::vector<IString> names;
  if (File(directory).readDir(names, true)) names.clear();
  const std::int64_t limit = qvPlatform::secondsNow() - keptSeconds;
  const qv::WChar end = directory.isEmpty() ? QV_W('\0') : directory.at(directory.last());
  const unsigned base = directory.length() + (end == QV_W('/') || end == QV_W('\\') ? 0 : 1);
  int deleted = 0;
  for (const IString& name : names) {
    if (isScratchFile(name, base) && isOlderThan(limit, name) && !fileDelete(Filename(name))) ++deleted;
  }
  return deleted;
}

int cleanupTempDirectory() {
  const Filename directory = getTempDirectory();
  int deleted = cleanupTempDirectory(directory.name());
  if (directory.name() == QV_W("/tmp") || directory.name() == QV_W("\\tmp")) return deleted;
  const IString other(QV_W("/tmp"));
  FileStatus status;
  if (!File::query(other, status) && status.isDirectory()) deleted += cleanupTempDirectory(other);
  return deleted;
}

void cleanupTypeIdName(const char* name, CString& result) {
  constexpr char keyword[] = "class ";
  constexpr std::size_t length = sizeof keyword - 1;
  const bool strips = name && std::strncmp(name, keyword, length) == 0 && name[length];
  result = CString(strips ? name + length : name);
}

const char* cleanupTypeIdName(const char* name) {
  static CString result;
  cleanupTypeIdName(name, result);
  return result.asChar();
}

} // namespace qvOS

char* qvOS_CreateTemporaryFileName(const char* suffix) {
  const qvOS::Filename name = qvOS::createTmpFilename(qvString::IString(suffix), nullptr);
  return name.name().isEmpty() ? nullptr : name.name().copyAsMultibyte();
}

qv::WChar* qvOS_CreateTemporaryFileNameW(const qv::WChar* suffix) {
  const qvOS::Filename name = qvOS::createTmpFilename(qvString::IString(suffix), nullptr);
  return name.name().isEmpty() ? nullptr : name.name().copyAsWChar();
}

char* qvOS_GetTemporaryDirectory() { return qvOS::getTempDirectory().name().copyAsMultibyte(); }

qv::WChar* qvOS_GetTemporaryDirectoryW() { return qvOS::getTempDirectory().name().copyAsWChar(); }
