// LZW over 100 MB of text, headers and binaries, beside `compress` and `uncompress`. Both sides read a file
// and write to /dev/null. The peer is a process, and what counts is the processor time of that process, start
// included; for this library it is that of the same steps here. Each side reads the stream that it wrote:
// they differ in the end code only.
#include "Base/IO/ioBufferedStream.h"
#include "Base/String/qvStringIString.h"
#include "bench/qvBench.h"
#include "bench/qvBenchDirectory.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t corpusSize = 100'000'000;
constexpr std::size_t largestPiece = 1'000'000;
constexpr int chunkSize = 65536;

double seconds(const rusage& usage) {
  const auto of = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return of(usage.ru_utime) + of(usage.ru_stime);
}

std::vector<fs::path> filesBelow(const char* directory) {
  std::vector<fs::path> paths;
  for (const auto& entry :
       fs::recursive_directory_iterator(directory, fs::directory_options::skip_permission_denied))
    if (entry.is_regular_file() && !entry.is_symlink() && entry.path().extension() != ".gz")
      paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
}

// Files of the machine in turn: a header, a text, a program, each spread over its directory.
std::string makeCorpus() {
  const std::vector<fs::path> kinds[] = {filesBelow("/usr/include"), filesBelow("/usr/share"),
                                         filesBelow("/usr/bin")};
  std::size_t sizes[std::size(kinds)] = {};
  std::string corpus;
  for (std::size_t i = 0; corpus.size() < corpusSize; ++i) {
    const std::size_t kind = static_cast<std::size_t>(std::min_element(sizes, std::end(sizes)) - sizes);
    const std::string piece = qvBench::contentOf(kinds[kind].at(i * 7919 % kinds[kind].size()), largestPiece);
    sizes[kind] += piece.size() + 1;
    corpus += piece;
  }
  corpus.resize(corpusSize);
  return corpus;
}

// The files that both sides read.
struct Files {
  Files() {
    const std::string corpus = makeCorpus();
    qvBench::store(path("corpus"), corpus);
    hash = qvBench::hashOf(corpus);
  }
  [[nodiscard]] std::string path(const char* name) const { return directory.path(name); }
  [[nodiscard]] std::uint64_t hashOf(const char* name) const {
    return qvBench::hashOf(qvBench::contentOf(path(name), corpusSize + 1));
  }

  qvBench::Directory directory{"lzw"};
  std::uint64_t hash = 0;
};

const Files& files() {
  static const Files made;
  return made;
}

double compressed(const std::string& input, const std::string& output) {
  rusage before{};
  rusage after{};
  getrusage(RUSAGE_SELF, &before);
  char chunk[chunkSize];
  ioBufferedStreamInput source;
  ioBufferedStreamOutput target;
  source.openFile(qvString::IString(input.c_str()));
  target.openFile(qvString::IString(output.c_str()));
  target.compress(true);
  while (const int count = source.readData(chunk, chunkSize)) target.writeData(chunk, count);
  source.close();
  target.close();
  getrusage(RUSAGE_SELF, &after);
  return target.good() ? seconds(after) - seconds(before) : -1;
}

double expanded(const std::string& input, const std::string& output) {
  rusage before{};
  rusage after{};
  getrusage(RUSAGE_SELF, &before);
  char chunk[chunkSize];
  ioBufferedStreamInput source;
  ioBufferedStreamOutput target;
  source.openFile(qvString::IString(input.c_str()));
  source.compress(true);
  target.openFile(qvString::IString(output.c_str()));
  while (const int count = source.readData(chunk, chunkSize)) target.writeData(chunk, count);
  source.close();
  target.close();
  getrusage(RUSAGE_SELF, &after);
  return target.good() ? seconds(after) - seconds(before) : -1;
}

// Both directions are proved by what comes out of a round trip, once.
template <class Compress, class Expand>
void measure(benchmark::State& state, bool expand, Compress compress, Expand decompress, const char* name) {
  const std::string corpus = files().path("corpus");
  const std::string stream = files().path(name);
  static const std::uint64_t hash = [&] {
    const std::string copy = files().path("copy");
    return compress(corpus, stream) > 0 && decompress(stream, copy) > 0 ? files().hashOf("copy") : 0;
  }();
  if (hash != files().hash) return state.SkipWithError("what was expanded is not what was compressed");
  for (auto _ : state)
    state.SetIterationTime(expand ? decompress(stream, "/dev/null") : compress(corpus, "/dev/null"));
  state.counters["size"] = static_cast<double>(fs::file_size(stream));
  qvBench::setResult(state, hash);
}

void once(benchmark::internal::Benchmark* benchmark) {
  benchmark->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
}

void base(benchmark::State& state, bool expand) { measure(state, expand, compressed, expanded, "base.Z"); }
BENCHMARK_CAPTURE(base, decode, true)->Name("LZW decode/Base")->Apply(once);
BENCHMARK_CAPTURE(base, encode, false)->Name("LZW encode/Base")->Apply(once);

#ifdef BENCH_Ncompress
// A process with its output in a file. Returns its processor time.
double run(const char* program, const std::string& input, const std::string& output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const char* const words[] = {program, "-c", input.c_str(), nullptr};
  pid_t child = -1;
  const int failed =
      posix_spawn(&child, program, &actions, nullptr, const_cast<char* const*>(words), environ);
  posix_spawn_file_actions_destroy(&actions);
  rusage usage{};
  int status = 0;
  if (failed || wait4(child, &status, 0, &usage) != child || status != 0) return -1;
  return seconds(usage);
}

void ncompress(benchmark::State& state, bool expand) {
  measure(
      state, expand, [](const auto& input, const auto& output) { return run(COMPRESS, input, output); },
      [](const auto& input, const auto& output) { return run(UNCOMPRESS, input, output); }, "peer.Z");
}
BENCHMARK_CAPTURE(ncompress, decode, true)->Name("LZW decode/Ncompress")->Apply(once);
BENCHMARK_CAPTURE(ncompress, encode, false)->Name("LZW encode/Ncompress")->Apply(once);
#endif

} // namespace
