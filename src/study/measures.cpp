#include "study/measures.h"

#include <array>

namespace torvane {

std::span<const RunMeasure> Measures() {
  static constexpr std::array Table{
      RunMeasure{"Overshoot", "%", &RunReadings::Overshoot, false, false},
      RunMeasure{"Rise", "s", &RunReadings::Rise, false, false},
      RunMeasure{"Settling", "s", &RunReadings::Settling, false, false},
      RunMeasure{"Delay", "s", &RunReadings::Delay, false, false},
      RunMeasure{"RMS Error", "the command's unit", &RunReadings::RmsError, false, false},
      RunMeasure{"Window", "s", &RunReadings::Window, false, false},
      RunMeasure{"Bandwidth", "Hz", &RunReadings::Bandwidth, true, true},
      RunMeasure{"Peaking", "dB", &RunReadings::Peaking, true, false},
      RunMeasure{"Gain Margin", "dB", &RunReadings::GainMargin, true, true},
      RunMeasure{"Phase Margin", "deg", &RunReadings::PhaseMargin, true, true},
      RunMeasure{"Sensitivity", "", &RunReadings::Sensitivity, true, false},
  };
  return Table;
}

std::vector<std::string> MeasureCaptions(bool withLoop) {
  std::vector<std::string> captions;
  for (const RunMeasure& measure : Measures()) {
    if (withLoop || !measure.OfLoop) captions.emplace_back(measure.Caption);
  }
  return captions;
}

std::vector<std::optional<double>> MeasureValues(const RunReadings& readings, bool withLoop) {
  std::vector<std::optional<double>> values;
  for (const RunMeasure& measure : Measures()) {
    if (withLoop || !measure.OfLoop) values.push_back(readings.*measure.Value);
  }
  return values;
}

std::string MeasureUnit(const std::string& caption) {
  for (const RunMeasure& measure : Measures()) {
    if (caption == measure.Caption) return measure.Unit;
  }
  return {};
}

}  // namespace torvane
