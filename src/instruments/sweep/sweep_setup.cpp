#include "instruments/sweep/sweep_setup.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "instruments/whole_periods.h"

namespace torvane {

namespace {

// Of a sample time times a frequency: what is read between two values of a held sine is read
// before the model has seen the second, 180 degrees times this early.
constexpr double MostHold = 0.01;
// At two ticks a period and fewer a sine cannot be told from its images.
constexpr double HalfRate = 0.5;

std::string SampleTimeFor(double hz) {
  return FormatEdit(MostHold / hz) + " sec or less";
}

}  // namespace

double NextSweepFrequency(const SweepSetup& setup, double hz) {
  // The last factor keeps rounding from leaving the final point just short of the sweep's end.
  return hz * (std::exp(std::numbers::ln10 / setup.StepsPerDecade) * 1.000001);
}

SweepPlan PlanSweep(const SweepSetup& setup, int most) {
  const double last = std::max(setup.StartFreq, setup.EndFreq);
  SweepPlan plan;
  for (double hz = std::min(setup.StartFreq, setup.EndFreq); plan.Points <= most;
       hz = NextSweepFrequency(setup, hz)) {
    ++plan.Points;
    plan.Seconds +=
        setup.SettleTime + setup.Averages * WholePeriods(setup.MeasurementTime / hz) / hz;
    plan.LastHz = hz;
    if (hz >= last) break;
  }
  return plan;
}

SetupFinding CheckPlan(const SweepSetup& setup, int mostPoints) {
  using enum SetupFinding::Kind;
  const SweepPlan plan = PlanSweep(setup, mostPoints);
  if (plan.Points > mostPoints) {
    return {Refusal,
            "The sweep has more than " + std::to_string(mostPoints) +
                " points.  Reduce Steps/decade, or sweep fewer decades.",
            {}};
  }
  if (plan.LastHz * setup.TSample >= HalfRate) {
    return {Refusal,
            "The sweep goes up to " + FormatEdit(plan.LastHz) +
                " Hz, and samples tell frequencies below half the sample rate only, " +
                FormatEdit(HalfRate / setup.TSample) + " Hz.",
            "a sample time of " + SampleTimeFor(plan.LastHz) + ", or an end well below that"};
  }
  return {};
}

// The texts of the two frequencies say MinOrder; users know them so.
SetupFinding CheckSetup(const SweepSetup& setup, int mostPoints, double solverStep) {
  using enum SetupFinding::Kind;
  if (!(setup.TSample > 0.0)) return {Refusal, "Attempt to set TSample < 0", {}};
  if (!(setup.StartFreq > 0.0)) return {Refusal, "Attempt to set Start Frequency <= MinOrder", {}};
  if (!(setup.EndFreq > 0.0)) return {Refusal, "Attempt to set End Frequency <= MinOrder", {}};
  if (setup.StepsPerDecade <= 0) return {Refusal, "Attempt to set Steps/Decade < 0", {}};
  if (!(setup.SettleTime >= 0.0)) return {Refusal, "Attempt to set Settle Time < 0", {}};
  if (!(setup.MeasurementTime >= 0.0)) return {Refusal, "Attempt to set Measurement Time < 0", {}};
  if (!(setup.Amplitude >= 0.0)) return {Refusal, "Attempt to set Excitation Amplitude < 0", {}};
  if (setup.Amplitude == 0.0) return {Refusal, "Amplitude must be > 0", {}};
  // No two samples fall on one step.
  SweepSetup ticked = setup;
  ticked.TSample = std::max(setup.TSample, solverStep);
  SetupFinding plan = CheckPlan(ticked, mostPoints);
  if (plan.What == Refusal) return plan;
  const double highest = std::max(setup.StartFreq, setup.EndFreq);
  if (ticked.TSample * highest > MostHold) {
    const bool canBeShorter = solverStep * highest <= MostHold;
    return {Warning,
            "Sample Time x End Frequency > 0.01.  The sine is held from sample to sample, and the "
            "phase, and behind a direct path the gain, will be wrong at the upper end.  You may "
            "want to " +
                (canBeShorter ? "reduce Sample Time to " + SampleTimeFor(highest)
                              : "end at " + FormatEdit(MostHold / solverStep) +
                                    " Hz with a Sample Time of " + FormatEdit(solverStep) +
                                    " sec, the solver's step") +
                ".",
            {}};
  }
  return {};
}

}  // namespace torvane
