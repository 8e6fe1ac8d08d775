// Formatting of numbers, beside the C library's.
#include "Base/String/qvStringFormat.h"
#include "bench/qvBench.h"

#include <cstdio>

namespace {

using Format = int (*)(char* buffer, std::size_t size, const char* format, ...);

struct Text {
  char chars[100];
};

int ints(Format format, Text& text, int i) {
  return format(text.chars, sizeof text, "%d %d of %d, %5d", i, -i, 1000 * i, i);
}

int intsAndDouble(Format format, Text& text, int i) {
  return format(text.chars, sizeof text, "%d of %d: %f", i, 1000 * i, i / 7.0);
}

void measure(benchmark::State& state, int (*print)(Format, Text&, int), Format format) {
  Text text;
  int i = 0;
  for (auto _ : state) {
    print(format, text, i = (i + 1) & 0xFFFF);
    benchmark::ClobberMemory();
  }
  std::uint64_t result = 0;
  for (i = 0; i < 0x10000; ++i)
    result = qvBench::mixed(result,
                            qvBench::hashOf({text.chars, static_cast<std::size_t>(print(format, text, i))}));
  qvBench::setResult(state, result);
}

BENCHMARK_CAPTURE(measure, ints, ints, QL_snprintf)->Name("format ints/Base");
BENCHMARK_CAPTURE(measure, ints, ints, std::snprintf)->Name("format ints/Snprintf");
BENCHMARK_CAPTURE(measure, intsAndDouble, intsAndDouble, QL_snprintf)->Name("format ints and a double/Base");
BENCHMARK_CAPTURE(measure, intsAndDouble, intsAndDouble, std::snprintf)
    ->Name("format ints and a double/Snprintf");

} // namespace
