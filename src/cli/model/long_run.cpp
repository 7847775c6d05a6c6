#include "cli/model/long_run.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "cli/command_error.h"
#include "core/instrument.h"
#include "core/run_loop.h"
#include "core/text.h"

namespace torvane::cli {
namespace {

// Steps between two looks at the interrupt flag and the clock: a few milliseconds.
constexpr double StepsPerSpan = 4096.0;
constexpr std::chrono::milliseconds ProgressPeriod(200);

}  // namespace

LongRun::LongRun(ZelModel& model, Console& console, double until, bool showProgress)
    : model_(model), console_(console), until_(until), showProgress_(showProgress) {
  // Short runs come and go without a progress line.
  nextProgress_ = std::chrono::steady_clock::now() + 2 * ProgressPeriod;
}

// An overflow in a part of the run ends the command.
template <class Part>
auto LongRun::Guarded(Part part) {
  try {
    return part();
  } catch (const SolverOverflow& overflow) {
    OfferResetAfterOverflow(model_, overflow);
    throw StoppedError(overflow.what());
  }
}

void LongRun::StepTo(double time) {
  const double span = StepsPerSpan * model_.Solver().Step();
  Guarded([&] {
    while (Time() < time) {
      CheckIn();
      model_.Solver().RunUntil(std::min(time, Time() + span));
    }
    CheckSignals(model_.Bench(), std::numeric_limits<double>::max());
  });
}

bool LongRun::Service(Instrument& instrument) {
  return Guarded([&] {
    CheckSignals(model_.Bench());
    return instrument.Service(Time());
  });
}

bool LongRun::ServiceInstruments() {
  return Guarded([&] {
    CheckSignals(model_.Bench());
    return model_.Bench().ServiceInstruments();
  });
}

bool LongRun::RunChunk(double until) {
  StepTo(std::min(model_.Bench().NextStopTime(), until));
  return ServiceInstruments();
}

void LongRun::CheckIn() {
  if (InterruptGuard::Interrupted()) {
    throw StoppedError("interrupted at " + FormatShortest(Time()) + " s");
  }
  if (console_.Ended()) throw StoppedError("stopped at " + FormatShortest(Time()) + " s");
  if (showProgress_) ShowProgress();
}

void LongRun::ShowProgress() {
  const auto now = std::chrono::steady_clock::now();
  if (now < nextProgress_) return;
  nextProgress_ = now + ProgressPeriod;
  const double percent = std::floor(Time() / until_ * 1000.0) / 10.0;
  console_.ShowProgress(FormatGeneral(percent, 4, 2) + " % (" + FormatGeneral(Time(), 6, 2) +
                        " of " + FormatGeneral(until_, 6, 2) + " s)");
}

}  // namespace torvane::cli
