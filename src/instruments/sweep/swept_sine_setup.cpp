#include <algorithm>
#include <cmath>

#include "core/messages.h"
#include "core/numeric.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {

void ZelSweptDSA::SetChecked(double& setting, double value, bool good, const char* message) {
  if (good) {
    SetSetting(setting, value);
  } else {
    Error(message);
  }
}

void ZelSweptDSA::SetTSample(double seconds) {
  // 0 is refused as well: the tick clock would never move on.
  SetChecked(tSample_, std::min(seconds, LongestTime), seconds > 0.0, "Attempt to set TSample < 0");
}

// The texts of the two frequencies say MinOrder; files and users know them so.
void ZelSweptDSA::SetStartFreq(double hz) {
  SetChecked(startFreq_, hz, hz > 0.0, "Attempt to set Start Frequency <= MinOrder");
}

void ZelSweptDSA::SetEndFreq(double hz) {
  SetChecked(endFreq_, hz, hz > 0.0, "Attempt to set End Frequency <= MinOrder");
}

void ZelSweptDSA::SetStepsPerDecade(int steps) {
  // 0 is refused as well: one step would take the frequency beyond all numbers.
  if (steps <= 0) {
    Error("Attempt to set Steps/Decade < 0");
    return;
  }
  stepsPerDecade_ = steps;
  Changed();
}

void ZelSweptDSA::SetSettleTime(double seconds) {
  SetChecked(settleTime_, std::min(seconds, LongestTime), seconds >= 0.0,
             "Attempt to set Settle Time < 0");
}

void ZelSweptDSA::SetMeasurementTime(double seconds) {
  SetChecked(measurementTime_, std::min(seconds, LongestTime), seconds >= 0.0,
             "Attempt to set Measurement Time < 0");
}

void ZelSweptDSA::SetAmplitude(double amplitude) {
  SetChecked(amplitude_, amplitude, amplitude >= 0.0, "Attempt to set Excitation Amplitude < 0");
}

void ZelSweptDSA::SetOffset(double offset) {
  SetSetting(offset_, offset);
  // Outside a sweep the excitation is 0 whatever the offset.
  if (InProgress()) excitation_ = LimitExcitation(excitation_, amplitude_, offset_);
}

void ZelSweptDSA::ApplySweepRange() {
  SetFreqRange(std::min(startFreq_, endFreq_), std::max(startFreq_, endFreq_));
}

}  // namespace torvane
