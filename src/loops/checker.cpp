#include "loops/checker.h"

#include <algorithm>
#include <set>

#include "loops/generator.h"

namespace torvane::loops {

std::shared_ptr<const LoopPlan> Checker::Check() {
  // Of equations that could not be read nothing is known.
  const bool formFaults = problems_.HasErrors();
  DeclareAll();
  ValueParameters();
  SetStarts();
  WireBlocks();
  TakeEquations();
  if (!formFaults) FindMissing();
  TakeAnnotation();
  ShowFirstSignals();
  if (plan_->Blocks.size() > MaxBlocks) {
    problems_.Error(text_.Where, "the loop has more than " + std::to_string(MaxBlocks) + " blocks");
  }
  FindDoubleNames();
  const bool parameters =
      Sort(constants_, problems_, "these parameters depend on each other in a circle");
  const bool signals =
      Sort(nodes_, problems_,
           "an algebraic loop: each of these has to be known before the next; put a state, a "
           "sample or a Torvane.Continuous.Memory between them");
  if (!parameters || !signals || problems_.HasErrors()) return nullptr;
  for (const Node& node : constants_) plan_->Follow.push_back({node.Name, node.Where, node.Target});
  Generate(*plan_, constants_, nodes_, previous_);
  const std::size_t size = plan_->AtRun.size() + plan_->AtStep.size() + plan_->Evaluation.size();
  if (plan_->Registers > MaxRegisters || size > MaxInstructions) {
    problems_.Error(text_.Where, "the loop needs " + std::to_string(size) +
                                     " instructions an evaluation; at most " +
                                     std::to_string(MaxInstructions) + " can be run");
    return nullptr;
  }
  return plan_;
}

// Where the text chooses none: an empty scope tells nothing.
void Checker::ShowFirstSignals() {
  auto& signals = plan_->Signals;
  if (std::ranges::any_of(signals, [](const auto& signal) { return signal.Display.Shown; })) return;
  int left = 2;
  for (LoopPlan::Signal& signal : signals) {
    signal.Display.Shown = signal.Offered && left-- > 0;
  }
}

// Files and instruments know constants, signals and sources by names that the annotation may give.
void Checker::FindDoubleNames() {
  const auto find = [&](const auto& items, const char* what) {
    std::set<std::string_view> names;
    for (const auto& item : items) {
      if (names.insert(item.Name).second) continue;
      problems_.Error(text_.Where,
                      std::string("two ") + what + " have the name \"" + item.Name + "\"");
    }
  };
  find(plan_->Constants, "constants");
  find(plan_->Sources, "sources");
  find(plan_->Instruments.Pairs, "responses");
  std::vector<LoopPlan::Signal> offered;
  for (const LoopPlan::Signal& signal : plan_->Signals) {
    if (signal.Name == "Time") {
      problems_.Error(text_.Where, "no signal can be shown as \"Time\"; that is the scope's axis");
    }
    if (signal.Offered) offered.push_back(signal);
  }
  find(offered, "signals");
}

}  // namespace torvane::loops
