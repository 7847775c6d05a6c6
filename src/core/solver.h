#pragma once

#include <cstdint>
#include <span>
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
  virtual ~ZelSolver() = default;

  /// Registers a state and sets it to its initial value; one too many is a fatal error.
  void AddStateVar(StateVariable& state);

  /// Puts every state back to its initial value; the time stays.
  void Reset();

  /// Steps while the bench's time is below tEnd: ends at the first step boundary at or after it.
  /// Throws SolverOverflow after the step in which a floating-point overflow arose.
  virtual void RunUntil(double tEnd);

  double Step() const { return h_; }
  std::int32_t Count() const { return count_; }
  /// In the order of registration.
  std::span<StateVariable* const> States() const {
    return {states_.data(), static_cast<std::size_t>(count_)};
  }

 protected:
  /// The combine of a step: products and sums in extended precision, the result a double.
  static double Combine(double start, double slopeSum, double h) {
    return static_cast<double>(static_cast<long double>(start) +
                               static_cast<long double>(slopeSum) * static_cast<long double>(h) *
                                   (1.0L / 6.0L));
  }

  /// Forgets an overflow that an instrument raised since the last step.
  static void ClearOverflow();

  /// Ends the step that began at t: time variable, bench time, and the exception when an overflow
  /// was raised or the probe, the sum of zero times each state, is not zero.
  void EndStep(double t, double probe);

  ZelBenchTop& bench_;
  const double h_;

 private:
  void RkStep(double t);
  [[noreturn]] void ThrowOverflow() const;

  ZelModel& model_;
  std::int32_t maxOrder_;
  std::int32_t count_ = 0;
  // Sized once at construction: a step allocates nothing.
  std::vector<StateVariable*> states_;
  std::vector<double> startValues_;
  std::vector<double> slopeSum_;
};

}  // namespace torvane
