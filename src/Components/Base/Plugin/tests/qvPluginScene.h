// A place for fixtures among the plug-in directories of the running test, and what its libraries report.
#pragma once

#include "Base/OS/qvOSAppMain.h"
#include "Base/OS/qvOSAppOutput.h"
#include "Base/OS/qvOSFileOperations.h"
#include "Base/OS/qvOSFilename.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Plugin/qvPluginServiceManager.h"
#include "testing/qvTestDirectory.h"
#include "testing/qvTestLibrary.h"

#include <gtest/gtest.h>

#include <string>

inline qvString::IString wide(const std::string& text) {
  return qvString::IString(text.c_str(), qvString::UTF8Encoding);
}

/// Library files are named without their suffix, in UTF-8. The registry of services goes with the scene.
class PluginScene {
public:
  static constexpr const char* main = "F\xc3\xbcr alle";

  PluginScene() {
    for (int stream = 0; stream < 3; ++stream) openStream(stream);
  }
  ~PluginScene() {
    delete qvPlugin::ServiceManager::getInstance();
    for (int stream = 0; stream < 3; ++stream) qvOS::AppOutput::getInstance().getStream(stream).close();
  }

  /// Copies a fixture. @return the copy's path as UTF-8.
  std::string add(const std::string& fixture, const std::string& name) const {
    const qvOS::Filename to(place(), wide(file(name)));
    EXPECT_FALSE(qvOS::fileCopy(qvOS::Filename(wide(FIXTURES "/" + file(fixture))), to, false));
    return to.name().asUTF8();
  }
  /// Registers the services of what was added.
  void registerServices() const {
    qvPlugin::ServiceManager::getInstance()->registerServices(qvOS::Filename(place()).basename().asUTF8());
  }
  /// What came on a stream since it was asked the last time; the fixtures' marks come on stream 2.
  std::string told(int stream) const {
    qvOS::AppOutput::getInstance().getStream(stream).close();
    std::string text = directory.readText("stream" + std::to_string(stream));
    openStream(stream);
    return text;
  }
  /// The path of a file in the scene, as the library tells it.
  std::string path(const std::string& name) const {
    return qvOS::Filename(place(), wide(name)).name().asUTF8();
  }

  static std::string file(const std::string& name) { return name + LIBRARY_SUFFIX; }
  static bool isMapped(const std::string& name) { return qvTest::isMapped(file(name)); }

  const qvTest::Directory directory{pluginDirectory()};

private:
  static std::string pluginDirectory() {
    const qvOS::Filename found(qvOS::AppMain::getInstance().getAppLocation(), wide("plug-ins"));
    found.makeDir();
    return qvOS::toNativePath(found).asChar();
  }
  qvString::IString place() const { return qvOS::fromNativePath(directory.path().c_str()); }
  void openStream(int stream) const {
    const std::string name = directory.path("stream" + std::to_string(stream));
    qvOS::AppOutput::getInstance().getStream(stream).open(qvOS::fromNativePath(name.c_str()), false);
  }
};
