#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/overflow.h"
#include "core/variable.h"

namespace torvane {

class Instrument;
class ZelBenchTop;
class ZelModel;

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
  /// Throws SolverOverflow after the step in which a floating-point overflow arose. Steps from huge
  /// values are watched one by one: they are the ones that can tell what overflows first.
  virtual void RunUntil(double tEnd);

  /// What RunAhead has done.
  struct Ahead {
    double Stop = 0.0;  ///< at this time an instrument is to be served; may lie beyond the end
    int Samples = 0;    ///< that were taken on the way, by tape
  };
  /// Steps as RunUntil to the next time at which an instrument must be served at once, at most to
  /// tEnd. On the way the bench's instruments, or the only one that is served, may take at most so
  /// many samples.
  virtual Ahead RunAhead(double tEnd, int mostSamples, Instrument* only);

  double Step() const { return h_; }
  std::int32_t Count() const { return count_; }
  /// In the order of registration.
  std::span<StateVariable* const> States() const {
    return {states_.data(), static_cast<std::size_t>(count_)};
  }

 protected:
  /// From states whose magnitudes add up to less than this no step of a model reaches the largest
  /// number: what overflows from there has its cause outside the states.
  static constexpr double Huge = 1e100;

  /// Ends the step that began at t: time variable, bench time, and the exception when an overflow
  /// was raised or a state is not finite. Whether the next step is to be watched follows from how
  /// large the states are.
  void EndStep(double t);

  /// A state is so large that the next step may overflow: it is to be a watched one.
  bool NearOverflow() const { return nearOverflow_; }
  void WatchedStep(double t);

  ZelBenchTop& bench_;
  const double h_;
  ZelModel& model_;

 private:
  template <class Evaluate>
  void Integrate(double t, Evaluate evaluate);
  long double Magnitude() const;
  [[noreturn]] void ThrowOverflow(double t);

  std::int32_t maxOrder_;
  std::int32_t count_ = 0;
  // Sized once at construction: a step allocates nothing.
  std::vector<StateVariable*> states_;
  std::vector<State*> numbers_;  // theirs, which are nearer
  std::vector<double> startValues_;
  std::vector<double> slopeSum_;
  bool nearOverflow_ = false;
  OverflowWatch watch_;
};

}  // namespace torvane
