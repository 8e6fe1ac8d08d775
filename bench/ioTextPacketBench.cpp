// Text packets of objects that point to each other, beside an archive of text that tracks pointers too. Texts
// are as long as each has them: 16 digits of a double here, 17 there.
#include "bench/ioPacketBench.h"

#ifdef BENCH_BoostSerialization
#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#endif

using namespace qvBench;

namespace {

constexpr std::size_t mostBytesPerObject = 160;

template <class Who>
void add(const std::string& who) {
  const auto once = [&who](const char* what, auto... measured) {
    benchmark::RegisterBenchmark((what + who).c_str(), measured...)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
  };
  once("text packets write, near/", write<Who>, near);
  once("text packets read, near/", read<Who>, near);
  once("text packets write, anywhere/", write<Who>, anywhere);
  once("text packets read, anywhere/", read<Who>, anywhere);
}

const bool added = [] {
  add<Base<ioWriteAscii, mostBytesPerObject>>("Base");
#ifdef BENCH_BoostSerialization
  add<BoostSerialization<boost::archive::text_oarchive, boost::archive::text_iarchive, mostBytesPerObject>>(
      "BoostSerialization");
#endif
  return true;
}();

} // namespace
