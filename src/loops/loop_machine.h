#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/carried.h"
#include "core/variable.h"
#include "library/d_controller.h"
#include "loops/block.h"
#include "loops/instruction.h"
#include "loops/loop_plan.h"

namespace torvane::loops {

/// A loop's numbers and what moves them: registers, blocks and clocks of one model.
///
/// States are integrated among the registers; what the bench knows of them (States) is brought up
/// to date by LeaveStates and read by TakeStates.
class LoopMachine {
 public:
  /// The plan outlives the machine.
  explicit LoopMachine(const LoopPlan& plan);
  LoopMachine(const LoopMachine&) = delete;
  LoopMachine& operator=(const LoopMachine&) = delete;

  double& Register(int index) { return registers_[static_cast<std::size_t>(index)]; }
  double Register(int index) const { return registers_[static_cast<std::size_t>(index)]; }
  State& StateOf(std::size_t index) { return states_[index]; }
  std::size_t StateCount() const { return states_.size(); }
  const ControllerClock& ClockAt(std::size_t index) const { return clocks_[index]; }

  /// Constants have these values, in the plan's order: computes what depends on them alone, and
  /// finds what is wrong with it or doubtful.
  std::vector<Problem> Try(const std::vector<double>& constants);
  /// The same, for the run to come. Where something is wrong, all stays as it was.
  std::vector<Problem> Prepare(const std::vector<double>& constants);

  /// Everything begins anew at time `now`, with the constants that it was prepared for.
  void Begin(double now);

  /// A step of the solver begins at t; sources have their values.
  void BeginStep(double t) {
    frame_.Now.StepStart = t;
    Run(plan_.AtStep.data(), registers_.data(), frame_);
  }
  /// One evaluation: the equations at time t, and behind them blocks and clocks. A call to it,
  /// which the compiler prefers where files are joined, is a twentieth of a small loop's step.
  [[gnu::always_inline]] void Evaluate(double t) {
    At(t);
    Run(due_ ? evaluation_ : between_, registers_.data(), frame_);
    TickClocks(t);
  }
  /// The same in two.
  void EvaluateEquations(double t) {
    At(t);
    Run(plan_.Equations.data(), registers_.data(), frame_);
  }
  void UpdateBlock(std::size_t index);
  void UpdateClocks() { TickClocks(frame_.Now.Time); }

  /// The states' values and slopes, one behind the other.
  double* Values() { return registers_.data(); }
  const double* Slopes() const { return registers_.data() + states_.size(); }
  /// An equation gave a state a value for the end of the step, since it was asked last.
  bool TakePending() { return std::exchange(frame_.Pending, false); }
  /// What an evaluation from outside a run, of a loop that begins, has left in blocks and states.
  void DropTraces();

  /// What is not a number or without end among the signals, and what goes into and out of blocks;
  /// nullopt when all are finite.
  std::optional<std::string> FindNotFinite() const;
  /// Something that depends on constants alone is not finite, and may make a signal so.
  bool Doubtful() const { return doubtful_; }

  void TakeStates();
  void LeaveStates();
  /// The slopes alone, for a solver that integrates States itself.
  void LeaveSlopes();

  /// Lists what a step carries on to the next, states apart.
  void Carry(Carried& carried);
  /// States were moved from outside.
  void FollowStates();

 private:
  void Clear();
  void At(double t) {
    frame_.Now.Time = t;
    registers_[static_cast<std::size_t>(plan_.Time)] = t;
  }

  // Most evaluations come before any sample is due.
  void TickClocks(double t) {
    if (t >= earliest_ || due_) Tick(t);
  }
  void Tick(double t);
  void CheckClocks(std::vector<Problem>& found) const;
  void CheckBlocks(std::vector<Problem>& found) const;
  double EarliestSample() const;

  const LoopPlan& plan_;
  const Instruction* const evaluation_;
  const Instruction* const between_;
  std::vector<double> registers_;
  std::vector<double> constants_;  ///< what it was prepared for
  std::vector<State> states_;
  std::vector<ControllerClock> clocks_;
  std::vector<std::unique_ptr<Block>> blocks_;
  std::vector<Block*> blockAddresses_;
  Frame frame_;
  double earliest_;  ///< of the clocks' next samples
  bool due_ = false;
  bool doubtful_ = false;
};

}  // namespace torvane::loops
