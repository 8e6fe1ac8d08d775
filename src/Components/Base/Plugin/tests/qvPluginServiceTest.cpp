// Services of the application in the registry.
#include "Base/Plugin/qvPluginService.h"
#include "qvPluginScene.h"

#include <functional>
#include <utility>

using qvPlugin::Service;
using qvPlugin::ServiceManager;

namespace {

class Counted final : public Service {
public:
  static inline int living = 0;

  explicit Counted(const char* name, bool allowOverride = false, const char* type = "counted")
      : Service(name, allowOverride), type_(type) {
    ++living;
  }
  ~Counted() override { --living; }
  const char* getServiceType() const override { return type_; }

private:
  const char* type_;
};

class PluginService : public testing::Test {
protected:
  ~PluginService() override {
    delete ServiceManager::getInstance();
    EXPECT_EQ(Counted::living, 0);
  }
  static ServiceManager& manager() { return *ServiceManager::getInstance(); }
};

} // namespace

TEST_F(PluginService, IsFoundByTypeAndName) {
  Counted* const a = new Counted("a");
  Counted* const b = new Counted(nullptr);
  Counted* const c = new Counted("a", false, "other");
  EXPECT_EQ(manager().getServiceIndex("counted"), -1);
  EXPECT_EQ(manager().getNumServices("counted"), -1);
  EXPECT_EQ(manager().numServiceTypes(), 0) << "looking makes no type";
  for (Counted* service : {a, b, c}) EXPECT_TRUE(service->registerService());
  EXPECT_FALSE(manager().addService(nullptr));

  EXPECT_EQ(manager().numServiceTypes(), 2);
  EXPECT_STREQ(manager().getServiceType(1), "other");
  EXPECT_EQ(manager().getServiceIndex("other"), 1);
  EXPECT_EQ(manager().getNumServices(0), 2);
  EXPECT_EQ(manager().getService(0, 1), b);
  EXPECT_EQ(manager().getService(0, "a"), a);
  EXPECT_EQ(manager().getService("other", "a"), c);
  EXPECT_EQ(manager().getService("counted", ""), b);
  EXPECT_EQ(manager().getService("counted", "A"), nullptr);
  EXPECT_EQ(manager().getService("unknown", "a"), nullptr);
  EXPECT_EQ(manager().getService(2, "a"), nullptr);
  EXPECT_EQ(manager().getService(-1, "a"), nullptr);
  EXPECT_EQ(manager().getService(nullptr, nullptr), nullptr);
  EXPECT_FALSE(a->isPlugin());

  const qv::Reference<Counted> unknown(new Counted("x", false, "empty"));
  manager().removeService(unknown.get());
  manager().removeService(nullptr);
  EXPECT_EQ(manager().getNumServices("empty"), 0);
}

TEST_F(PluginService, OverridesWhereTheOldOneAllows) {
  PluginScene scene;
  const qv::Reference<Counted> old(new Counted("name", true));
  const qv::Reference<Counted> next(new Counted("name"));
  EXPECT_TRUE(old->registerService());
  EXPECT_TRUE(old->registerService()) << "even itself";
  EXPECT_EQ(manager().getNumServices("counted"), 1);
  EXPECT_TRUE(next->registerService());
  EXPECT_EQ(manager().getService("counted", "name"), next.get());
  EXPECT_EQ(old->refs(), 1);

  EXPECT_FALSE(old->registerService());
  const std::string line = "Registration of a service failed.  The name is already used: name\n";
  EXPECT_EQ(scene.told(0), line);
  EXPECT_EQ(scene.told(1), line);

  manager().removeService(old.get()); // by type and name
  EXPECT_EQ(manager().getNumServices("counted"), 0);
  EXPECT_EQ(next->refs(), 1);
}

TEST_F(PluginService, SurvivesWhatItsSlotsDo) {
  int emitted = 0;
  const auto interfere = [&](Service* service) {
    ++emitted;
    const qv::Reference<Service> again(service);
    manager().removeService(service);
    EXPECT_FALSE(service->registerService());
  };
  {
    Counted onStack("stack");
    onStack.ref();
    EXPECT_TRUE(onStack.registerService());
    onStack.sigDestroyed.connect(interfere);
  }
  EXPECT_EQ(manager().getNumServices("counted"), 0);

  Counted* const deleted = new Counted("deleted");
  EXPECT_TRUE(deleted->registerService());
  deleted->sigDestroyed.connect(interfere);
  delete deleted;
  EXPECT_EQ(manager().getNumServices("counted"), 0);

  Counted* const dropped = new Counted("dropped", true);
  EXPECT_TRUE(dropped->registerService());
  dropped->sigDestroyed.connect(interfere);
  dropped->sigDestroyed.connect([&](Service*) { (new Counted("heir"))->registerService(); });
  EXPECT_TRUE((new Counted("dropped"))->registerService());
  EXPECT_EQ(emitted, 3);
  EXPECT_EQ(manager().getNumServices("counted"), 2);
  EXPECT_EQ(Counted::living, 2);
}
