// A million lookups in a catalog of ten thousand texts, beside the C library's message catalogs.
#include "Base/OS/qvOSNativePath.h"
#include "Base/String/qvStringTable.h"
#include "Base/String/qvStringTableCatalog.h"
#include "bench/qvBench.h"
#include "bench/qvBenchDirectory.h"

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#if defined(BENCH_Gettext)
#include <libintl.h>
#endif

namespace {

constexpr std::size_t keyCount = 10000;
constexpr std::size_t lookups = 1000000;

std::vector<std::string> makeKeys() {
  const char* const sets[] = {"menu", "dialog", "tool", "message", "surface", "curve", "render", "error"};
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < keyCount; ++i)
    keys.push_back(std::string(sets[i % 8]) + ".entry_" + std::to_string(i * 7919 % 100003));
  return keys;
}

const std::vector<std::string> keys = makeKeys();

std::string textOf(std::size_t i) { return std::to_string(i) + " is the number of this text"; }

// The keys that are looked up, one after the other.
const std::vector<std::uint64_t> order = qvBench::randomNumbers(lookups, 1);

/// Adds up the first characters of the texts.
template <class FirstCharacter>
void measure(benchmark::State& state, FirstCharacter firstCharacter) {
  std::uint64_t sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const std::uint64_t number : order)
      sum += static_cast<std::uint64_t>(firstCharacter(number % keyCount));
  }
  qvBench::setResult(state, sum);
}

void base(benchmark::State& state) {
  const qvBench::Directory directory("catalog");
  const std::string path = directory.path("bench.catalog");
  std::string catalog;
  for (std::size_t i = 0; i < keyCount; ++i) catalog += keys[i] + " = \"" + textOf(i) + "\"\n";
  qvBench::store(path, catalog);
  qvStringTable::StringTable& table = qvStringTable::appStringTable();
  table.clear();
  if (qvStringTable::Manager::loadCatalog(qvOS::fromNativePath(path.c_str())))
    return state.SkipWithError("the catalog cannot be read");
  std::vector<qvStringTable::Key> ready;
  for (const std::string& key : keys) ready.emplace_back(key.c_str());
  measure(state, [&](std::size_t i) { return table.getString(ready[i]).at(0); });
}
BENCHMARK(base)->Name("look up texts/Base")->Unit(benchmark::kMillisecond);

#if defined(BENCH_Gettext)
void gettextOfTheRuntime(benchmark::State& state) {
  const qvBench::Directory directory("gettext");
  const std::string folder = directory.path("xx/LC_MESSAGES");
  const std::string source = directory.path("bench.po");
  std::string catalog = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
  for (std::size_t i = 0; i < keyCount; ++i)
    catalog += "msgid \"" + keys[i] + "\"\nmsgstr \"" + textOf(i) + "\"\n";
  qvBench::store(source, catalog);
  const std::string command =
      "mkdir -p '" + folder + "' && " MSGFMT " -o '" + folder + "/bench.mo' '" + source + "'";
  if (std::system(command.c_str()) != 0) return state.SkipWithError("the catalog cannot be made");
  setenv("LANGUAGE", "xx", 1);
  std::setlocale(LC_ALL, "C.UTF-8");
  bindtextdomain("bench", directory.path("").c_str());
  textdomain("bench");
  measure(state, [](std::size_t i) { return gettext(keys[i].c_str())[0]; });
  std::setlocale(LC_ALL, "C");
}
BENCHMARK(gettextOfTheRuntime)->Name("look up texts/Gettext")->Unit(benchmark::kMillisecond);
#endif

} // namespace
