// A hundred declaration libraries registered, the main plug-in of one first used, and services looked up,
// beside Qt's loader with the same libraries.
#include "Base/OS/qvOSAppMain.h"
#include "Base/OS/qvOSNativePath.h"
#include "Base/Plugin/qvPluginPluginLoader.h"
#include "Base/Plugin/qvPluginServiceManager.h"
#include "bench/plugin/shape.h"
#include "bench/qvBench.h"

#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <unistd.h>

#ifdef BENCH_QPluginLoader
#include <QtCore/QPluginLoader>
#include <QtCore/QString>
#endif

namespace {

namespace fs = std::filesystem;
using qvPlugin::ServiceManager;

constexpr int libraries = 100;
constexpr int lookups = 100'000;

/// Copies of the libraries where this program looks for plug-ins.
class Place {
public:
  Place() {
    fs::create_directories(directory);
    fs::copy_file(BENCH_PLUGINS "/square" LIBRARY_SUFFIX, main);
    for (int i = 0; i < libraries; ++i) {
      names.push_back("serviceDecl_" + std::to_string(i));
      files.push_back(directory / (names.back() + LIBRARY_SUFFIX));
      fs::copy_file(BENCH_PLUGINS "/benchDeclaration" LIBRARY_SUFFIX, files.back());
    }
  }
  ~Place() { fs::remove_all(directory); }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;

  const std::string name = "bench" + std::to_string(getpid());
  const fs::path directory =
      fs::path(qvOS::toNativePath(qvOS::AppMain::getInstance().getAppLocation()).asChar()) / "plug-ins" /
      name;
  const fs::path main = directory / ("square" LIBRARY_SUFFIX);
  std::vector<std::string> names;
  std::vector<fs::path> files;
};

const Place& place() {
  static const Place instance;
  return instance;
}

/// The sum over all looked-up services of their numbers among the libraries, which proves that each was
/// found.
template <class Find>
void measureLookups(benchmark::State& state, Find find) {
  std::unordered_map<const void*, std::uint64_t> numbers;
  for (int i = 0; i < libraries; ++i) numbers[find(i)] = std::uint64_t(i) + 1;
  if (int(numbers.size()) != libraries || numbers.count(nullptr)) return state.SkipWithError("not found");
  std::vector<const void*> found(libraries);
  for (auto _ : state)
    for (int i = 0; i < lookups; ++i) found[std::size_t(i % libraries)] = find(i % libraries);
  std::uint64_t sum = 0;
  for (const void* one : found) sum += numbers[one];
  qvBench::setResult(state, sum);
}

// ---- This library ----

void baseRegister(benchmark::State& state) {
  int services = 0;
  for (auto _ : state) {
    ServiceManager::getInstance()->registerServices(place().name.c_str());
    state.PauseTiming();
    services = ServiceManager::getInstance()->getNumServices("shape");
    delete ServiceManager::getInstance();
    state.ResumeTiming();
  }
  qvBench::setResult(state, std::uint64_t(services));
}

void baseFirstUse(benchmark::State& state) {
  double area = 0;
  for (auto _ : state) {
    state.PauseTiming();
    qvPlugin::PluginLoader loader;
    loader.loadProxy(place().files[7].c_str())->installServices();
    auto* shape = static_cast<Shape*>(ServiceManager::getInstance()->getService("shape", "serviceDecl_7"));
    state.ResumeTiming();
    area = shape->area(7);
    state.PauseTiming();
    delete ServiceManager::getInstance();
    state.ResumeTiming();
  }
  qvBench::setResult(state, std::uint64_t(area));
}

void baseLookUp(benchmark::State& state) {
  ServiceManager& manager = *ServiceManager::getInstance();
  manager.registerServices(place().name.c_str());
  measureLookups(state,
                 [&](int i) { return manager.getService("shape", place().names[std::size_t(i)].c_str()); });
  delete &manager;
}

// ---- Qt ----

#ifdef BENCH_QPluginLoader
using Loaders = std::vector<std::unique_ptr<QPluginLoader>>;

QString nameOf(const fs::path& file) { return QString::fromStdString(file.string()); }

/// A loader that unmaps in the end, which Qt's do only where they are asked to.
std::unique_ptr<QPluginLoader> loaderOf(const fs::path& file) {
  auto loader = std::make_unique<QPluginLoader>(nameOf(file));
  loader->setLoadHints({});
  return loader;
}

Loaders loadAll() {
  Loaders loaders;
  for (const fs::directory_entry& entry : fs::directory_iterator(place().directory)) {
    if (entry.path().filename().string().rfind("serviceDecl_", 0) != 0) continue;
    loaders.push_back(loaderOf(entry.path()));
    if (!loaders.back()->instance()) loaders.pop_back();
  }
  return loaders;
}

void unloadAll(const Loaders& loaders) {
  for (const auto& loader : loaders) loader->unload();
}

void qtRegister(benchmark::State& state) {
  std::size_t services = 0;
  for (auto _ : state) {
    const Loaders loaders = loadAll();
    state.PauseTiming();
    services = loaders.size();
    unloadAll(loaders);
    state.ResumeTiming();
  }
  qvBench::setResult(state, services);
}

void qtFirstUse(benchmark::State& state) {
  double area = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const auto declaration = loaderOf(place().files[7]);
    if (!declaration->instance()) return state.SkipWithError("not loaded");
    state.ResumeTiming();
    const auto loader = loaderOf(place().main);
    area = qobject_cast<QtShape*>(loader->instance())->area(7);
    state.PauseTiming();
    loader->unload();
    declaration->unload();
    state.ResumeTiming();
  }
  qvBench::setResult(state, std::uint64_t(area));
}

// A host names what it looks for, and Qt's loader knows names of files alone.
void qtLookUp(benchmark::State& state) {
  const Loaders loaders = loadAll();
  std::vector<QString> names;
  for (const fs::path& file : place().files) names.push_back(nameOf(file));
  measureLookups(state, [&](int i) { return QPluginLoader(names[std::size_t(i)]).instance(); });
  unloadAll(loaders);
}

// The same with a table of loaders that the host keeps.
void qtTableLookUp(benchmark::State& state) {
  const Loaders loaders = loadAll();
  std::unordered_map<std::string, QPluginLoader*> table;
  for (const auto& loader : loaders)
    table[fs::path(loader->fileName().toStdString()).stem().string()] = loader.get();
  measureLookups(state, [&](int i) { return table.at(place().names[std::size_t(i)])->instance(); });
  unloadAll(loaders);
}
#endif

} // namespace

BENCHMARK(baseRegister)->Name("plugins register 100/Base")->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(baseFirstUse)->Name("plugins first use/Base")->Unit(benchmark::kMicrosecond)->Iterations(200);
BENCHMARK(baseLookUp)->Name("plugins look up/Base")->Unit(benchmark::kMillisecond);
BENCHMARK(baseLookUp)->Name("plugins of a table/Base")->Unit(benchmark::kMillisecond);
#ifdef BENCH_QPluginLoader
BENCHMARK(qtRegister)
    ->Name("plugins register 100/QPluginLoader")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
BENCHMARK(qtFirstUse)
    ->Name("plugins first use/QPluginLoader")
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(200);
BENCHMARK(qtLookUp)->Name("plugins look up/QPluginLoader")->Unit(benchmark::kMillisecond);
BENCHMARK(qtTableLookUp)->Name("plugins of a table/unordered_map")->Unit(benchmark::kMillisecond);
#endif
