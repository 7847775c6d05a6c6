#include "loops/own_loops.h"

#include "core/text.h"
#include "loops/checker.h"
#include "loops/loop_machine.h"
#include "loops/own_loop.h"
#include "loops/parser.h"

namespace torvane::loops {

namespace {

// What only the values of parameters tell.
void CheckAtDefaults(const LoopPlan& plan, ProblemList& problems) {
  LoopMachine machine(plan);
  for (const LoopPlan::Constant& constant : plan.Constants) {
    machine.Register(constant.Register) = constant.Choices.empty()
                                              ? constant.Default / constant.Factor
                                              : constant.Default + constant.First;
  }
  machine.Prepare();
  for (const LoopPlan::Clock& clock : plan.Clocks) {
    const double period = machine.Register(clock.Period);
    if (!(period > 0.0)) {
      problems.Error(clock.Where,
                     "the sample period is " + FormatEdit(period) + " s; it must be above 0");
    } else if (period < plan.Step) {
      problems.Warn(clock.Where,
                    "the sample period is shorter than the step: one sample a step is "
                    "taken");
    }
    if (!(machine.Register(clock.Start) >= 0.0)) {
      problems.Error(clock.Where, "the first sample must not come before time 0");
    }
  }
  for (std::size_t i = 0; i < plan.Blocks.size(); ++i) {
    const char* const fault = machine.BlockAt(i).Fault();
    if (fault) problems.Error(plan.Blocks[i].Where, plan.Blocks[i].Name + ": " + fault);
  }
}

}  // namespace

LoopReading ReadLoop(std::string_view text) {
  LoopReading reading;
  ProblemList problems;
  if (text.size() > MaxTextSize) {
    problems.Error({}, "the text is longer than " + std::to_string(MaxTextSize >> 10U) + " KiB");
  } else {
    const ModelText parsed = Parse(text, problems);
    if (!parsed.Name.empty()) reading.Plan = Checker(parsed, problems).Check();
    if (reading.Plan) CheckAtDefaults(*reading.Plan, problems);
  }
  if (problems.HasErrors()) reading.Plan = nullptr;
  reading.Problems = problems.Sorted();
  return reading;
}

std::unique_ptr<ZelModel> MakeLoop(const std::string& name, std::shared_ptr<const LoopPlan> plan) {
  return std::make_unique<OwnLoop>(name, std::move(plan));
}

}  // namespace torvane::loops
