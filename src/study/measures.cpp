#include "study/measures.h"

#include <array>

namespace torvane {

std::span<const RunMeasure> Measures() {
  static constexpr std::array Table{
      RunMeasure{"Overshoot", "%", &RunReadings::Overshoot, false},
      RunMeasure{"Rise", "s", &RunReadings::Rise, false},
      RunMeasure{"Settling", "s", &RunReadings::Settling, false},
      RunMeasure{"Delay", "s", &RunReadings::Delay, false},
      RunMeasure{"RMS Error", "the command's unit", &RunReadings::RmsError, false},
      RunMeasure{"Window", "s", &RunReadings::Window, false},
      RunMeasure{"Bandwidth", "Hz", &RunReadings::Bandwidth, true},
      RunMeasure{"Peaking", "dB", &RunReadings::Peaking, true},
      RunMeasure{"Gain Margin", "dB", &RunReadings::GainMargin, true},
      RunMeasure{"Phase Margin", "deg", &RunReadings::PhaseMargin, true},
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
