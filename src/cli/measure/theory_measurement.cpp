#include "cli/measure/theory_measurement.h"

#include "core/csv.h"
#include "core/text.h"
#include "linear/linear_fault.h"
#include "linear/linearize.h"
#include "linear/theory.h"

namespace torvane::cli {
namespace {

constexpr int Digits = 6;  // beyond them a solver's steps differ from theory

std::optional<double> Rounded(double value) {
  return ParseNumber(FormatGeneral(value, Digits, 2));
}

std::optional<double> ValueOf(const Margins::Reading* reading) {
  return reading ? Rounded(reading->Value) : std::nullopt;
}

void ReadClosed(const LinearModel& linear, const std::string& command, const std::string& response,
                RunReadings& readings) {
  const Margins closed = TheoryOfClosed(linear, command, response);
  if (closed.GainBandwidth) readings.Bandwidth = Rounded(*closed.GainBandwidth);
  readings.Peaking = ValueOf(closed.Peaking ? &*closed.Peaking : nullptr);
  Append(readings.Reasons, closed.Missing);
}

void ReadOpen(ZelModel& model, RunReadings& readings) {
  const LoopTheory theory = TheoryOfLoop(model);
  readings.GainMargin = ValueOf(theory.Read.SmallestGainMargin());
  readings.PhaseMargin = ValueOf(theory.Read.SmallestPhaseMargin());
  readings.Sensitivity = ValueOf(theory.Read.Sensitivity ? &*theory.Read.Sensitivity : nullptr);
  Append(readings.Reasons, theory.Read.Missing);
}

}  // namespace

void ReadTheory(const MakeModel& make, const std::string& command, const std::string& response,
                RunReadings& readings) {
  const auto read = [&](const auto& part) {
    try {
      part(*make());
    } catch (const LinearFault& fault) {
      readings.Reasons.emplace_back(fault.what());
    }
  };
  read([&](ZelModel& model) {
    const LinearModel linear = Linearize(model);
    Append(readings.Warnings, linear.Notes);
    ReadClosed(linear, command, response, readings);
  });
  read([&](ZelModel& model) { ReadOpen(model, readings); });
}

}  // namespace torvane::cli
