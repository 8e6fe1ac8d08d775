#include "Base/Platform/qvPlatformModule.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

// Looked at while the program's own statics are built: the record must be there already.
void* const seenEarly = qvPlatform::libraryModule();

} // namespace

TEST(PlatformModule, IsRecordedBeforeStaticsAreBuilt) {
  EXPECT_NE(seenEarly, nullptr);
  EXPECT_EQ(qvPlatform::libraryModule(), seenEarly);
  const std::filesystem::path path = qvPlatform::libraryPath();
  EXPECT_TRUE(path.is_absolute());
  EXPECT_TRUE(std::ifstream(path).good());
}
