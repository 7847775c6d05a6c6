#include "loops/loop_machine.h"

#include <algorithm>
#include <limits>

namespace torvane::loops {

LoopMachine::LoopMachine(const LoopPlan& plan)
    : plan_(plan),
      evaluation_(plan.Evaluation.data()),
      between_(plan.Between.data()),
      registers_(static_cast<std::size_t>(plan.Registers)),
      states_(plan.States.size()),
      clocks_(plan.Clocks.size()),
      earliest_(EarliestSample()) {
  for (const auto& [reg, value] : plan.Numbers) Register(reg) = value;
  blocks_.reserve(plan.Blocks.size());
  for (const LoopPlan::Block& block : plan.Blocks) {
    const ControllerClock* const clock =
        block.Clock < 0 ? nullptr : &clocks_[static_cast<std::size_t>(block.Clock)];
    const Wiring wiring(block.Numbers, registers_.data(), static_cast<int>(states_.size()));
    blocks_.push_back(block.Type->Code.Make({wiring, clock, plan.Step}));
    blockAddresses_.push_back(blocks_.back().get());
  }
  frame_.Blocks = blockAddresses_.data();
  frame_.Clocks = clocks_.data();
  frame_.States = states_.data();
  frame_.Now.Step = plan.Step;
}

void LoopMachine::Prepare() {
  Run(plan_.AtRun.data(), registers_.data(), frame_);
  for (std::size_t i = 0; i < clocks_.size(); ++i) {
    clocks_[i].SetPeriod(Register(plan_.Clocks[i].Period));
  }
  for (const auto& block : blocks_) block->Prepare();
}

void LoopMachine::StartClock(std::size_t index, double t) {
  clocks_[index].StartAt(t);
  earliest_ = EarliestSample();
}

void LoopMachine::Tick(double t) {
  due_ = false;
  for (ControllerClock& clock : clocks_) {
    clock.Tick(t);
    due_ = due_ || clock.SampleDue();
  }
  earliest_ = EarliestSample();
}

double LoopMachine::EarliestSample() const {
  double earliest = std::numeric_limits<double>::infinity();
  for (const ControllerClock& clock : clocks_) earliest = std::min(earliest, clock.NextSample());
  return earliest;
}

void LoopMachine::TakeStates() {
  std::transform(states_.begin(), states_.end(), registers_.begin(),
                 [](const State& state) { return state.Value; });
}

void LoopMachine::LeaveStates() {
  for (std::size_t i = 0; i < states_.size(); ++i) states_[i].Value = registers_[i];
  LeaveSlopes();
}

void LoopMachine::LeaveSlopes() {
  const double* const slopes = Slopes();
  for (std::size_t i = 0; i < states_.size(); ++i) states_[i].Derivative = slopes[i];
}

void LoopMachine::Reset(ResetKind kind, double now) {
  TakeStates();
  for (const auto& block : blocks_) block->Reset(kind);
  if (kind == ResetKind::States) return;
  for (std::size_t i = 0; i < clocks_.size(); ++i) StartClock(i, now);
  due_ = false;
}

}  // namespace torvane::loops
