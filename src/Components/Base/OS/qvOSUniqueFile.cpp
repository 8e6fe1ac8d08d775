#include "Base/OS/qvOSUniqueFile.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformError.h"
#include "Base/Platform/qvPlatformFile.h"
#include "Base/Platform/qvPlatformRandom.h"

namespace qvOS {

using qvPlatform::ErrorKind;
using qvString::CString;
using qvString::IString;

namespace {

constexpr int mostAttempts = 100;

/// At most three characters, and no half of a surrogate pair at the end.
IString shortPrefix(const IString& prefix) {
  IString start = prefix.substr(0, 3);
  const bool cutsPair = start.length() == 3 && (start.at(2) & 0xFC00) == 0xD800;
  return cutsPair ? start.substr(0, 2) : start;
}

} // namespace

int makeUniqueFile(const Filename& directory, const IString& prefix, Filename* made) {
  std::string chosen;
  const int refused = qvPlatform::makeNamedBySystem(toNativePath(directory).asChar(),
                                                    toNativePath(shortPrefix(prefix)).asChar(), &chosen);
  if (!refused) *made = Filename(fromNativePath(CString(chosen.c_str())));
  if (qvPlatform::errorKind(refused) != ErrorKind::tooLong) return refused;
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    IString number;
    number.format("%08X.tmp", static_cast<unsigned>(qvPlatform::randomName()));
    const Filename name(directory.name(), shortPrefix(prefix) + number);
    qvPlatform::FileHandle file = qvPlatform::noFile;
    const unsigned flags = qvPlatform::openWrite | qvPlatform::openCreate | qvPlatform::openExclusive;
    const int failed = qvPlatform::openFile(toNativePath(name).asChar(), flags, &file);
    if (failed && qvPlatform::errorKind(failed) != ErrorKind::exists) return failed;
    if (failed) continue;
    qvPlatform::closeFile(file);
    *made = name;
    return 0;
  }
  return qvPlatform::errorNumber(ErrorKind::exists);
}

} // namespace qvOS
