// A thousand words over fifty options, beside the C library's long options.
#include "Base/OS/qvOSGetOpt.h"
#include "bench/qvBench.h"

#include <getopt.h>

#include <string>
#include <vector>

namespace {

constexpr int optionCount = 50;
constexpr int wordCount = 1000;

// Names as programs have them: a few words that many share.
std::vector<std::string> makeNames() {
  const char* const verbs[] = {"input", "output", "enable", "disable", "set"};
  const char* const nouns[] = {"color",  "layer",   "texture", "resolution", "camera",
                               "filter", "profile", "shadow",  "quality",    "format"};
  std::vector<std::string> names;
  for (int i = 0; i < optionCount; ++i) names.push_back(std::string(verbs[i % 5]) + "-" + nouns[i / 5]);
  return names;
}

const std::vector<std::string> names = makeNames();

// Every second word is an argument; every third name is shortened.
std::vector<std::string> makeWords() {
  std::vector<std::string> words;
  for (int i = 0; i < wordCount / 2; ++i) {
    const std::string& name = names[static_cast<std::size_t>(i) * 17 % optionCount];
    words.push_back("--" + (i % 3 ? name : name.substr(0, name.size() - 2)));
    words.push_back(std::to_string(i));
  }
  return words;
}

const std::vector<std::string> words = makeWords();

std::vector<char*> pointers() {
  static std::vector<std::string> copy;
  copy = words;
  std::vector<char*> argv;
  for (std::string& word : copy) argv.push_back(word.data());
  return argv;
}

long readWords(qvOS::GetOpt& options) {
  long sum = 0;
  while (const qvOS::GetOpt::result* result = options.getOpt())
    sum += options.getResultIndex(result) + static_cast<long>(options.getResultArg(result, 0).length());
  return sum;
}

void base(benchmark::State& state) {
  qvOS::GetOpt options;
  for (const std::string& name : names) options.addOption(name.c_str(), "string");
  const std::vector<char*> argv = pointers();
  long sum = 0;
  for (auto _ : state) {
    options.initialize(wordCount, argv.data());
    sum = readWords(options);
  }
  qvBench::setResult(state, static_cast<std::uint64_t>(sum));
}

void getoptLong(benchmark::State& state) {
  std::vector<option> options;
  for (const std::string& name : names) options.push_back({name.c_str(), required_argument, nullptr, 0});
  options.push_back({});
  std::string program = "program";
  std::vector<char*> argv = pointers();
  argv.insert(argv.begin(), program.data());
  argv.push_back(nullptr);
  long sum = 0;
  for (auto _ : state) {
    sum = 0;
    optind = 0;
    int index = 0;
    while (getopt_long(wordCount + 1, argv.data(), "", options.data(), &index) == 0)
      sum += index + static_cast<long>(std::string(optarg).size());
  }
  qvBench::setResult(state, static_cast<std::uint64_t>(sum));
}

BENCHMARK(base)->Name("read 1000 words/Base");
BENCHMARK(getoptLong)->Name("read 1000 words/GetoptLong");

} // namespace
