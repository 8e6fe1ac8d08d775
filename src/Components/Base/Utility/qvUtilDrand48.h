// The 48-bit random numbers of POSIX. A C library that has these functions declares and defines them itself,
// and the library exports them only where it has not; the same seed gives the same numbers everywhere.
//
// All share one state of 48 bits, one multiplier and one addend, and no locks: one thread at a time. The
// three with a parameter keep their state there instead, as three 16-bit pieces, the lowest first. They are
// fit for simulations, and never for keys.
#pragma once

#include "Base/qvBase.h"

#include <cstdlib>

extern "C" {

/// The next number from 0 to below 1, evenly spread.
QV_BASE_API double drand48() noexcept;
QV_BASE_API double erand48(unsigned short state[3]) noexcept;

/// The next number from 0 to 2^31 - 1.
QV_BASE_API long lrand48() noexcept;
QV_BASE_API long nrand48(unsigned short state[3]) noexcept;

/// The next number from -2^31 to 2^31 - 1.
QV_BASE_API long mrand48() noexcept;
QV_BASE_API long jrand48(unsigned short state[3]) noexcept;

/// Starts from the low 32 bits of `seed` in front of 0x330E, with the usual multiplier and addend.
QV_BASE_API void srand48(long seed) noexcept;

/// Starts from the given state, with the usual multiplier and addend.
/// @return the state before, in memory that the next call changes.
QV_BASE_API unsigned short* seed48(unsigned short state[3]) noexcept;

/// Starts from a state, a multiplier (three pieces each) and an addend of 16 bits, in this order.
QV_BASE_API void lcong48(unsigned short parameters[7]) noexcept;

} // extern "C"
