// The second attempt at a library that could not be loaded.
#include "Base/Platform/qvPlatformError.h"
#include "Base/Plugin/qvPluginPluginLoader.h"
#include "testing/qvTestPlatform.h"

TEST(PluginRetry, ComesOnce) {
  const int denied = qvPlatform::errorNumber(qvPlatform::ErrorKind::denied);
  qvPlugin::PluginLoader loader;
  for (const int failures : {0, 1, 2}) {
    qvTest::PlatformScript script;
    if (failures) script.failCall(0, denied, "loadLibrary", failures);
    EXPECT_EQ(bool(loader.load(NO_SYMBOLS)), failures < 2);
    EXPECT_EQ(script.count("loadLibrary"), failures ? 2 : 1);
    EXPECT_EQ(loader.getError(), failures < 2 ? "" : qvPlatform::systemErrorText(denied));
  }
}
