// The linear congruential generator that POSIX prescribes: state = (multiplier * state + addend) mod 2^48.
// Built only where the C library has no such functions.
#include "Base/Utility/qvUtilDrand48.h"

#include <cstdint>

namespace {

constexpr std::uint64_t usualMultiplier = 0x5DEECE66D;
constexpr std::uint64_t usualAddend = 0xB;
constexpr std::uint64_t mask = 0xFFFF'FFFF'FFFF;

std::uint64_t multiplier = usualMultiplier;
std::uint64_t addend = usualAddend;
std::uint64_t state = 0;

std::uint64_t joined(const unsigned short* pieces) noexcept {
  return pieces[0] | std::uint64_t{pieces[1]} << 16 | std::uint64_t{pieces[2]} << 32;
}

void split(std::uint64_t value, unsigned short* pieces) noexcept {
  for (int i = 0; i < 3; ++i) pieces[i] = static_cast<unsigned short>(value >> 16 * i);
}

std::uint64_t next(std::uint64_t from) noexcept { return (multiplier * from + addend) & mask; }

std::uint64_t next() noexcept { return state = next(state); }

std::uint64_t next(unsigned short* pieces) noexcept {
  const std::uint64_t value = next(joined(pieces));
  split(value, pieces);
  return value;
}

void start(std::uint64_t from) noexcept {
  state = from;
  multiplier = usualMultiplier;
  addend = usualAddend;
}

double fraction(std::uint64_t value) noexcept { return static_cast<double>(value) * 0x1p-48; }
long positive(std::uint64_t value) noexcept { return static_cast<long>(value >> 17); }
long either(std::uint64_t value) noexcept { return static_cast<std::int32_t>(value >> 16); }

} // namespace

double drand48() noexcept { return fraction(next()); }
double erand48(unsigned short pieces[3]) noexcept { return fraction(next(pieces)); }

long lrand48() noexcept { return positive(next()); }
long nrand48(unsigned short pieces[3]) noexcept { return positive(next(pieces)); }

long mrand48() noexcept { return either(next()); }
long jrand48(unsigned short pieces[3]) noexcept { return either(next(pieces)); }

void srand48(long seed) noexcept { start(std::uint64_t{static_cast<std::uint32_t>(seed)} << 16 | 0x330E); }

unsigned short* seed48(unsigned short pieces[3]) noexcept {
  static unsigned short before[3];
  split(state, before);
  start(joined(pieces));
  return before;
}

void lcong48(unsigned short parameters[7]) noexcept {
  state = joined(parameters);
  multiplier = joined(parameters + 3);
  addend = parameters[6];
}
