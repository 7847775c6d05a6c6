#include "instruments/analyser/response_axes.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/files/record.h"
#include "core/messages.h"
#include "instruments/setting_caption.h"
#include "instruments/setting_limits.h"

namespace torvane {

namespace {

// The least distance that the limits of the frequency axis keep.
constexpr double AboveMin = 1.01;
constexpr double BelowMax = 0.99;

// Limits of the axis, Hz, and of the scales: far beyond them pictures' arithmetic ends.
constexpr double LowestFrequency = 1e-30;
constexpr double HighestFrequency = 1e30;
constexpr double SmallestMagnitude = 1e-30;
constexpr double SmallestDivision = 1e-12;  // of a Nyquist plot
constexpr double LargestDivision = 1e12;
constexpr double FarthestCentre = 1e15;

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

double Limited(double value, double least, double most) {
  return std::isfinite(value) ? std::clamp(value, least, most) : 0.0;
}

std::string CaptionOf(const NyquistWindow& window) {
  if (window.Scale == 0.0) return "to Fit";
  return FormatEdit(window.Scale) + " at " + FormatEdit(window.Real) + ", " +
         FormatEdit(window.Imaginary);
}

}  // namespace

void ResponseAxes::SetNyquist(const NyquistWindow& window) {
  const double scale = std::abs(window.Scale);
  const NyquistWindow limited{
      scale == 0.0 ? 0.0 : Limited(scale, SmallestDivision, LargestDivision),
      Limited(window.Real, -FarthestCentre, FarthestCentre),
      Limited(window.Imaginary, -FarthestCentre, FarthestCentre)};
  StoreIn(Touches::Plot, nyquist_, limited,
          [&] { return SettingCaption("Nyquist Plot", CaptionOf(limited)); });
}

void ResponseAxes::SetView(const ResponseView& view) {
  StoreIn(Touches::View, view_, view, [] { return "View"; });
}

// A number as a file keeps it; one that is not finite is ignored.
void ResponseAxes::SetNumber(double& setting, double value, const char* name) {
  if (!std::isfinite(value)) return;
  StoreIn(Touches::Plot, setting, AsRecorded(value),
          [&, name] { return SettingCaption(name, setting); });
}

void ResponseAxes::SetPositive(double& setting, double value, const char* what) {
  if (!(value > 0.0)) {
    Error("Attempt to set " + label_ + " " + what + " <= 0");
    return;
  }
  if (std::isfinite(value)) value = std::clamp(value, SmallestMagnitude, LargestMagnitude);
  SetNumber(setting, value, what);
}

void ResponseAxes::SetFreqMin(double hz) {
  SetPositive(freqMin_, hz > BelowMax * freqMax_ ? BelowMax * freqMax_ : LimitedLowEnd(hz),
              "FreqMin");
}

void ResponseAxes::SetFreqMax(double hz) {
  SetNumber(freqMax_, hz < AboveMin * freqMin_ ? AboveMin * freqMin_ : LimitedFrequency(hz),
            "FreqMax");
}

void ResponseAxes::SetFreqRange(double low, double high) {
  if (!std::isfinite(high)) return;
  ChangeAxes(
      Touches::Plot,
      [&] {
        SetPositive(freqMin_, LimitedLowEnd(low), "FreqMin");
        SetFreqMax(high);
      },
      [&] { return RangeCaption(); });
}

std::string ResponseAxes::RangeCaption() const {
  return SettingCaption("Frequencies", FormatEdit(freqMin_) + " to " + FormatEdit(freqMax_));
}

double ResponseAxes::AxisFrequency(double share) const {
  return freqMin_ * std::pow(freqMax_ / freqMin_, share);
}

double ResponseAxes::AxisShare(double hz) const {
  return std::log(hz / freqMin_) / std::log(freqMax_ / freqMin_);
}

void ResponseAxes::SetGainScale(double scale) {
  SetPositive(gainScale_, scale, "Gain Scale");
}

void ResponseAxes::SetGainOffset(double offset) {
  SetNumber(gainOffset_, LimitedMagnitude(offset), "Gain Offset");
}

void ResponseAxes::SetPhaseScale(double scale) {
  SetPositive(phaseScale_, scale, "Phase Scale");
}

void ResponseAxes::SetPhaseOffset(double offset) {
  SetNumber(phaseOffset_, LimitedMagnitude(offset), "Phase Offset");
}

void ResponseAxes::SetFindType(const std::string& text) {
  std::string number = text;
  if (text.find('.') == std::string::npos && std::count(text.begin(), text.end(), ',') == 1) {
    std::replace(number.begin(), number.end(), ',', '.');
  }
  StoreIn(Touches::Plot, findType_, StorableField(number),
          [&] { return SettingCaption("Auto Find", findType_); });
}

void ResponseAxes::SetCursors(CursorMode mode) {
  StoreIn(Touches::Cursors, cursors_, mode,
          [&] { return SettingCaption("Cursors", static_cast<int>(mode)); });
}

void ResponseAxes::SetCursorPixel(int cursor, int pixel) {
  const int limited = std::clamp(pixel, 0, LargestPixel);
  StoreIn(Touches::Cursors, cursorPixel_[static_cast<std::size_t>(cursor)], limited,
          [&] { return SettingCaption(cursor == 0 ? "Cursor 1" : "Cursor 2", limited); });
}

void ResponseAxes::SetCursorSlot(int slot) {
  if (slot < 0 || slot >= slots_) return;
  StoreIn(Touches::Cursors, cursorSlot_, slot, [&] {
    return SettingCaption("Cursor Trace", slot == 0 ? "Current" : "Memory " + std::to_string(slot));
  });
}

void ResponseAxes::SetSplitScreen(bool split) {
  StoreIn(Touches::Plot, splitScreen_, split,
          [&] { return SettingCaption("Split Screen", splitScreen_); });
}

}  // namespace torvane
