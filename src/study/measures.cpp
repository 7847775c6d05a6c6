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

// The unit in which a signal's own takes the place of the words.
static std::string UnitFor(const std::string& unit, std::string_view words,
                           const std::string& own) {
  if (!unit.starts_with(words)) return unit;
  const std::string more = unit.substr(words.size());
  if (own.empty()) return more.empty() ? more : std::string("s");
  const bool quotient = !more.empty() && own.find('/') != std::string::npos;
  std::string whole(quotient ? "(" : "");
  whole += own;
  if (quotient) whole += ')';
  return whole + more;
}

std::vector<std::string> MeasureUnits(const MeasureSet& set, const std::string& commandUnit,
                                      const std::string& peakUnit) {
  std::vector<std::string> units;
  for (const RunMeasure& measure : Measures()) {
    if (!set.Has(measure.Needs)) continue;
    const std::string unit = UnitFor(measure.Unit, "the command's unit", commandUnit);
    units.push_back(UnitFor(unit, "the signal's unit", peakUnit));
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
