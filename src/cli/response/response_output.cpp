#include "cli/response/response_output.h"

#include <algorithm>
#include <utility>

#include "cli/io/result_file.h"
#include "core/messages.h"
#include "core/text.h"
#include "instruments/analyser/margins.h"
#include "workbench/measure/loop_findings.h"

namespace torvane::cli {
namespace {

constexpr int MarginDigits = 6;  // of what is read off a curve

std::string Number(double x) {
  return FormatGeneral(x, MarginDigits, 2);
}

std::string Optional(const std::optional<double>& x) {
  return x ? FormatShortest(*x) : "";
}

bool HasOverlay(const FrequencyAnalyser& analyser) {
  return analyser.HasData(OverlaySlot);
}

/// The lines of one response.
class MarginLines {
 public:
  MarginLines(std::string response, TableWriter& table)
      : response_(std::move(response)), table_(table) {}

  void Write(const Margins& margins) {
    if (margins.GainBandwidth) {
      Line("Bandwidth", {*margins.GainBandwidth, Margins::BandwidthGain}, "dB");
    }
    if (margins.PhaseBandwidth) {
      Line("Bandwidth", {*margins.PhaseBandwidth, Margins::BandwidthPhase}, "deg");
    }
    if (margins.Peaking) Line("Peaking", *margins.Peaking, "dB");
    for (const auto& reading : margins.PhaseMargins) Line("Phase margin", reading, "deg");
    for (const auto& reading : margins.GainMargins) Line("Gain margin", reading, "dB");
    if (const auto* least = margins.SmallestPhaseMargin()) {
      Line("Smallest phase margin", *least, "deg");
    }
    if (const auto* least = margins.SmallestGainMargin()) {
      Line("Smallest gain margin", *least, "dB");
    }
    if (margins.Sensitivity) Line("Sensitivity", *margins.Sensitivity, "");
  }

 private:
  void Line(const char* what, const Margins::Reading& reading, const char* unit) {
    table_.Write({response_, what, Number(reading.Hz), Number(reading.Value), unit});
  }

  std::string response_;
  TableWriter& table_;
};

std::vector<Column> MarginColumns() {
  return {{"Response", "", true},
          {"Measure", "", true},
          {"Frequency", "Hz"},
          {"Value", ""},
          {"Unit", "", true}};
}

}  // namespace

void TellDoubts(const FrequencyAnalyser& analyser, const TableForm& form, ResultFile& file) {
  for (const std::string& doubt : analyser.ResponseAt(0).Doubts()) {
    Warning(doubt);
    if (!file.IsStandardOutput() && !form.IsJson()) file.Write("# " + doubt + "\n");
  }
}

void AddMoreColumns(const FrequencyAnalyser& analyser, std::vector<Column>& columns) {
  if (analyser.HasCoherence(0)) columns.push_back({"Coherence", ""});
  if (!HasOverlay(analyser)) return;
  columns.push_back({"Overlay Gain", "dB"});
  columns.push_back({"Overlay Phase", "deg"});
}

std::vector<std::string> MoreFields(const FrequencyAnalyser& analyser, int index, double hz) {
  std::vector<std::string> fields;
  if (analyser.HasCoherence(0))
    fields.push_back(FormatShortest(analyser.ResponseAt(0).At(index)->Coherence));
  if (HasOverlay(analyser)) {
    fields.push_back(Optional(analyser.GainRead(OverlaySlot, hz)));
    fields.push_back(Optional(analyser.PhaseRead(OverlaySlot, hz)));
  }
  return fields;
}

bool WritesPoints(const ResponseOutput& options) {
  return !options.Margins || !options.Out.empty();
}

void PrintMarginLines(const std::string& response, const Margins& margins, const TableForm& form,
                      ResultFile& file) {
  TableWriter table(MarginColumns(), form, file);
  MarginLines(response, table).Write(margins);
  table.End();
}

void PrintMargins(const FrequencyAnalyser& analyser, const ResponseOutput& options) {
  const auto as = static_cast<ReadAs>(options.MarginsAs.value_or(0));
  ResultFile output("");
  TableWriter table(MarginColumns(), options.Form, output);
  MarginReader reader;
  for (const int slot : {0, OverlaySlot}) {
    if (!analyser.HasData(slot)) continue;
    const std::string response = slot == 0 ? "Measured" : "Overlay";
    const Margins& margins = reader.Read(analyser, slot, as);
    MarginLines(response, table).Write(margins);
    for (const std::string& why : margins.Missing) Note(response + ": " + why);
    const double accurate = analyser.ResponseAt(slot).Subject().AccurateUpTo;
    if (margins.HighestHz() > accurate) Warning(SampleTimeWarning(accurate));
  }
  table.End();
  output.Close();
}

}  // namespace torvane::cli
