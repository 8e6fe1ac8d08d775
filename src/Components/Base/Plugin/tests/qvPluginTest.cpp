// Libraries that come and go: declaration libraries with their main plug-ins, and broken ones.
#include "Base/Plugin/qvPluginPluginLoader.h"
#include "fixtures/fixture.h"
#include "qvPluginScene.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>

using qvPlugin::Plugin;
using qvPlugin::PluginLoader;
using qvPlugin::PluginProxy;
using qvPlugin::Service;
using qvPlugin::ServiceManager;

namespace {

Shape* shape(const char* name) {
  return static_cast<Shape*>(ServiceManager::getInstance()->getService("shape", name));
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

} // namespace

TEST(Plugin, IsLoadedWhenAskedForAndGoesWithTheLastService) {
  std::optional<PluginScene> scene(std::in_place);
  scene->add("serviceDecl_shapes", "serviceDecl_shapes");
  scene->add("shapes", PluginScene::main);
  scene->registerServices();
  EXPECT_EQ(scene->told(0) + scene->told(1), "");
  EXPECT_EQ(scene->told(2), "declaration comes;install;");
  ASSERT_EQ(ServiceManager::getInstance()->getNumServices("shape"), 2);
  EXPECT_FALSE(PluginScene::isMapped(PluginScene::main));

  qv::Reference<Shape> circle(shape("circle of serviceDecl_shapes"));
  EXPECT_TRUE(circle->isPlugin());
  EXPECT_EQ(circle->area(2), 12);
  EXPECT_EQ(shape("square of serviceDecl_shapes")->area(2), 16);
  EXPECT_TRUE(PluginScene::isMapped(PluginScene::main));
  EXPECT_EQ(scene->told(2), "main comes;");

  delete ServiceManager::getInstance();
  EXPECT_EQ(scene->told(2), "service dies;");
  EXPECT_EQ(circle->area(1), 3) << "one service keeps both libraries";
  circle.reset();
  EXPECT_EQ(scene->told(2), "service dies;main goes;declaration goes;");
  EXPECT_FALSE(PluginScene::isMapped(PluginScene::main));
  EXPECT_FALSE(PluginScene::isMapped("serviceDecl_shapes"));
}

TEST(Plugin, RegistrationTellsWhatIsBrokenAndGoesOn) {
  PluginScene scene;
  scene.add("serviceDecl_shapes", "serviceDecl_good \xc3\xbc ok");
  scene.add("noServices", "serviceDecl_none");
  scene.add("noSymbols", "serviceDecl_bare");
  scene.add("orphan", "serviceDecl_orphan");
  scene.directory.write(PluginScene::file("serviceDecl_text"), "no library");
  scene.directory.write("serviceDecl_upper.PDB", "its suffix is not the one of debug symbols");
  std::error_code cannotLink; // where links are not for everybody
  std::filesystem::create_symlink("nowhere", scene.directory.path("serviceDecl_dangling"), cannotLink);
  // These are passed over.
  scene.add("noSymbols", "serviceDecl_");
  scene.add("noSymbols", "ServiceDecl_x");
  scene.directory.write("serviceDecl_shapes.pdb", "debug symbols");
  std::filesystem::create_directory(scene.directory.path(PluginScene::file("serviceDecl_directory")));
  scene.registerServices();

  const std::string failed = scene.told(0), empty = scene.told(1);
  for (const std::string& name :
       {PluginScene::file("serviceDecl_orphan"), PluginScene::file("serviceDecl_text"),
        std::string("serviceDecl_upper.PDB")}) {
    const std::string line = "Proxy failed to load: " + scene.path(name) + "\n";
    const std::size_t at = failed.find(line);
    ASSERT_NE(at, std::string::npos) << name << " in: " << failed;
    EXPECT_GT(failed.find('\n', at + line.size()), at + line.size() + 5) << "the system's reason: " << failed;
  }
  const std::string dangling = "Proxy failed to load: " + scene.path("serviceDecl_dangling") + "\n\n";
  EXPECT_EQ(contains(failed, dangling), !cannotLink) << failed;
  EXPECT_EQ(std::count(failed.begin(), failed.end(), '\n'), cannotLink ? 6 : 8) << failed;
  for (const char* name : {"serviceDecl_none", "serviceDecl_bare"})
    EXPECT_TRUE(contains(empty, "No services in: " + scene.path(PluginScene::file(name)) + "\n")) << empty;
  EXPECT_EQ(std::count(empty.begin(), empty.end(), '\n'), 2) << empty;

  EXPECT_TRUE(contains(scene.told(2), "install nothing;no services goes;"));
  EXPECT_FALSE(PluginScene::isMapped("serviceDecl_none"));
  EXPECT_FALSE(PluginScene::isMapped("serviceDecl_bare"));
  EXPECT_EQ(ServiceManager::getInstance()->getNumServices("shape"), 2);
  EXPECT_TRUE(shape("circle of serviceDecl_good \xc3\xbc ok"));

  scene.add("serviceDecl_shapes", "serviceDecl_late");
  ServiceManager::getInstance()->registerServices(nullptr);
  scene.registerServices();
  EXPECT_EQ(ServiceManager::getInstance()->getNumServices("shape"), 2) << "registration happens once";
}

TEST(Plugin, ProxyTriesItsMainPluginOnce) {
  PluginScene scene;
  PluginLoader loader;
  const qv::Reference<PluginProxy> proxy =
      loader.loadProxy(scene.add("serviceDecl_shapes", "serviceDecl_lost").c_str());
  ASSERT_TRUE(proxy);
  EXPECT_STREQ(loader.getError(), "");
  EXPECT_EQ(proxy->getProxyFor(), PluginScene::file(PluginScene::main));
  EXPECT_STREQ(proxy->getName(), "serviceDecl_lost");
  EXPECT_EQ(proxy->getFilename(), scene.path(PluginScene::file("serviceDecl_lost")));

  EXPECT_FALSE(proxy->loadMainPlugin());
  EXPECT_EQ(proxy->getError(), "The proxy plugin does not exist: " + scene.path(proxy->getProxyFor()));
  scene.add("shapes", PluginScene::main);
  EXPECT_FALSE(proxy->loadMainPlugin());
  EXPECT_FALSE(proxy->getMainPlugin());
  EXPECT_STREQ(proxy->getError(), "");

  EXPECT_TRUE(proxy->installServices());
  scene.told(2);
  EXPECT_TRUE(proxy->installServices());
  EXPECT_EQ(scene.told(2), "") << "services are installed once";
  ASSERT_EQ(proxy->getNumServices(), 2);
  Service* const square = proxy->getService(1);
  EXPECT_EQ(proxy->findService(square), 1);
  ServiceManager::getInstance()->removeService(proxy->getService(0));
  EXPECT_EQ(proxy->findService(square), 0);

  const qv::Reference<PluginProxy> nameless = loader.loadProxy(scene.add("noSymbols", "nameless").c_str());
  ASSERT_TRUE(nameless);
  EXPECT_STREQ(nameless->getProxyFor(), "");
  EXPECT_FALSE(nameless->getMainPlugin()) << "its directory is no library";
  EXPECT_STRNE(nameless->getError(), "");
}

TEST(Plugin, StaysWhereItMustNotBeUnloaded) {
  PluginScene scene;
  const std::string path = scene.add("noServices", "staying");
  PluginLoader loader;
  qv::Reference<Plugin> plugin = loader.load(path.c_str());
  ASSERT_TRUE(plugin);
  EXPECT_TRUE(plugin->getSymbol("uninitializePlugin"));
  EXPECT_STREQ(plugin->getError(), "");
  for (const char* missing : {"missing", "", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(plugin->getSymbol(missing));
    EXPECT_STRNE(plugin->getError(), "");
  }
  const Plugin* destroyed = nullptr;
  plugin->sigDestroyed.connect([&](Plugin* dying) {
    const qv::Reference<Plugin> again(dying);
    destroyed = again.get();
    EXPECT_TRUE(PluginScene::isMapped("staying"));
  });
  plugin->finallyUnload(false);
  const Plugin* const expected = plugin.get();
  plugin.reset();
  EXPECT_EQ(destroyed, expected);
  EXPECT_EQ(scene.told(2), "");
  EXPECT_TRUE(PluginScene::isMapped("staying"));

  plugin = loader.load(path.c_str());
  EXPECT_FALSE(loader.load("no/such/library"));
  EXPECT_STREQ(loader.getError(), "");
  EXPECT_FALSE(loader.load(scene.directory.write("broken", "").c_str()));
  const PluginLoader copy(loader);
  EXPECT_STRNE(copy.getError(), "");
  plugin.reset();
  EXPECT_EQ(scene.told(2), "no services goes;");
}
