#include "workbench/model/scope_run.h"

#include <optional>

#include "core/text.h"
#include "workbench/model/long_run.h"
#include "workbench/work_fault.h"

namespace torvane {

ZelScope& FirstScope(const ZelBenchTop& bench) {
  const auto& scopes = bench.Instruments(InstrumentKind::Scope);
  if (scopes.empty()) throw UsageError("the model has no scope");
  return dynamic_cast<ZelScope&>(*scopes.front());
}

// The desktop's run loop; keeps each screen that completes on the way.
ScopeScreen LastCompleteScreen(ZelModel& model, ZelScope& scope, double until,
                               Supervisor& supervisor) {
  model.Bench().StartScopes();
  LongRun run(model, supervisor, until);
  std::optional<ScopeScreen> screen;
  bool running = true;
  while (running && run.Time() < until) {
    running = run.RunChunk(until);
    if (scope.TakeScreenCompleted()) scope.CopyScreen(ScopeSweep::Whole, screen.emplace());
  }
  if (screen) return std::move(*screen);
  throw StoppedError("the scope completed no screen by " + FormatShortest(model.Time()) +
                     " s; a screen lasts " +
                     FormatShortest(scope.SampleInterval() * scope.ScreenLength()) + " s");
}

}  // namespace torvane
