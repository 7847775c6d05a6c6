#pragma once

#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/overflow_flag.h"

namespace torvane {

class StateVariable;
class TimeDriven;
class Variable;
class ZelBenchTop;

/// A step overflowed or left a state that is not finite, or a signal grew beyond what an instrument
/// can hold. The message names what went first, of what instruments offer, with its value as they
/// show it, and the time; the states keep the values they had.
class SolverOverflow : public std::overflow_error {
 public:
  using std::overflow_error::overflow_error;
};

/// Clears what OverflowRaised tells.
void ClearOverflowFlag();

/// Throws SolverOverflow when an offered signal, as it is or as instruments show it, is not finite
/// or is larger than the given number: what an instrument stores of it in single precision would
/// not be a number any more.
void CheckSignals(const ZelBenchTop& bench, double largest = std::numeric_limits<float>::max());

/// Follows one step of the solver and finds what overflows in it first. Within one evaluation
/// signals come before slopes, both in the order of their registration.
class OverflowWatch {
 public:
  explicit OverflowWatch(const ZelBenchTop& bench) : bench_(bench) {}

  /// A step begins; what was found before is forgotten.
  void Begin();
  /// To be called after each part of the step: the equations, one time-driven object, the new
  /// values of the states.
  void Equations();
  void Object(const TimeDriven& object);
  void States();

  /// What went first in the last step, for a message; empty when nothing did or it was taken
  /// before.
  std::string TakeFound() { return std::exchange(found_, {}); }

 private:
  bool FindSignal();
  bool FindSlope();
  void Blame(const Variable& variable, const char* prefix = "");

  const ZelBenchTop& bench_;
  std::vector<double> before_;  ///< of the bench's variables, when the step began
  std::string found_;
};

/// The same after a step that nobody watched: a source that cannot give a number at time t, else
/// what is not finite now, else what is largest.
std::string FindOverflowAfterwards(const ZelBenchTop& bench, double t);

}  // namespace torvane
