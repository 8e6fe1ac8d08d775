#include "Base/Utility/qvUtilInitializer.h"

#include "Base/Containers/qvList.h"
#include "Base/Containers/qvPair.h"
#include "Base/Containers/qvVector.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace qvUtil {

namespace {

using Units = qv::vector<Initializer*>;
using Dependencies = qv::list<qv::pair<Initializer*, Initializer*>>; // dependent, dependency

// Plain pointers, made on first need, so that they are there before any constructor of this file could run.
Units* pending = nullptr;
Dependencies* dependencies = nullptr;
Units* finished = nullptr; // the most recently run first

template <class Collection>
Collection& made(Collection*& collection) {
  if (!collection) collection = new Collection;
  return *collection;
}

/// Takes a collection out of its place, so that what registers from now on begins a new one.
template <class Collection>
std::unique_ptr<Collection> taken(Collection*& collection) noexcept {
  return std::unique_ptr<Collection>(std::exchange(collection, nullptr));
}

} // namespace

Initializer::Initializer() : sourceFile_("Components\\Base\\Utility\\qvUtilInitializer"), count_(0) {
  addInit();
}

Initializer::Initializer(const Initializer& other) noexcept = default;
Initializer& Initializer::operator=(const Initializer& other) noexcept = default;
Initializer::~Initializer() = default;

void Initializer::finalize() {}

void Initializer::addInit() { made(pending).append(this); }

void Initializer::dependsOn(Initializer* other) { made(dependencies).emplace_back(this, other); }

/// Counts for each unit the paths by which it is reached from the units that are to run. A dependency always
/// ends with more than anything that depends on it.
static void countPaths(const Units& units, const Dependencies& pairs, void (*count)(Initializer*)) {
  qv::list<Initializer*> queue(units.begin(), units.end());
  while (!queue.empty()) {
    Initializer* const unit = queue.front();
    queue.pop_front();
    count(unit);
    for (const auto& [dependent, dependency] : pairs)
      if (dependent == unit) queue.push_back(dependency);
  }
}

Error Initializer::initializeAll() {
  if (!pending) return Error();
  const std::unique_ptr<Units> units = taken(pending);
  const std::unique_ptr<Dependencies> pairs = taken(dependencies);
  if (pairs) countPaths(*units, *pairs, [](Initializer* unit) { ++unit->count_; });
  std::stable_sort(units->begin(), units->end(),
                   [](const Initializer* a, const Initializer* b) { return a->count_ > b->count_; });
  made(finished).reserve(finished->size() + units->size());
  Error result;
  for (Initializer* const unit : *units) {
    Error error = unit->initialize();
    Units& ran = made(finished);
    ran.insert(ran.begin(), unit);
    if (error) result = std::move(error);
  }
  return result;
}

void Initializer::finalizeAll() {
  if (!finished) return;
  const std::unique_ptr<Units> units = taken(finished);
  for (Initializer* const unit : *units) unit->finalize();
}

} // namespace qvUtil
