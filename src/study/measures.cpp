#include "study/measures.h"

#include <array>
#include <string_view>

namespace torvane {

std::span<const RunMeasure> Measures() {
  using enum MeasureNeeds;
  static constexpr std::array Table{
      RunMeasure{"Overshoot", "%", &RunReadings::Overshoot},
      RunMeasure{"Rise", "s", &RunReadings::Rise},
      RunMeasure{"Settling", "s", &RunReadings::Settling},
      RunMeasure{"Delay", "s", &RunReadings::Delay},
      RunMeasure{"RMS Error", "the command's unit", &RunReadings::RmsError},
      RunMeasure{"Window", "s", &RunReadings::Window},
      RunMeasure{"Bandwidth", "Hz", &RunReadings::Bandwidth, Loop, true},
      RunMeasure{"Peaking", "dB", &RunReadings::Peaking, Loop},
      RunMeasure{"Gain Margin", "dB", &RunReadings::GainMargin, Loop, true},
      RunMeasure{"Phase Margin", "deg", &RunReadings::PhaseMargin, Loop, true},
      RunMeasure{"Sensitivity", "", &RunReadings::Sensitivity, Loop},
      RunMeasure{"IAE", "the command's unit s", &RunReadings::Iae},
      RunMeasure{"ISE", "the command's unit^2 s", &RunReadings::Ise},
      RunMeasure{"Peak", "the signal's unit", &RunReadings::Peak, Peak},
      RunMeasure{MeetsCaption, "", &RunReadings::Meets, Requirements, true},
  };
  return Table;
}

bool MeasureSet::Has(MeasureNeeds needs) const {
  switch (needs) {
    case MeasureNeeds::Loop:
      return Loop;
    case MeasureNeeds::Peak:
      return Peak;
    case MeasureNeeds::Requirements:
      return Requirements;
    case MeasureNeeds::Step:
      break;
  }
  return true;
}

std::vector<std::string> MeasureCaptions(const MeasureSet& set) {
  std::vector<std::string> captions;
  for (const RunMeasure& measure : Measures()) {
    if (set.Has(measure.Needs)) captions.emplace_back(measure.Caption);
  }
  return captions;
}

std::vector<std::optional<double>> MeasureValues(const RunReadings& readings,
                                                 const MeasureSet& set) {
  std::vector<std::optional<double>> values;
  for (const RunMeasure& measure : Measures()) {
    if (set.Has(measure.Needs)) values.push_back(readings.*measure.Value);
  }
  return values;
}

std::vector<std::string> MeasureUnits(const MeasureSet& set, const std::string& commandUnit,
                                      const std::string& peakUnit) {
  std::vector<std::string> units;
  for (const RunMeasure& measure : Measures()) {
    if (!set.Has(measure.Needs)) continue;
    std::string unit = measure.Unit;
    const auto say = [&unit](std::string_view words, const std::string& by) {
      if (!unit.starts_with(words)) return;
      const std::string more = unit.substr(words.size());
      const bool quotient = !more.empty() && by.find('/') != std::string::npos;
      unit = by;
      if (quotient) unit.insert(0, "(").append(")");
      unit += more;
      if (by.empty() && !more.empty()) unit = "s";
    };
    say("the command's unit", commandUnit);
    say("the signal's unit", peakUnit);
    units.push_back(unit);
  }
  return units;
}

std::string MeasureUnit(const std::string& caption) {
  for (const RunMeasure& measure : Measures()) {
    if (caption != measure.Caption) continue;
    const std::string unit = measure.Unit;
    return unit.starts_with("the ") ? std::string() : unit;
  }
  return {};
}

}  // namespace torvane
