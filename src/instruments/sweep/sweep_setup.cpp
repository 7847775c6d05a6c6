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
    if (hz >= last) break;
  }
  return plan;
}

std::string TooManyPoints(int most) {
  return "The sweep has more than " + std::to_string(most) +
         " points.  Reduce Steps/decade, or sweep fewer decades.";
}

// The texts of the two frequencies say MinOrder; users know them so.
SetupFinding CheckSetup(const SweepSetup& setup, int mostPoints) {
  using enum SetupFinding::Kind;
  if (!(setup.TSample > 0.0)) return {Refusal, "Attempt to set TSample < 0", {}};
  if (!(setup.StartFreq > 0.0)) return {Refusal, "Attempt to set Start Frequency <= MinOrder", {}};
  if (!(setup.EndFreq > 0.0)) return {Refusal, "Attempt to set End Frequency <= MinOrder", {}};
  if (setup.StepsPerDecade <= 0) return {Refusal, "Attempt to set Steps/Decade < 0", {}};
  if (!(setup.SettleTime >= 0.0)) return {Refusal, "Attempt to set Settle Time < 0", {}};
  if (!(setup.MeasurementTime >= 0.0)) return {Refusal, "Attempt to set Measurement Time < 0", {}};
  if (!(setup.Amplitude >= 0.0)) return {Refusal, "Attempt to set Excitation Amplitude < 0", {}};
  if (PlanSweep(setup, mostPoints).Points > mostPoints) {
    return {Refusal, TooManyPoints(mostPoints), {}};
  }
  const double highest = std::max(setup.StartFreq, setup.EndFreq);
  if (setup.TSample * highest > MostHold) {
    const std::string fits = FormatEdit(MostHold / highest);
    return {Warning,
            "Sample Time x End Frequency > 0.01.  The sine is held from sample to sample, and the "
            "phase, and behind a direct path the gain, will be wrong at the upper end.  You may "
            "want to reduce Sample Time to " +
                fits + " sec or less.",
            {}};
  }
  return {};
}

}  // namespace torvane
