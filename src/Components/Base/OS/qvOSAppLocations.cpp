#include "Base/OS/qvOSAppLocations.h"

#include "Base/OS/qvOSFile.h"
#include "Base/OS/qvOSFileStatus.h"

namespace qvOS {

using qvString::IString;

namespace {

bool isDirectory(const IString& name) {
  FileStatus status;
  return !File::query(name, status) && status.isDirectory();
}

} // namespace

IString appNameOf(const Filename& executable) {
  IString name = executable.basename();
  if (executable.baseSuffix() != IString(QV_W("exe"))) name.append(QV_W(".exe"));
  return name;
}

void appendPluginDirectories(const IString& baseLocation, const IString& appLocation,
                             const IString& runtimeDirectory, qv::vector<IString>& directories) {
  const IString plugins(QV_W("plug-ins"));
  const IString bin(QV_W("bin"));
  const auto consider = [&](const IString& location, const IString& below) {
    if (location.isEmpty()) return; // or the current directory would be searched
    const IString candidate = Filename::join(location, below);
    if (isDirectory(candidate) && !directories.contains(candidate)) directories.append(candidate);
  };
  consider(baseLocation, plugins);
  if (appLocation != baseLocation) consider(appLocation, plugins);
  consider(runtimeDirectory, Filename::join(bin, plugins));
  consider(runtimeDirectory, plugins);
  consider(Filename(runtimeDirectory).dirname(), Filename::join(bin, plugins));
}

} // namespace qvOS
