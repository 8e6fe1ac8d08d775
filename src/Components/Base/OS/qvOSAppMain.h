// The record of the running application: its arguments, where its executable and this library lie, and the
// directories that follow from those. The one place that decides where plug-ins are looked for.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSSearchPath.h"
#include "Base/OS/qvOSStopWatch.h"
#include "Base/String/qvStringIString.h"
#include "Base/qvBase.h"

namespace qvOS {

/// One instance in the process. Locations are absolute, found when first asked for and then kept; one that
/// the system does not tell is empty. On POSIX systems links are followed: a library that was loaded through
/// one lies where the file itself does. Not thread-safe.
class AppMain {
public:
  /// The instance, built by the first call, which may come before `main`, and destroyed when the library
  /// goes.
  QV_BASE_API static AppMain& getInstance();
  AppMain(const AppMain&) = delete;
  AppMain& operator=(const AppMain&) = delete;

  /// Keeps the arguments and the environment of `main`, which stay the caller's and must live on. The arrays
  /// end with a null, as those of `main` do, or may be null themselves.
  QV_BASE_API void initialize(int argc, char** argv, char** envp);
  QV_BASE_API void initialize(int argc, qv::WChar** argv, qv::WChar** envp);
  /// True until `initialize`.
  [[nodiscard]] bool preMain() const noexcept { return argc_ == -1; }
  /// Replaces `args` by the arguments: the narrow ones, in the encoding of paths, where both kinds were
  /// given.
  QV_BASE_API void getArgs(qv::vector<qvString::IString>& args) const;

  /// The executable's file name, with ".exe" added where its suffix is another than "exe", on every platform.
  /// Asked of the system by every call; what the last answer was, where the system gives none.
  QV_BASE_API const qvString::IString& getAppName();
  /// The executable's directory.
  QV_BASE_API const qvString::IString& getAppLocation();
  /// This library's directory.
  QV_BASE_API const qvString::IString& getBaseLocation();
  /// The directory above `getBaseLocation`. The argument is ignored.
  QV_BASE_API const qvString::IString& getRuntimeDirectory(const char* ignored = nullptr);
  /// Stores the directory above `getRuntimeDirectory`. False where it is empty.
  QV_BASE_API bool getBuildRootDirectory(qvString::IString& directory);

  /// Appends those of these directories that exist and are not yet in `directories`, in this order:
  /// "plug-ins" beside this library and beside the executable; "bin\plug-ins" and "plug-ins" in the runtime
  /// directory; "bin\plug-ins" in the directory above that.
  QV_BASE_API void getPluginDirectories(qv::vector<qvString::IString>& directories);

  /// Seconds since the instance was built.
  [[nodiscard]] QV_BASE_API double getElapsed() const;

  /// `SearchPath::searchFor`, `addDirectory` and `removeDirectory` on the application's own search path,
  /// which begins as the directories of the environment variable "PATH".
  QV_BASE_API bool searchPathFor(const qvString::IString& name, Filename& found);
  QV_BASE_API bool addDirectoryToPath(const qvString::IString& directory);
  QV_BASE_API bool removeDirectoryFromPath(const qvString::IString& directory);

private:
  AppMain();
  ~AppMain() = default;
  void initializePath();

  int argc_ = -1;
  char** argv_ = nullptr;
  char** envp_ = nullptr;
  qv::WChar** wargv_ = nullptr;
  qv::WChar** wenvp_ = nullptr;
  qvString::IString appName_;
  qvString::IString appLocation_;
  qvString::IString baseLocation_;
  qvString::IString runtimeDirectory_;
  qvString::IString buildRootDirectory_;
  bool buildRootFixed_ = false; // while it is false, the build root is worked out by every call
  SearchPath searchPath_;
  StopWatch stopWatch_;
};

} // namespace qvOS
