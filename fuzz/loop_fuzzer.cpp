#include <algorithm>

#include "fuzzing.h"
#include "loops/loop_machine.h"
#include "loops/own_loops.h"

// Feeds the reader of own loops. Whatever a text says, its problems lie within it, it comes to a
// plan exactly when none of them is an error, and the plan's numbers can be computed.

namespace {

using namespace torvane;
using fuzz::Require;

// Blocks get what they ask for and a few evaluations; they must not leave their own numbers, which
// the sanitizers watch.
void RunShortly(const loops::LoopPlan& plan) {
  loops::LoopMachine machine(plan);
  machine.Prepare(plan.Defaults());
  machine.Begin(0.0);
  for (int step = 0; step < 3; ++step) {
    const double t = step * plan.Step;
    machine.BeginStep(t);
    machine.Evaluate(t);
    machine.Evaluate(t + plan.Step / 2);
  }
  machine.Begin(3 * plan.Step);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  InstallMessageSink(&fuzz::Sink());
  const std::string_view text = fuzz::AsText(data, size);
  const loops::LoopReading reading = loops::ReadLoop(text);
  const auto lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
  bool errors = false;
  for (const loops::Problem& problem : reading.Problems) {
    errors = errors || !problem.Warning;
    Require(problem.Where.Line >= 1 && problem.Where.Line <= lines && problem.Where.Column >= 1,
            "a problem beyond the text: " + problem.Text);
  }
  Require(errors == (reading.Plan == nullptr), "a plan of a wrong text, or none of a good one");
  if (reading.Plan) RunShortly(*reading.Plan);
  return 0;
}
