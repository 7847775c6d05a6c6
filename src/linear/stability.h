#pragma once

#include <string>

#include "linear/linear_system.h"

namespace torvane {

/// Whether small changes of a loop die away.
struct Stability {
  /// What becomes of small changes.
  enum class Verdict {
    NoPoles,   ///< there is nothing that could
    Stable,    ///< all do
    Limit,     ///< some neither die away nor grow: integrators, undamped pairs
    Unstable,  ///< some grow; those of an integrator behind an integrator too
  };

  Verdict Is = Verdict::NoPoles;
  std::string Text;  ///< a sentence, which begins with the verdict
};

/// By all poles of the system. An integrator, or an undamped pair, that drives another of its kind
/// grows with time though no pole does: there are fewer eigenvectors than poles then.
Stability StabilityOf(const LinearSystem& system);

}  // namespace torvane
