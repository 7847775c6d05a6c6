#include "loops/own_loops.h"

#include "core/names.h"
#include "loops/checker.h"
#include "loops/loop_machine.h"
#include "loops/own_loop.h"
#include "loops/parser.h"

namespace torvane::loops {

namespace {

// What only the values of parameters tell.
void CheckAtDefaults(const LoopPlan& plan, ProblemList& problems) {
  for (const Problem& problem : LoopMachine(plan).Try(plan.Defaults())) problems.Add(problem);
}

}  // namespace

LoopReading ReadLoop(std::string_view text, const std::vector<std::string>& builtIns) {
  LoopReading reading;
  ProblemList problems;
  if (text.size() > MaxTextSize) {
    problems.Error({}, "the text is longer than " + std::to_string(MaxTextSize >> 10U) + " KiB");
  } else {
    const ModelText parsed = Parse(text, problems);
    if (IndexOfName(parsed.Name, builtIns) >= 0) {
      problems.Error(parsed.Where, "a built-in model has the name " + Quoted(parsed.Name) +
                                       "; give the loop one of its own");
    }
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
