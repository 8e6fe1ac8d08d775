// Goes through a packet file from front to back.
#pragma once

#include <cstdint>
#include <limits>

class Input;
class Visitor;

constexpr std::int64_t noLimit = std::numeric_limits<std::int64_t>::max();

/// Shows a visitor the file, and each that follows it, up to `limit` packets. Damage, once what stands before
/// it was shown, is reported and ends the walk.
void walk(Input& input, Visitor& visitor, std::int64_t limit = noLimit);
