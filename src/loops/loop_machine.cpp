#include "loops/loop_machine.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/text.h"

namespace torvane::loops {

LoopMachine::LoopMachine(const LoopPlan& plan)
    : plan_(plan),
      evaluation_(plan.Evaluation.data()),
      between_(plan.Between.data()),
      registers_(static_cast<std::size_t>(plan.Registers)),
      states_(plan.States.size()),
      clocks_(plan.Clocks.size()),
      earliest_(EarliestSample()) {
  Clear();
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

std::vector<Problem> LoopMachine::Try(const std::vector<double>& constants) {
  for (std::size_t i = 0; i < constants.size(); ++i) {
    Register(plan_.Constants[i].Register) = plan_.Constants[i].InLoop(constants[i]);
  }
  Run(plan_.AtRun.data(), registers_.data(), frame_);
  std::vector<Problem> found;
  for (const LoopPlan::Derived& number : plan_.Follow) {
    if (std::isfinite(Register(number.Register))) continue;
    found.push_back({number.Where, Quoted(number.Name) + " comes to no number"});
  }
  // Of what is no number nothing more can be said.
  if (!found.empty()) return found;
  CheckClocks(found);
  CheckBlocks(found);
  return found;
}

void LoopMachine::CheckClocks(std::vector<Problem>& found) const {
  for (const LoopPlan::Clock& clock : plan_.Clocks) {
    const double period = Register(clock.Period);
    if (!(period > 0.0)) {
      found.push_back(
          {clock.Where, "the sample period is " + FormatEdit(period) + " s; it must be above 0"});
    } else if (period < plan_.Step) {
      found.push_back(
          {clock.Where,
           "the sample period is shorter than the step: samples come with the step's evaluations",
           true});
    }
    if (!(Register(clock.Start) >= 0.0)) {
      found.push_back({clock.Where, "the first sample must not come before time 0"});
    }
  }
}

void LoopMachine::CheckBlocks(std::vector<Problem>& found) const {
  std::size_t remembered = 0;
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    const Place where = plan_.Blocks[i].Where;
    const auto named = [&](const char* text) { return plan_.Blocks[i].Name + ": " + text; };
    if (const char* const fault = blocks_[i]->Fault()) {
      found.push_back({where, named(fault)});
      continue;
    }
    if (const char* const doubt = blocks_[i]->Doubt()) found.push_back({where, named(doubt), true});
    const std::size_t before = remembered;
    remembered += blocks_[i]->Remembered();
    if (remembered > MaxRemembered && before <= MaxRemembered) {
      found.push_back({where, "the loop's dead times are longer than " +
                                  std::to_string(MaxRemembered) +
                                  " steps of the solver altogether"});
    }
  }
}

std::vector<Problem> LoopMachine::Prepare(const std::vector<double>& constants) {
  const std::vector<double> before = registers_;
  std::vector<Problem> found = Try(constants);
  if (HasErrors(found)) {
    std::copy(before.begin(), before.end(), registers_.begin());
    return found;
  }
  for (std::size_t i = 0; i < clocks_.size(); ++i) {
    clocks_[i].SetPeriod(Register(plan_.Clocks[i].Period));
  }
  for (const auto& block : blocks_) block->Prepare();
  constants_ = constants;
  doubtful_ = !std::all_of(registers_.begin(), registers_.end(),
                           [](double number) { return std::isfinite(number); });
  return found;
}

void LoopMachine::Clear() {
  std::fill(registers_.begin(), registers_.end(), 0.0);
  for (const auto& [reg, value] : plan_.Numbers) Register(reg) = value;
}

void LoopMachine::Begin(double now) {
  Clear();
  for (const auto& block : blocks_) block->Reset();
  Prepare(std::vector<double>(constants_));
  for (std::size_t i = 0; i < clocks_.size(); ++i) {
    clocks_[i].StartAt(now + Register(plan_.Clocks[i].Start));
  }
  earliest_ = EarliestSample();
  due_ = false;
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

void LoopMachine::UpdateBlock(std::size_t index) {
  const LoopPlan::Block& block = plan_.Blocks[index];
  const bool sampled = block.Type->When == BlockType::Timing::Sampled;
  if (sampled && !clocks_[static_cast<std::size_t>(block.Clock)].SampleDue()) return;
  blocks_[index]->Update(frame_.Now);
}

void LoopMachine::DropTraces() {
  for (const auto& block : blocks_) block->Reset();
  for (State& state : states_) state.PendingSet = false;
  frame_.Pending = false;
}

std::optional<std::string> LoopMachine::FindNotFinite() const {
  const auto told = [this](int reg, const std::string& name) -> std::optional<std::string> {
    const double value = Register(reg);
    if (std::isfinite(value)) return {};
    return name + (std::isnan(value) ? " is not a number" : " is infinite");
  };
  for (const LoopPlan::Signal& signal : plan_.Signals) {
    if (auto found = told(signal.Register, "signal " + Quoted(signal.Name))) return found;
  }
  for (const LoopPlan::Block& block : plan_.Blocks) {
    for (const auto& registers : {block.Numbers.Inputs, block.Numbers.Outputs}) {
      for (const int reg : registers) {
        if (auto found = told(reg, "what block " + Quoted(block.Name) + " works on")) return found;
      }
    }
  }
  return {};
}

void LoopMachine::Carry(Carried& carried) {
  for (ControllerClock& clock : clocks_) {
    carried.Keep(clock);
    carried.Period(clock.Period());
  }
  carried.Keep(earliest_);
  carried.Keep(due_);
  carried.Keep(frame_.Pending);
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    for (const int reg : plan_.Blocks[i].Numbers.Outputs) carried.Number(Register(reg));
    blocks_[i]->Carry(carried);
  }
}

void LoopMachine::FollowStates() {
  TakeStates();
  for (const auto& block : blocks_) block->FollowStates();
}

}  // namespace torvane::loops
