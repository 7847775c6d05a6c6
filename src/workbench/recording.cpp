#include "workbench/recording.h"

#include <algorithm>
#include <sstream>

#include "core/text.h"
#include "instruments/step_clock.h"
#include "workbench/model/long_run.h"
#include "workbench/model/model_options.h"

namespace torvane {

std::vector<Variable*> ListedSignals(const ZelBenchTop& bench, const std::string& list) {
  if (list.empty()) return OfferedSignals(bench);
  std::vector<Variable*> signals;
  std::istringstream names(list + ",");
  for (std::string name; std::getline(names, name, ',');) {
    signals.push_back(&NamedSignal(bench, std::string(Trimmed(name, " "))));
  }
  return signals;
}

void RecordRows(ZelModel& model, double until, double every, Supervisor& supervisor,
                const std::function<void()>& takeRow) {
  LongRun run(model, supervisor, until);
  const double seconds = until - run.Time();
  StepClock clock(StepClock::Nearest);
  clock.Start(run.Time(), model.Solver().Step());
  while (true) {
    if (clock.TakeDue(run.Time(), every)) takeRow();
    if (clock.Reached(seconds)) break;
    run.StepTo(std::min(clock.Request(), clock.RequestAt(seconds)));
  }
}

}  // namespace torvane
