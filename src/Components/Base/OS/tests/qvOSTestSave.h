// A main file and its saves, for the tests of safe saving.
#pragma once

#include "Base/OS/qvOSProtectedWrite.h"
#include "Base/OS/tests/qvOSTestName.h"
#include "testing/qvTestDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace qvTest {

/// A main file in one directory, and the temporary directory for the process in another.
class SafeSave : public testing::Test {
protected:
  const std::string oldText = std::string(50000, 'o');
  const std::string newText = std::string(70000, 'n');

  void prepare(bool oldFile = true) {
    for (const Directory* directory : {&home, &temporary}) {
      for (const auto& entry : std::filesystem::directory_iterator(directory->path()))
        std::filesystem::remove_all(entry);
    }
    if (oldFile) home.write("main.dat", oldText);
  }

  qvOS::Filename mainName() const { return filename(home.path("main.dat")); }

  void writeNew(const qvOS::ProtectedWrite& save) const {
    std::ofstream(pathOf(native(save.getTempFilename().name())), std::ios::binary) << newText;
  }

  /// @return whether the save tells that it succeeded.
  bool saveOnce(bool copies) const {
    qvOS::ProtectedWrite save(mainName());
    if (copies) save.useCopyStrategy();
    if (!save.init()) return false;
    writeNew(save);
    return save.finalize();
  }

  /// True if the main file is whole, or is absent while the old one stands whole under a backup name. A copy
  /// that was cut off may also stand at the main name.
  bool nothingIsLost(bool copies) const {
    const std::string main = home.read("main.dat");
    if (main == oldText || main == newText) return true;
    if (!copies && home.exists("main.dat")) return false;
    const Directory& directory = copies ? temporary : home;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
      const std::string name = entry.path().filename().string();
      if (name.ends_with(".1.tmp") && name.starts_with("mai") && directory.read(name) == oldText) return true;
    }
    return false;
  }

  const Directory home{inMemory()};
  const Directory temporary{inMemory()};
  TemporaryPlace place{temporary.path()};
};

} // namespace qvTest
