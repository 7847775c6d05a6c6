#include <algorithm>
#include <cmath>
#include <utility>

#include "core/messages.h"
#include "instruments/analyser/analyser.h"

namespace torvane {

namespace {

// The least distance that the limits of the frequency axis keep.
constexpr double AboveMin = 1.01;
constexpr double BelowMax = 0.99;

// Beyond these the ratio of the axis' ends would not be a number any more. Hz.
constexpr double LowestFrequency = 1e-100;
constexpr double HighestFrequency = 1e100;

double LimitedFrequency(double hz) {
  return hz > 0.0 ? std::clamp(hz, LowestFrequency, HighestFrequency) : hz;
}

}  // namespace

void FrequencyAnalyser::SetSetting(double& setting, double value) {
  if (!std::isfinite(value) || value == setting) return;
  setting = value;
  Changed();
}

void FrequencyAnalyser::SetPositive(double& setting, double value, const char* what) {
  if (!(value > 0.0)) {
    Error("Attempt to set " + label_ + " " + what + " <= 0");
    return;
  }
  SetSetting(setting, value);
}

void FrequencyAnalyser::SetFreqMin(double hz) {
  SetPositive(freqMin_, hz > BelowMax * freqMax_ ? BelowMax * freqMax_ : LimitedFrequency(hz),
              "FreqMin");
}

void FrequencyAnalyser::SetFreqMax(double hz) {
  SetSetting(freqMax_, hz < AboveMin * freqMin_ ? AboveMin * freqMin_ : LimitedFrequency(hz));
}

void FrequencyAnalyser::SetFreqRange(double low, double high) {
  if (!std::isfinite(high)) return;
  // Room for the upper limit above it.
  SetPositive(freqMin_, std::min(LimitedFrequency(low), BelowMax * HighestFrequency), "FreqMin");
  SetFreqMax(high);
}

void FrequencyAnalyser::SetGainScale(double scale) {
  SetPositive(gainScale_, scale, "Gain Scale");
}

void FrequencyAnalyser::SetGainOffset(double offset) {
  SetSetting(gainOffset_, offset);
}

void FrequencyAnalyser::SetPhaseScale(double scale) {
  SetPositive(phaseScale_, scale, "Phase Scale");
}

void FrequencyAnalyser::SetPhaseOffset(double offset) {
  SetSetting(phaseOffset_, offset);
}

void FrequencyAnalyser::SetFindType(std::string text) {
  findType_ = std::move(text);
  TellSettingsChanged();
}

}  // namespace torvane
