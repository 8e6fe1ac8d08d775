#include "Base/OS/qvOSAppMain.h"

#include "Base/OS/qvOSAppLocations.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Platform/qvPlatformEnvironment.h"
#include "Base/Platform/qvPlatformModule.h"
#include "Base/Platform/qvPlatformPath.h"

#include <string>

namespace qvOS {

using qvString::CString;
using qvString::IString;

namespace {

/// Empty where the system does not tell it.
Filename executable() {
  std::string native;
  if (qvPlatform::executablePath(&native)) return {};
  return Filename(fromNativePath(CString(native)));
}

} // namespace

AppMain::AppMain() { stopWatch_.start(); }

AppMain& AppMain::getInstance() {
  static AppMain instance;
  return instance;
}

void AppMain::initialize(int argc, char** argv, char** envp) {
  argc_ = argc;
  argv_ = argv;
  envp_ = envp;
}

void AppMain::initialize(int argc, qv::WChar** argv, qv::WChar** envp) {
  argc_ = argc;
  wargv_ = argv;
  wenvp_ = envp;
}

void AppMain::getArgs(qv::vector<IString>& args) const {
  args.clear();
  // The count may have come with the other array, so the null at the end counts too.
  if (argv_) {
    for (int i = 0; i < argc_ && argv_[i]; ++i) args.append(fromNativePath(CString(argv_[i])));
  } else if (wargv_) {
    for (int i = 0; i < argc_ && wargv_[i]; ++i) args.append(IString(wargv_[i]));
  }
}

const IString& AppMain::getAppName() {
  const Filename path = executable();
  if (!path.name().isEmpty()) appName_ = appNameOf(path);
  return appName_;
}

const IString& AppMain::getAppLocation() {
  if (appLocation_.isEmpty() && !getAppName().isEmpty()) appLocation_ = executable().dirname();
  return appLocation_;
}

const IString& AppMain::getBaseLocation() {
  if (baseLocation_.isEmpty())
    baseLocation_ = Filename(fromNativePath(CString(qvPlatform::libraryPath()))).dirname();
  return baseLocation_;
}

const IString& AppMain::getRuntimeDirectory(const char*) {
  if (runtimeDirectory_.isEmpty()) runtimeDirectory_ = Filename(getBaseLocation()).dirname();
  return runtimeDirectory_;
}

bool AppMain::getBuildRootDirectory(IString& directory) {
  if (!buildRootFixed_) buildRootDirectory_ = Filename(getRuntimeDirectory()).dirname();
  directory = buildRootDirectory_;
  return !directory.isEmpty();
}

void AppMain::getPluginDirectories(qv::vector<IString>& directories) {
  appendPluginDirectories(getBaseLocation(), getAppLocation(), getRuntimeDirectory(), directories);
}

double AppMain::getElapsed() const { return stopWatch_.getElapsed(); }

void AppMain::initializePath() {
  if (!searchPath_.isSet()) searchPath_.set(CString(qvPlatform::environmentVariable("PATH")));
}

bool AppMain::searchPathFor(const IString& name, Filename& found) {
  initializePath();
  return searchPath_.searchFor(name, found);
}

bool AppMain::addDirectoryToPath(const IString& directory) {
  initializePath();
  return searchPath_.addDirectory(directory);
}

bool AppMain::removeDirectoryFromPath(const IString& directory) {
  initializePath();
  return searchPath_.removeDirectory(directory);
}

} // namespace qvOS
