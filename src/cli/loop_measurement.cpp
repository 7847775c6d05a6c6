#include "cli/loop_measurement.h"

#include "core/text.h"
#include "instruments/analyser/margins.h"

namespace torvane::cli {
namespace {

// As the desktop reads them: the margins of a closed response are those of the open loop that it
// has if its feedback is its output.
std::vector<std::string> MarginFields(FrequencyAnalyser& analyser) {
  const auto value = [](const Margins::Reading* reading) {
    return reading ? FormatShortest(reading->Value) : "";
  };
  MarginReader reader;
  const Margins& response = reader.Read(analyser, 0);
  const bool closed = response.Closed;
  const auto bandwidth = response.GainBandwidth;
  std::vector<std::string> fields{bandwidth ? FormatShortest(*bandwidth) : "",
                                  value(response.Peaking ? &*response.Peaking : nullptr)};
  const Margins& open = closed ? reader.Read(analyser, 0, true) : response;
  fields.push_back(value(open.SmallestGainMargin()));
  fields.push_back(value(open.SmallestPhaseMargin()));
  return fields;
}

ZelXfer& SetUpAnalyser(ZelModel& model, const BodeOptions& options, Console& console) {
  auto& xfer = dynamic_cast<ZelXfer&>(
      ChooseAnalyser(model.Bench(), InstrumentKind::FftAnalyser, options.Response));
  // Margins are read off a response.
  xfer.SetSpectrum(false);
  console.ApplySettings([&] { SetUp(xfer, options); });
  return xfer;
}

}  // namespace

std::vector<std::string> LoopCaptions() {
  return {"Bandwidth", "Peaking", "Gain Margin", "Phase Margin"};
}

void CheckLoop(ZelModel& model, const BodeOptions& options, Console& console) {
  SetUpAnalyser(model, options, console);
}

std::vector<std::string> MeasureLoop(const MakeModel& make, const BodeOptions& options,
                                     Console& console, bool showProgress) {
  const auto model = MakeFirst(make);
  ZelXfer& xfer = SetUpAnalyser(*model, options, console);
  MeasureResponse(*model, xfer, console, showProgress);
  return MarginFields(xfer);
}

}  // namespace torvane::cli
