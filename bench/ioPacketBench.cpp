// Packets of objects that point to each other, beside archives that track pointers too.
#include "bench/ioPacketBench.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef BENCH_BoostSerialization
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#endif

#ifdef BENCH_Cereal
#include <cereal/archives/binary.hpp>
#include <cereal/types/memory.hpp>
#endif

using namespace qvBench;

namespace {

constexpr int chainLength = 10'000'000;
constexpr std::size_t mostBytesPerObject = 80;

using Binary = Base<ioWriteBinary, mostBytesPerObject>;
#ifdef BENCH_BoostSerialization
using BoostBinary =
    BoostSerialization<boost::archive::binary_oarchive, boost::archive::binary_iarchive, mostBytesPerObject>;
#endif

// Each points to the next, which nobody has seen before.
const Graph& chain() {
  static const Graph graph = [] {
    std::vector<int> next;
    for (int i = 1; i <= chainLength; ++i) next.push_back(i < chainLength ? i : -1);
    return makeGraph(std::move(next));
  }();
  return graph;
}

#ifdef BENCH_Cereal
// It tracks shared pointers only.
class Cereal {
public:
  explicit Cereal(const Graph& graph) : memory_(graph.objects.size() * mostBytesPerObject) {
    for (const auto& object : graph.objects)
      written_.push_back(
          std::make_shared<Shared>(Shared{object->id, object->x, object->y, object->z, nullptr}));
    for (std::size_t i = 0; i < graph.next.size(); ++i)
      if (graph.next[i] >= 0) written_[i]->next = written_[static_cast<std::size_t>(graph.next[i])];
  }
  ~Cereal() {
    for (const auto& object : written_) object->next.reset();
    forget();
  }
  Cereal(const Cereal&) = delete;
  Cereal& operator=(const Cereal&) = delete;

  void write() {
    memory_.clear();
    std::ostream stream(&memory_);
    cereal::BinaryOutputArchive archive(stream);
    for (const auto& object : written_) archive(object);
  }

  void read() {
    memory_.rewind();
    std::istream stream(&memory_);
    cereal::BinaryInputArchive archive(stream);
    objects_.resize(written_.size());
    for (auto& object : objects_) archive(object);
  }

  [[nodiscard]] std::uint64_t hash() const { return hashOfObjects(objects_); }
  void forget() {
    for (const auto& object : objects_) object->next.reset();
    objects_.clear();
  }

private:
  struct Shared {
    int id;
    double x, y, z;
    std::shared_ptr<Shared> next;

    template <class Archive>
    void serialize(Archive& archive) {
      archive(id, x, y, z, next);
    }
  };

  Memory memory_;
  std::vector<std::shared_ptr<Shared>> written_;
  std::vector<std::shared_ptr<Shared>> objects_;
};
#endif

void baseChain(benchmark::State& state) {
  Binary who(chain());
  for (auto _ : state) {
    who.write();
    who.read();
  }
  if (who.hash() != hashOfObjects(chain().objects)) state.SkipWithError("the chain did not come back");
  setResult(state, who.hash());
}

// Who goes down the chain by recursion ends with its stack, in a process that is kept apart for that.
template <class Who>
void peerChain(benchmark::State& state) {
  Who who(chain());
  int status = 0;
  for (auto _ : state) {
    const pid_t child = fork();
    if (child == 0) {
      const rlimit none{};
      setrlimit(RLIMIT_CORE, &none);
      who.write();
      who.read();
      _exit(who.hash() == hashOfObjects(chain().objects) ? 0 : 1);
    }
    waitpid(child, &status, 0);
  }
  if (WIFSIGNALED(status)) state.counters["ended"] = WTERMSIG(status);
  setResult(state, status ? 0 : hashOfObjects(chain().objects));
}

template <class Who>
void add(const std::string& who, void (*measureChain)(benchmark::State&)) {
  const auto once = [&who](const char* what, auto... measured) {
    benchmark::RegisterBenchmark((what + who).c_str(), measured...)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
  };
  once("packets write, near/", write<Who>, near);
  once("packets read, near/", read<Who>, near);
  once("packets write, anywhere/", write<Who>, anywhere);
  once("packets read, anywhere/", read<Who>, anywhere);
  once("chain of references/", measureChain);
}

const bool added = [] {
  add<Binary>("Base", baseChain);
#ifdef BENCH_BoostSerialization
  add<BoostBinary>("BoostSerialization", peerChain<BoostBinary>);
#endif
#ifdef BENCH_Cereal
  add<Cereal>("Cereal", peerChain<Cereal>);
#endif
  return true;
}();

} // namespace
