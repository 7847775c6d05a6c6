#include "cli/model/scope_run.h"

#include <optional>

#include "cli/command_error.h"
#include "cli/model/long_run.h"
#include "core/text.h"

namespace torvane::cli {

ZelScope& FirstScope(const ZelBenchTop& bench) {
  const auto& scopes = bench.Instruments(InstrumentKind::Scope);
  if (scopes.empty()) throw UsageError("the model has no scope");
  return dynamic_cast<ZelScope&>(*scopes.front());
}

// The desktop's run loop; keeps each screen that completes on the way.
ScopeScreen LastCompleteScreen(ZelModel& model, ZelScope& scope, double until, Console& console,
                               bool showProgress) {
  model.Bench().StartScopes();
  LongRun run(model, console, until, showProgress);
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

}  // namespace torvane::cli
