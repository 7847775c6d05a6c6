#include "workbench/response/theory_overlay.h"

#include "core/messages.h"
#include "linear/linear_fault.h"
#include "linear/linearize.h"
#include "linear/theory.h"
#include "workbench/quiet.h"
#include "workbench/work_fault.h"

namespace torvane {

void LayTheory(FrequencyAnalyser& analyser, const ResponseOptions& options, double from, double to,
               double tSample, Supervisor& supervisor) {
  constexpr int PerDecade = 100;
  const auto model = [&] {
    const Quiet quiet;  // the options have been told of already
    return OpenModel(options.Model, supervisor);
  }();
  try {
    const LinearModel linear = Linearize(*model);
    for (const std::string& note : linear.Notes) Note(note);
    const TheoryPair pair(linear, analyser.Input()->Name(), analyser.Output()->Name());
    analyser.LoadMemory(OverlaySlot,
                        pair.At(pair.Frequencies(from, to, PerDecade), SampledBy(linear, tSample)),
                        "Theory");
  } catch (const LinearFault& fault) {
    throw StoppedError(fault.what());
  }
}

}  // namespace torvane
