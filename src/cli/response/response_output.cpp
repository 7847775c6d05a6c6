#include "cli/response/response_output.h"

#include <algorithm>
#include <utility>

#include "cli/io/result_file.h"
#include "core/csv.h"
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
  MarginLines(std::string response, ResultFile& file)
      : response_(std::move(response)), file_(file) {}

  /// The highest frequency at which something was read.
  double HighestHz() const { return highest_; }

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
  }

 private:
  void Line(const char* what, const Margins::Reading& reading, const char* unit) {
    highest_ = std::max(highest_, reading.Hz);
    file_.Write(CsvLine({response_, what, Number(reading.Hz), Number(reading.Value), unit}));
  }

  std::string response_;
  ResultFile& file_;
  double highest_ = 0.0;
};

void WriteMarginCaptions(ResultFile& file) {
  file.Write(CsvLine({"Response", "Measure", "Frequency", "Value", "Unit"}));
}

}  // namespace

void TellDoubts(const FrequencyAnalyser& analyser, ResultFile& file) {
  for (const std::string& doubt : analyser.ResponseAt(0).Doubts()) {
    Warning(doubt);
    if (!file.IsStandardOutput()) file.Write("# " + doubt + "\n");
  }
}

std::vector<std::string> MoreCaptions(const FrequencyAnalyser& analyser) {
  std::vector<std::string> captions;
  if (analyser.HasCoherence(0)) captions.emplace_back("Coherence");
  if (HasOverlay(analyser)) {
    captions.emplace_back("Overlay Gain");
    captions.emplace_back("Overlay Phase");
  }
  return captions;
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

void PrintMarginLines(const std::string& response, const Margins& margins, ResultFile& file) {
  WriteMarginCaptions(file);
  MarginLines(response, file).Write(margins);
}

void PrintMargins(const FrequencyAnalyser& analyser, ReadAs as) {
  ResultFile output("");
  WriteMarginCaptions(output);
  MarginReader reader;
  for (const int slot : {0, OverlaySlot}) {
    if (!analyser.HasData(slot)) continue;
    const std::string response = slot == 0 ? "Measured" : "Overlay";
    MarginLines lines(response, output);
    const Margins& margins = reader.Read(analyser, slot, as);
    lines.Write(margins);
    if (margins.Empty()) {
      for (const std::string& why : margins.Missing) Note(response + ": " + why);
    }
    const double accurate = analyser.ResponseAt(slot).Subject().AccurateUpTo;
    if (lines.HighestHz() > accurate) Warning(SampleTimeWarning(accurate));
  }
  output.Close();
}

}  // namespace torvane::cli
