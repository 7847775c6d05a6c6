#include "workbench/model/long_run.h"

#include <algorithm>
#include <limits>

#include "core/instrument.h"
#include "core/run_loop.h"
#include "core/sample_tape.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

// Steps between two looks of the watch: a few milliseconds.
constexpr double StepsPerSpan = 4096.0;

}  // namespace

LongRun::LongRun(ZelModel& model, Supervisor& supervisor, double until)
    : model_(model), watch_(supervisor.WatchRun(model, until)) {}

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
      watch_->CheckIn(Time());
      model_.Solver().RunUntil(std::min(time, Time() + span));
    }
    CheckSignals(model_.Bench(), std::numeric_limits<double>::max());
  });
}

bool LongRun::Service(Instrument& instrument, double largest) {
  return Guarded([&] {
    CheckSignals(model_.Bench(), largest);
    return instrument.Service(Time());
  });
}

void LongRun::Serve(Instrument& instrument, double until, double largest) {
  const double span = StepsPerSpan * model_.Solver().Step();
  while (Time() < until && instrument.NextTime() >= 0.0) {
    const double end = std::min(until, Time() + span);
    const double stop = Guarded([&] {
      watch_->CheckIn(Time());
      return model_.Solver().RunAhead(end, SampleTape::Most, &instrument).Stop;
    });
    if (Time() >= std::min(stop, until)) Service(instrument, largest);
  }
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

}  // namespace torvane
