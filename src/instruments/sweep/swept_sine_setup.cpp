#include <algorithm>
#include <cmath>

#include "core/messages.h"
#include "core/numeric.h"
#include "core/solver.h"
#include "instruments/analyser/refusal.h"
#include "instruments/setting_limits.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {

void ZelSweptDSA::SetTSample(double seconds) {
  // 0 is refused as well: the tick clock would never move on.
  const bool good = seconds > 0.0;
  SetChecked(tSample_, good ? std::max(seconds, ShortestTime) : seconds, good,
             "Attempt to set TSample < 0", "Sample Time", LongestTime);
}

// The texts of the two frequencies say MinOrder; files and users know them so.
void ZelSweptDSA::SetStartFreq(double hz) {
  SetChecked(startFreq_, hz, hz > 0.0, "Attempt to set Start Frequency <= MinOrder",
             "Start Frequency", LargestMagnitude);
}

void ZelSweptDSA::SetEndFreq(double hz) {
  SetChecked(endFreq_, hz, hz > 0.0, "Attempt to set End Frequency <= MinOrder", "End Frequency",
             LargestMagnitude);
}

void ZelSweptDSA::SetStepsPerDecade(int steps) {
  // 0 is refused as well: one step would take the frequency beyond all numbers.
  if (steps <= 0) {
    Error("Attempt to set Steps/Decade < 0");
  } else {
    Store(stepsPerDecade_, steps, "Steps/decade");
  }
}

void ZelSweptDSA::SetSettleTime(double seconds) {
  SetChecked(settleTime_, seconds, seconds >= 0.0, "Attempt to set Settle Time < 0", "Settle Time",
             LongestTime);
}

void ZelSweptDSA::SetMeasurementTime(double seconds) {
  SetChecked(measurementTime_, seconds, seconds >= 0.0, "Attempt to set Measurement Time < 0",
             "Measurement Time", LongestTime);
}

void ZelSweptDSA::SetAmplitude(double amplitude) {
  SetChecked(amplitude_, amplitude, amplitude >= 0.0, "Attempt to set Excitation Amplitude < 0",
             "Amplitude", LargestMagnitude);
}

void ZelSweptDSA::SetOffset(double offset) {
  if (!std::isfinite(offset)) return;
  SetChecked(offset_, offset, true, "", "Offset", LargestMagnitude);
  // Outside a sweep the excitation is 0 whatever the offset.
  if (InProgress()) excitation_ = LimitExcitation(excitation_, amplitude_, offset_);
}

SweepSetup ZelSweptDSA::Setup() const {
  return {tSample_,         startFreq_, endFreq_, stepsPerDecade_, settleTime_,
          measurementTime_, amplitude_, offset_,  Averages()};
}

SetupFinding ZelSweptDSA::Check(const SweepSetup& setup) const {
  if (!CanAverage(setup.Averages)) return AveragesRefusal();
  return CheckSetup(setup, Capacity, bench_.Solver()->Step());
}

bool ZelSweptDSA::Apply(const SweepSetup& setup) {
  if (IsRefused(Check(setup))) return false;
  Change(
      [&] {
        SetTSample(setup.TSample);
        SetStartFreq(setup.StartFreq);
        SetEndFreq(setup.EndFreq);
        SetStepsPerDecade(setup.StepsPerDecade);
        SetSettleTime(setup.SettleTime);
        SetMeasurementTime(setup.MeasurementTime);
        SetAmplitude(setup.Amplitude);
        SetOffset(setup.Offset);
        SetAverages(setup.Averages);
        ApplySweepRange();
      },
      [] { return "Swept-Sine Setup"; });
  return true;
}

// What is swept now is the plot's range, with a tick a step at most.
SweepSetup ZelSweptDSA::PlottedSetup() const {
  SweepSetup setup = Setup();
  setup.StartFreq = FreqMin();
  setup.EndFreq = FreqMax();
  setup.TSample = std::max(setup.TSample, bench_.Solver()->Step());
  return setup;
}

SweepPlan ZelSweptDSA::ExpectedPlan() const {
  return PlanSweep(PlottedSetup(), Capacity);
}

void ZelSweptDSA::ApplySweepRange() {
  SetFreqRange(std::min(startFreq_, endFreq_), std::max(startFreq_, endFreq_));
}

}  // namespace torvane
