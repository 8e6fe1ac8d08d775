// A package of ten thousand files of 2 KB, beside a zip archive that stores them as they are.
#include "Base/IO/ioBufferedStream.h"
#include "Base/IO/ioPackageFile.h"
#include "bench/qvBench.h"
#include "bench/qvBenchDirectory.h"

#include <algorithm>
#include <memory>

#ifdef BENCH_Libzip
#include <zip.h>
#endif

namespace {

constexpr std::size_t fileCount = 10'000;
constexpr std::size_t fileSize = 2048;

// The files, and the order in which they are read.
struct Sources {
  Sources() {
    const std::vector<std::uint64_t> numbers = qvBench::randomNumbers(fileCount * fileSize / 8, 7);
    const char* const bytes = reinterpret_cast<const char*>(numbers.data());
    for (std::size_t i = 0; i < fileCount; ++i) {
      names.push_back("textures/set" + std::to_string(i % 100) + "/image" + std::to_string(i) + ".dat");
      paths.push_back(directory.path("file" + std::to_string(i)));
      qvBench::store(paths.back(), {bytes + i * fileSize, fileSize});
      order.push_back(i);
    }
    std::shuffle(order.begin(), order.end(), std::mt19937_64(8));
  }

  qvBench::Directory directory{"package"};
  std::vector<std::string> names;
  std::vector<std::string> paths;
  std::vector<std::size_t> order;
};

const Sources& sources() {
  static const Sources made;
  return made;
}

// Wide text is what names files and entries here, as bytes are for the peer.
std::vector<qvString::IString> widened(const std::vector<std::string>& texts) {
  std::vector<qvString::IString> wide;
  for (const std::string& text : texts) wide.emplace_back(text.c_str());
  return wide;
}

class Base {
public:
  Base()
      : path_(sources().directory.path("package").c_str()),
        paths_(widened(sources().paths)),
        names_(widened(sources().names)) {}

  [[nodiscard]] bool make() const {
    ioPackageFile package;
    bool good = !package.open(path_);
    for (std::size_t i = 0; i < fileCount; ++i) good = !package.addEntry(paths_[i], names_[i], false) && good;
    return !package.update() && good;
  }
  bool open() {
    package_ = std::make_unique<ioPackageFile>();
    return !package_->open(path_) && package_->size() == int{fileCount};
  }
  bool read(std::size_t i, char (&bytes)[fileSize]) {
    ioBufferedStreamInput stream;
    stream.openPackageFileEntry(package_->getEntry(names_[i]));
    const bool whole = stream.readData(bytes, fileSize) == int{fileSize};
    stream.close();
    return whole;
  }

private:
  qvString::IString path_;
  std::vector<qvString::IString> paths_;
  std::vector<qvString::IString> names_;
  std::unique_ptr<ioPackageFile> package_;
};

#ifdef BENCH_Libzip
class Libzip {
public:
  Libzip() : path_(sources().directory.path("zip")) {}

  [[nodiscard]] bool make() const {
    zip_t* const archive = zip_open(path_.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    if (!archive) return false;
    bool good = true;
    for (std::size_t i = 0; i < fileCount; ++i) {
      zip_source_t* const source = zip_source_file(archive, sources().paths[i].c_str(), 0, -1);
      const zip_int64_t index = zip_file_add(archive, sources().names[i].c_str(), source, ZIP_FL_ENC_UTF_8);
      good = index >= 0 &&
             zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0) == 0 &&
             good;
    }
    return zip_close(archive) == 0 && good;
  }
  bool open() {
    archive_.reset(zip_open(path_.c_str(), ZIP_RDONLY, nullptr));
    return archive_ && zip_get_num_entries(archive_.get(), 0) == zip_int64_t{fileCount};
  }
  bool read(std::size_t i, char (&bytes)[fileSize]) {
    zip_file_t* const file = zip_fopen(archive_.get(), sources().names[i].c_str(), 0);
    const bool whole = file && zip_fread(file, bytes, fileSize) == zip_int64_t{fileSize};
    return file && zip_fclose(file) == 0 && whole;
  }

private:
  struct Discard {
    void operator()(zip_t* archive) const { zip_discard(archive); }
  };
  std::string path_;
  std::unique_ptr<zip_t, Discard> archive_;
};
#endif

void require(benchmark::State& state, bool good) {
  if (!good) state.SkipWithError("the package failed");
}

// The bytes of all entries in the order of `sources`.
template <class Who>
std::uint64_t readAll(benchmark::State& state, Who& who) {
  std::uint64_t result = 0;
  char bytes[fileSize];
  for (const std::size_t i : sources().order) {
    require(state, who.read(i, bytes));
    std::uint64_t sample = 0;
    std::memcpy(&sample, bytes + i % (fileSize - sizeof sample), sizeof sample);
    result = qvBench::mixed(result, sample);
  }
  return result;
}

template <class Who>
void add(benchmark::State& state) {
  Who who;
  for (auto _ : state) {
    state.PauseTiming();
    sources().directory.remove("package");
    sources().directory.remove("zip");
    state.ResumeTiming();
    require(state, who.make());
  }
  require(state, who.open());
  qvBench::setResult(state, readAll(state, who));
}

template <class Who>
void open(benchmark::State& state) {
  Who who;
  require(state, who.make());
  for (auto _ : state) require(state, who.open());
  qvBench::setResult(state, readAll(state, who));
}

template <class Who>
void read(benchmark::State& state) {
  Who who;
  require(state, who.make() && who.open());
  std::uint64_t result = 0;
  for (auto _ : state) result = readAll(state, who);
  qvBench::setResult(state, result);
}

#define BENCH_PACKAGE(Who)                                                                                   \
  BENCHMARK(add<Who>)->Name("package add/" #Who)->Unit(benchmark::kMillisecond)->Iterations(1);              \
  BENCHMARK(open<Who>)->Name("package open/" #Who)->Unit(benchmark::kMillisecond);                           \
  BENCHMARK(read<Who>)->Name("package read/" #Who)->Unit(benchmark::kMillisecond)

BENCH_PACKAGE(Base);
#ifdef BENCH_Libzip
BENCH_PACKAGE(Libzip);
#endif

} // namespace
