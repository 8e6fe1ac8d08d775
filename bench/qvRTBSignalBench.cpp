// One emit with none, one and ten slots, beside a plain list of functions and the signals of Boost.
#include "Base/Callback/qvRTBSignal.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

#if __has_include(<boost/signals2.hpp>)
#include <boost/signals2.hpp>
#endif

namespace {

struct Receiver {
  long total = 0;
  void take(int value) { total += value; }
};

// Emits as told, and makes sure that every slot was called each time.
template <class Connect, class Emit>
void measure(benchmark::State& state, int slots, Connect connect, Emit emit) {
  Receiver receiver;
  for (int i = 0; i < slots; ++i) connect(receiver);
  long emits = 0;
  for (auto _ : state) {
    emit();
    ++emits;
  }
  if (receiver.total != emits * slots) state.SkipWithError("a slot was not called");
}

void base(benchmark::State& state, int slots) {
  qvRTB::SignalArg<int> signal;
  measure(
      state, slots, [&](Receiver& receiver) { signal.connect(&receiver, &Receiver::take); },
      [&] {
        benchmark::DoNotOptimize(signal);
        signal.emit(1);
      });
}

// What no signal can beat: a list that nobody may touch during the walk.
void plainList(benchmark::State& state, int slots) {
  std::vector<std::function<void(int)>> list;
  measure(
      state, slots,
      [&](Receiver& receiver) { list.emplace_back([&receiver](int value) { receiver.take(value); }); },
      [&] {
        benchmark::DoNotOptimize(list);
        for (const auto& slot : list) slot(1);
      });
}

#if __has_include(<boost/signals2.hpp>)
void boostSignals(benchmark::State& state, int slots) {
  boost::signals2::signal<void(int)> signal;
  measure(
      state, slots,
      [&](Receiver& receiver) { signal.connect([&receiver](int value) { receiver.take(value); }); },
      [&] {
        benchmark::DoNotOptimize(signal);
        signal(1);
      });
}
#endif

const bool registered = [] {
  for (const int slots : {0, 1, 10}) {
    const std::string what = "emit to " + std::to_string(slots) + " slots/";
    benchmark::RegisterBenchmark((what + "Base").c_str(), base, slots);
    benchmark::RegisterBenchmark((what + "PlainList").c_str(), plainList, slots);
#if __has_include(<boost/signals2.hpp>)
    benchmark::RegisterBenchmark((what + "BoostSignals2").c_str(), boostSignals, slots);
#endif
  }
  return true;
}();

} // namespace
