#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "core/run_loop.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "models/loop.h"

// What instruments take of a run by tape against what they take of one that ends at each sample.

namespace torvane {
namespace {

using test::Loop;

void RunAtOnce(ZelModel& model, double until) {
  while (model.Time() < until) {
    model.Solver().RunUntil(std::min(model.Bench().NextStopTime(), until));
    if (model.Time() < until) model.Bench().ServiceInstruments();
  }
}

void RunByTape(ZelModel& model, double until) {
  while (model.Time() < until) RunPass(model, {}, until);
}

/// Everything that was measured. The sums of a sweep may be rounded otherwise.
struct Taken {
  std::vector<double> Exact;
  std::vector<double> Points;
  std::string Fault;
};

Taken AllTaken(Loop& loop) {
  Taken outcome;
  auto& exact = outcome.Exact = test::Values(loop.Model());
  auto& scope = loop.The<ZelScope>(InstrumentKind::Scope);
  ScopeScreen screen;
  for (const auto sweep : {ScopeSweep::Present, ScopeSweep::Whole}) {
    scope.CopyScreen(sweep, screen);
    exact.insert(exact.end(), screen.Time.begin(), screen.Time.end());
    for (const auto& trace : screen.Values) exact.insert(exact.end(), trace.begin(), trace.end());
    exact.push_back(screen.EventTime.value_or(-1.0));
  }
  exact.push_back(static_cast<double>(scope.SweepCount() * 4 + scope.AutomaticSweeps()));
  for (const auto kind : ServicedKinds) {
    for (Instrument* instrument : loop.Bench().Instruments(kind)) {
      exact.insert(exact.end(),
                   {instrument->NextTime(), instrument->Excitation(loop.Model().Time())});
      if (const auto* meter = dynamic_cast<ZelMeter*>(instrument)) {
        exact.insert(exact.end(), {meter->Value(), meter->AngleDeg(), 1.0 * meter->IsSettled()});
      }
    }
  }
  exact.push_back(loop.Fft().SampleCount());
  auto& sweep = loop.The<ZelSweptDSA>(InstrumentKind::SweptSine);
  for (int i = 0; i < sweep.PointCount(); ++i) {
    for (const auto& channel : sweep.Channels()) {
      outcome.Points.insert(outcome.Points.end(), {channel->Gain(0, i), channel->Phase(0, i)});
    }
  }
  return outcome;
}

struct TapeCase {
  const char* Name;
  std::function<void(Loop& loop)> Begin;
  std::function<void(Loop& loop)> Halfway = [](Loop&) {};
};

ZelScope& ScopeUnderTape(Loop& loop) {
  return loop.The<ZelScope>(InstrumentKind::Scope);
}

void SetScale(Loop& loop, double secondsPerDivision) {
  ScopeUnderTape(loop).SetHorizontalScale(ScopeUnderTape(loop).TimeChannel(), secondsPerDivision);
}

void AddMeters(Loop& loop) {
  using enum MeterKind;
  for (const auto kind : {Rms, Average, Harmonic, Correlation}) {
    ZelMeter& meter = *AddMeter(loop.Model(), "Meter");
    meter.SetKind(kind);
    meter.SetVariable(loop.Bench().VarAt(kind == Average ? 0 : 2)->Name());  // the time, too
    meter.SetTWindow(0.01);
    meter.SetHarmonicFreq(100.0);
    meter.SetHarmonicXfer(true);
    meter.SetAcCoupled(kind == Average);
    if (kind == Rms) meter.SetTSample(3.3e-5);
  }
}

void BeginSweep(Loop& loop) {
  auto& sweep = loop.The<ZelSweptDSA>(InstrumentKind::SweptSine);
  sweep.SetStartFreq(1500.0);
  sweep.SetEndFreq(300.0);
  sweep.SetOffset(0.5);
  sweep.SetSettleTime(0.0013);
  sweep.ApplySweepRange();
  sweep.SetAverages(2);
  sweep.Run();
}

void ChangeConstant(Loop& loop) {
  Constant& first = *loop.Bench().Constants().front();
  first.Set(0.9 * first.Value());
}

const std::vector<TapeCase> TapeCases = {
    {"as it opens", [](Loop&) {}, ChangeConstant},
    {"rolling, then continuous", [](Loop& loop) { ScopeUnderTape(loop).Trigger().SetRoll(true); },
     [](Loop& loop) { ScopeUnderTape(loop).Trigger().SetMode(SweepMode::Cont); }},
    {"events only, late and counted",
     [](Loop& loop) {
       ZelTrigger& trigger = ScopeUnderTape(loop).Trigger();
       SetScale(loop, 1e-4);
       trigger.SetMode(SweepMode::Normal);
       trigger.SetInitialDelayTime(0.004);
       trigger.SetInitialDelay(true);
       trigger.SetNumberOfEvents(2);
       trigger.SetCountEvents(true);
       trigger.SetDelayAfterTime(0.0003);
       trigger.SetDelayAfter(true);
     }},
    {"samples closer than steps", [](Loop& loop) { SetScale(loop, 1e-5); },
     [](Loop& loop) { SetScale(loop, 2e-3); }},
    {"screens that stop", [](Loop& loop) { ScopeUnderTape(loop).SetStopsModel(true); },
     [](Loop& loop) { ScopeUnderTape(loop).SetSingleShot(true); }},
    {"meters, then one that excites", AddMeters,
     [](Loop& loop) { loop.The<ZelMeter>(InstrumentKind::Meter, 1).SetUseExcitation(true); }},
    {"sweep, then every tick but one late", BeginSweep,
     [](Loop& loop) {
       SetScale(loop, 2e-5);
       loop.The<ZelSweptDSA>(InstrumentKind::SweptSine).SetTSample(3.3e-5);
       AddMeters(loop);
     }},
    {"both analysers",
     [](Loop& loop) {
       BeginSweep(loop);
       loop.Fft().Run();
     }},
    {"too large to hold", BeginSweep,
     [](Loop& loop) {
       loop.The<ZelSweptDSA>(InstrumentKind::SweptSine).Halt();
       for (Instrument* wave : loop.Bench().Instruments(InstrumentKind::WaveGenerator)) {
         dynamic_cast<ZelWave&>(*wave).SetAmplitude(1e40);
       }
     }},
};

Taken RunTapeCase(const std::string& name, const TapeCase& row, void (*run)(ZelModel&, double)) {
  Loop loop(name);
  loop.Model().KeepOwnMemory();
  row.Begin(loop);
  std::string fault;
  try {
    run(loop.Model(), 0.0203);
    row.Halfway(loop);
    run(loop.Model(), 0.0411);
  } catch (const SolverOverflow& overflow) {
    fault = overflow.what();
  }
  Taken outcome = AllTaken(loop);
  outcome.Fault = fault;
  return outcome;
}

TEST(SampleTape, GivesWhatIsMeasuredAtOnce) {
  int faults = 0;
  for (const std::string& name : ModelNames()) {
    if (Loop(name).Bench().Instruments(InstrumentKind::SweptSine).empty()) continue;
    for (const TapeCase& row : TapeCases) {
      SCOPED_TRACE(name + ", " + row.Name);
      const Taken once = RunTapeCase(name, row, RunAtOnce);
      const Taken tape = RunTapeCase(name, row, RunByTape);
      EXPECT_EQ(tape.Exact, once.Exact);
      EXPECT_EQ(tape.Fault, once.Fault);
      faults += once.Fault.empty() ? 0 : 1;
      EXPECT_TRUE(!std::string(row.Name).starts_with("sweep") || !once.Points.empty());
      ASSERT_EQ(tape.Points.size(), once.Points.size());
      for (std::size_t i = 0; i < once.Points.size(); ++i) {
        EXPECT_NEAR(tape.Points[i], once.Points[i], 1e-7);
      }
    }
  }
  EXPECT_GE(faults, 10);
}

}  // namespace
}  // namespace torvane
