#include "Base/Platform/qvPlatformModule.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

// Looked at while the program's own statics are built: the record must be there already.
void* const seenEarly = qvPlatform::libraryModule();

} // namespace

TEST(PlatformModule, IsRecordedBeforeStaticsAreBuilt) {
  EXPECT_NE(seenEarly, nullptr);
  EXPECT_EQ(qvPlatform::libraryModule(), seenEarly);
  const std::string path = qvPlatform::libraryPath();
  EXPECT_EQ(path.substr(0, 1), "/");
  EXPECT_TRUE(std::ifstream(path).good());
}
