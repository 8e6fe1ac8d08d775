// UTF-8 to UTF-16 and back in four scripts, beside ICU.
#include "Base/String/qvStringConvert.h"
#include "bench/qvBench.h"

#include <string>

#ifdef BENCH_ICU
#include <unicode/ustring.h>
#endif

namespace {

using Wide = std::basic_string<qv::WChar>;

struct Script {
  const char* name;
  const char* sentence;
};
const Script scripts[] = {
    {"ASCII", "The quick brown fox jumps over the lazy dog, 12 times. "},
    {"Latin", "Zwölf Boxkämpfer jagen Viktor quer über den großen Sylter Deich. "},
    {"Cyrillic", "Съешь же ещё этих мягких французских булок, да выпей чаю. "},
    {"CJK", "天地玄黃宇宙洪荒日月盈昃辰宿列張寒來暑往秋收冬藏。"},
};

std::string textOf(const Script& script) {
  std::string text;
  while (text.size() < 100'000) text += script.sentence;
  return text;
}

struct Base {
  static std::size_t widen(const std::string& text, Wide& wide) {
    return qvString::UTF8toWCS(text.data(), static_cast<unsigned>(text.size()), wide.data(),
                               static_cast<unsigned>(wide.size()), true);
  }
  static std::size_t narrow(const Wide& wide, std::string& text) {
    return qvString::WCStoUTF8(wide.data(), static_cast<unsigned>(wide.size()), text.data(),
                               static_cast<unsigned>(text.size()));
  }
};

#ifdef BENCH_ICU
struct ICU {
  static std::size_t widen(const std::string& text, Wide& wide) {
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(wide.data(), static_cast<std::int32_t>(wide.size()), &length, text.data(),
                  static_cast<std::int32_t>(text.size()), &status);
    return U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0;
  }
  static std::size_t narrow(const Wide& wide, std::string& text) {
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(text.data(), static_cast<std::int32_t>(text.size()), &length, wide.data(),
                static_cast<std::int32_t>(wide.size()), &status);
    return U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0;
  }
};
#endif

// Both have room for the longest text that could come out.
template <class Who>
void widen(benchmark::State& state, const Script& script) {
  const std::string text = textOf(script);
  Wide wide(text.size(), 0);
  std::size_t length = 0;
  for (auto _ : state) {
    length = Who::widen(text, wide);
    benchmark::ClobberMemory();
  }
  qvBench::setResult(state, qvBench::hashOf({reinterpret_cast<const char*>(wide.data()), 2 * length}));
}

template <class Who>
void narrow(benchmark::State& state, const Script& script) {
  const std::string text = textOf(script);
  Wide wide(text.size(), 0);
  wide.resize(Base::widen(text, wide));
  std::string out(3 * wide.size(), '\0');
  std::size_t length = 0;
  for (auto _ : state) {
    length = Who::narrow(wide, out);
    benchmark::ClobberMemory();
  }
  if (out.substr(0, length) != text) state.SkipWithError("the text did not come back");
  qvBench::setResult(state, qvBench::hashOf({out.data(), length}));
}

template <class Who>
void add(const char* who) {
  for (const Script& script : scripts) {
    const std::string name = script.name;
    benchmark::RegisterBenchmark(("UTF-8 to UTF-16 " + name + "/" + who).c_str(), widen<Who>, script)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(("UTF-16 to UTF-8 " + name + "/" + who).c_str(), narrow<Who>, script)
        ->Unit(benchmark::kMicrosecond);
  }
}

const bool added = [] {
  add<Base>("Base");
#ifdef BENCH_ICU
  add<ICU>("ICU");
#endif
  return true;
}();

} // namespace
