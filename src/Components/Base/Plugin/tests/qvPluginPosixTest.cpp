// Declaration libraries under names that only POSIX systems have.
#include "qvPluginScene.h"

#include <filesystem>

TEST(PluginPosix, RegistersALibraryWhoseNameIsNoText) {
  PluginScene scene;
  const std::filesystem::path shapes = FIXTURES "/" + PluginScene::file("serviceDecl_shapes");
  std::filesystem::copy(shapes, scene.directory.path(PluginScene::file("serviceDecl_\xff")));
  scene.directory.write("serviceDecl_shapes.so.debug", "debug symbols, which are passed over");
  scene.registerServices();
  EXPECT_EQ(scene.told(0), "");
  EXPECT_EQ(qvPlugin::ServiceManager::getInstance()->getNumServices("shape"), 2);
}
