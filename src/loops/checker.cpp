#include "loops/checker.h"

#include <algorithm>

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

// Files and instruments know constants, signals and sources by names that the annotation may give.
void Checker::FindDoubleNames() {
  const auto find = [&](auto& items, const auto& placeOf, const char* what) {
    for (std::size_t i = 0; i < items.size(); ++i) {
      const auto same =
          std::find_if(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(i),
                       [&](const auto& other) { return other.Name == items[i].Name; });
      if (same == items.begin() + static_cast<std::ptrdiff_t>(i)) continue;
      problems_.Error(placeOf(i),
                      std::string("two ") + what + " have the name \"" + items[i].Name + "\"");
    }
  };
  const auto inModel = [&](std::size_t /*index*/) { return text_.Where; };
  find(plan_->Constants, inModel, "constants");
  find(plan_->Sources, inModel, "sources");
  find(plan_->Instruments.Pairs, inModel, "responses");
  std::vector<LoopPlan::Signal> offered;
  for (const LoopPlan::Signal& signal : plan_->Signals) {
    if (signal.Name == "Time") {
      problems_.Error(text_.Where, "no signal can be shown as \"Time\"; that is the scope's axis");
    }
    if (signal.Offered) offered.push_back(signal);
  }
  find(offered, inModel, "signals");
}

}  // namespace torvane::loops
