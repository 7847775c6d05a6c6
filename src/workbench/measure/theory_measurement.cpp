#include "workbench/measure/theory_measurement.h"

#include <algorithm>

#include "core/constant.h"
#include "core/text.h"
#include "linear/linear_fault.h"
#include "linear/linearize.h"
#include "linear/theory.h"
#include "workbench/measure/loop_findings.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

// Beyond them a solver's steps differ from theory, and one processor's last digits from another's.
constexpr int Digits = 6;

bool HasAll(const std::vector<ModelLoop::Setting>& settings) {
  return std::ranges::all_of(
      settings, [](const auto& setting) { return setting.What->Value() == setting.Value; });
}

void ReadLinear(const MakeModel& make, const std::string& command, const std::string& response,
                RunReadings& readings) {
  LoopFindings findings(readings);
  const auto read = [&](const auto& part) {
    try {
      part();
    } catch (const LinearFault& fault) {
      findings.Miss({fault.what()});
    }
  };
  read([&] {
    const auto model = make();
    const LinearModel linear = Linearize(*model);
    findings.Doubt(linear.Notes);
    read([&] { findings.TakeClosed(TheoryOfClosed(linear, command, response)); });
    const ModelLoop loop = LoopOf(*model);
    const LoopTheory theory =
        HasAll(loop.Meanwhile) ? TheoryOfLoop(linear, loop) : TheoryOfLoop(*make());
    findings.Doubt(theory.Notes);
    findings.TakeOpen(theory.Read);
    // A measurement that ends somewhere does not know.
    if (theory.Read.NeverTurns) readings.Beyond.push_back(&RunReadings::GainMargin);
  });
}

}  // namespace

void ReadTheory(const MakeModel& make, const std::string& command, const std::string& response,
                RunReadings& readings) {
  ReadLinear(make, command, response, readings);
  for (const RunMeasure& measure : Measures()) {
    auto& value = readings.*measure.Value;
    if (measure.OfLoop() && value) value = ParseNumber(FormatGeneral(*value, Digits, 2));
  }
}

void CheckTheory(const MakeModel& make, bool margins) {
  try {
    const auto model = make();
    Linearize(*model);
    if (margins) LoopOf(*model);
  } catch (const LinearFault& fault) {
    throw StoppedError(fault.what());
  }
}

}  // namespace torvane
