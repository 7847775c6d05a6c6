#include <algorithm>
#include <cmath>
#include <utility>

#include "core/files/record.h"
#include "core/messages.h"
#include "instruments/analyser/analyser.h"
#include "instruments/setting_limits.h"

namespace torvane {

namespace {

// The least distance that the limits of the frequency axis keep.
constexpr double AboveMin = 1.01;
constexpr double BelowMax = 0.99;

// Limits of the axis, Hz, and of the scales: far beyond them pictures' arithmetic ends.
constexpr double LowestFrequency = 1e-30;
constexpr double HighestFrequency = 1e30;
constexpr double SmallestScale = 1e-30;

double LimitedMagnitude(double x) {
  return std::isfinite(x) ? std::clamp(x, -LargestMagnitude, LargestMagnitude) : x;
}

double LimitedFrequency(double hz) {
  return hz > 0.0 ? std::clamp(hz, LowestFrequency, HighestFrequency) : hz;
}

// The low end leaves the high end room above it.
double LimitedLowEnd(double hz) {
  return std::min(LimitedFrequency(hz), HighestFrequency / 10.0);
}

}  // namespace

void FrequencyAnalyser::SetSetting(double& setting, double value, const char* name) {
  if (std::isfinite(value)) Store(setting, AsRecorded(value), name);
}

void FrequencyAnalyser::SetChecked(double& setting, double value, bool good, const char* message,
                                   const char* name, double limit) {
  if (!good) {
    Error(message);
  } else if (!(std::abs(value) <= limit)) {
    Error(std::string("Attempt to set ") + name + " beyond " + FormatEdit(limit));
  } else {
    SetSetting(setting, value, name);
  }
}

void FrequencyAnalyser::SetPositive(double& setting, double value, const char* what) {
  if (!(value > 0.0)) {
    Error("Attempt to set " + label_ + " " + what + " <= 0");
    return;
  }
  if (std::isfinite(value)) value = std::clamp(value, SmallestScale, LargestMagnitude);
  SetSetting(setting, value, what);
}

void FrequencyAnalyser::SetFreqMin(double hz) {
  SetPositive(freqMin_, hz > BelowMax * freqMax_ ? BelowMax * freqMax_ : LimitedLowEnd(hz),
              "FreqMin");
}

void FrequencyAnalyser::SetFreqMax(double hz) {
  SetSetting(freqMax_, hz < AboveMin * freqMin_ ? AboveMin * freqMin_ : LimitedFrequency(hz),
             "FreqMax");
}

void FrequencyAnalyser::SetFreqRange(double low, double high) {
  if (!std::isfinite(high)) return;
  Change(
      [&] {
        SetPositive(freqMin_, LimitedLowEnd(low), "FreqMin");
        SetFreqMax(high);
      },
      [&] {
        return SettingCaption("Frequencies", FormatEdit(freqMin_) + " to " + FormatEdit(freqMax_));
      });
}

double FrequencyAnalyser::AxisFrequency(double share) const {
  return freqMin_ * std::pow(freqMax_ / freqMin_, share);
}

double FrequencyAnalyser::AxisShare(double hz) const {
  return std::log(hz / freqMin_) / std::log(freqMax_ / freqMin_);
}

void FrequencyAnalyser::SetGainScale(double scale) {
  SetPositive(gainScale_, scale, "Gain Scale");
}

void FrequencyAnalyser::SetGainOffset(double offset) {
  SetSetting(gainOffset_, LimitedMagnitude(offset), "Gain Offset");
}

void FrequencyAnalyser::SetPhaseScale(double scale) {
  SetPositive(phaseScale_, scale, "Phase Scale");
}

void FrequencyAnalyser::SetPhaseOffset(double offset) {
  SetSetting(phaseOffset_, LimitedMagnitude(offset), "Phase Offset");
}

void FrequencyAnalyser::SetFindType(const std::string& text) {
  Store(findType_, StorableField(text), "Auto Find");
}

}  // namespace torvane
