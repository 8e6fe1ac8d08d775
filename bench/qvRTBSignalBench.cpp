// One emit with none, one and ten slots, beside the signals of Boost.
#include "Base/Callback/qvRTBSignal.h"
#include "bench/qvBench.h"

#include <string>

#ifdef BENCH_BoostSignals2
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
  qvBench::setResult(state, static_cast<std::uint64_t>(receiver.total / emits));
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

#ifdef BENCH_BoostSignals2
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
#ifdef BENCH_BoostSignals2
    benchmark::RegisterBenchmark((what + "BoostSignals2").c_str(), boostSignals, slots);
#endif
  }
  return true;
}();

} // namespace
