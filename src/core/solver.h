#pragma once

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace torvane {

class StateVariable;
class ZelBenchTop;
class ZelModel;

/// A step overflowed or left a state that is not finite. The message names the state and the time;
/// the states keep the values they had.
class SolverOverflow : public std::overflow_error {
 public:
  using std::overflow_error::overflow_error;
};

/// Integrates all states of a model together: classical fourth-order Runge-Kutta with a fixed step.
/// Every evaluation runs the model's Derivatives first and the time-driven objects after it.
class ZelSolver {
 public:
  /// Step h in seconds; maxOrder is the largest number of states. Attaches itself to the bench.
  ZelSolver(ZelBenchTop& bench, double h, ZelModel& model, int maxOrder);
  ZelSolver(const ZelSolver&) = delete;
  ZelSolver& operator=(const ZelSolver&) = delete;

  /// Registers a state and sets it to its initial value; one too many is a fatal error.
  void AddStateVar(StateVariable& state);

  /// Puts every state back to its initial value; the time stays.
  void Reset();

  /// Steps while the bench's time is below tEnd: ends at the first step boundary at or after it.
  /// Throws SolverOverflow after the step in which a floating-point overflow arose.
  void RunUntil(double tEnd);

  double Step() const { return h_; }
  std::int32_t Count() const { return count_; }

 private:
  void RkStep(double t);
  void Evaluate(double t);
  [[noreturn]] void ThrowOverflow() const;

  ZelBenchTop& bench_;
  double h_;
  ZelModel& model_;
  std::int32_t maxOrder_;
  std::int32_t count_ = 0;
  // Sized once at construction: a step allocates nothing.
  std::vector<StateVariable*> states_;
  std::vector<double> startValues_;
  std::vector<double> slopeSum_;
};

}  // namespace torvane
