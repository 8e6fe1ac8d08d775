// What a command and a group remember of their past.
#pragma once

#include "Base/qvBase.h"

#include <cstdint>

namespace qvUndo {

/// Whether something was done or undone, what came last, and whether it may be done or undone any more. A new
/// state is valid and nothing else; one that became invalid stays so.
class State {
public:
  [[nodiscard]] bool hasBeenDone() const noexcept { return has(done); }
  [[nodiscard]] bool hasBeenUndone() const noexcept { return has(undone); }
  [[nodiscard]] bool lastWasDoIt() const noexcept { return has(lastDone); }
  [[nodiscard]] bool lastWasUndoIt() const noexcept { return has(lastUndone); }
  [[nodiscard]] bool isValid() const noexcept { return has(valid); }

  void stateInvalid() noexcept { flags_ &= ~valid; }

protected:
  void stateDone() noexcept { flags_ = (flags_ & ~lastUndone) | done | lastDone; }
  void stateUndone() noexcept { flags_ = (flags_ & ~lastDone) | undone | lastUndone; }

private:
  static constexpr std::uint32_t done = 1;
  static constexpr std::uint32_t undone = 2;
  static constexpr std::uint32_t lastDone = 4;
  static constexpr std::uint32_t lastUndone = 8;
  static constexpr std::uint32_t valid = 16;

  [[nodiscard]] bool has(std::uint32_t flag) const noexcept { return (flags_ & flag) != 0; }

  std::uint32_t flags_ = valid;
};

static_assert(sizeof(State) == 4);

} // namespace qvUndo
