// Initializer: one unit of ordered start-up and shut-down work, run when the host says so.
#pragma once

#include "Base/Utility/qvUtilError.h"

namespace qvUtil {

/// Base of start-up units, which are objects with static storage duration. Each registers itself when it is
/// constructed. The host runs all that have registered with `initializeAll`, again after it has loaded more
/// modules, and ends them with `finalizeAll`.
///
/// A unit must live until `finalizeAll`: its destructor does not unregister it. Dependencies must not form a
/// cycle, or `initializeAll` never ends. All of this belongs to one thread: the loader's, then the host's
/// main.
class QV_BASE_API Initializer {
public:
  /// Registers this unit.
  Initializer();
  /// Copies the weight. The copy is not registered.
  Initializer(const Initializer& other) noexcept;
  Initializer& operator=(const Initializer& other) noexcept;

  /// The unit's start-up work.
  virtual Error initialize() = 0;

protected:
  /// The unit's shut-down work; nothing by default. Also called if `initialize` failed.
  virtual void finalize();

public:
  virtual ~Initializer();

  /// The ordering weight: 0 until dependencies exist, then the number of paths by which this unit was
  /// reached.
  [[nodiscard]] int getCount() const noexcept { return count_; }

  /// Runs every unit that has registered since the last call, dependencies first; without dependencies, up to
  /// 32 units run in the order of registration. A failure stops nothing. @return the last failure, else
  /// success.
  static Error initializeAll();
  /// Calls `finalize` on every unit that was run, in the exact reverse of the order of all runs.
  static void finalizeAll();

protected:
  /// Declares that `other` must run before this unit. To be called by the constructor of a derived class.
  void dependsOn(Initializer* other);

private:
  void addInit();

  const char* sourceFile_; // a label for debuggers: nothing reads it
  int count_;
};

static_assert(sizeof(Initializer) == 3 * sizeof(void*));

} // namespace qvUtil
