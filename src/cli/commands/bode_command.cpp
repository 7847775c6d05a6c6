#include <CLI/CLI.hpp>

#include "cli/command_error.h"
#include "cli/commands/commands.h"
#include "cli/long_run.h"
#include "cli/number_options.h"
#include "cli/pictures.h"
#include "cli/response_output.h"
#include "cli/result_file.h"
#include "core/csv.h"
#include "core/text.h"
#include "instruments/fft/fft_analyser.h"

namespace torvane::cli {
namespace {

struct BodeOptions {
  ResponseOptions Response;
  std::optional<int> Order;
  std::optional<double> StartDelay;
  std::optional<double> EndDelay;
  std::optional<bool> Spectrum;
};

void SetUp(ZelXfer& xfer, const BodeOptions& options) {
  const ResponseOptions& response = options.Response;
  FftSetup setup = xfer.Setup();
  setup.Order = options.Order.value_or(setup.Order);
  setup.TSample = response.TSample.value_or(setup.TSample);
  setup.TStartDelay = options.StartDelay.value_or(setup.TStartDelay);
  setup.TEndDelay = options.EndDelay.value_or(setup.TEndDelay);
  setup.Amplitude = response.Amplitude.value_or(setup.Amplitude);
  setup.Offset = response.Offset.value_or(setup.Offset);
  const SetupFinding finding = xfer.Check(setup);
  if (finding.What == SetupFinding::Kind::Refusal) {
    const std::string fits = finding.WouldFit.empty() ? "" : " (fits: " + finding.WouldFit + ")";
    throw UsageError(finding.Text + fits);
  }
  if (finding.What == SetupFinding::Kind::Warning) Warning(finding.Text);
  xfer.Apply(setup);
  if (options.Spectrum) xfer.SetSpectrum(*options.Spectrum);
  ApplyOptions(xfer, response);
}

// A measurement from Run to Complete. No other instrument asks for times.
void Measure(ZelModel& model, ZelXfer& xfer, Console& console, bool showProgress) {
  const double end = xfer.TStartDelay() + xfer.Averages() * xfer.RecordTime();
  LongRun run(model, console, end, showProgress);
  xfer.Run();
  while (xfer.Measuring()) {
    run.StepTo(xfer.NextTime());
    run.Service(xfer);
  }
  if (xfer.HasData(0)) return;
  throw StoppedError("the record is not whole: " + std::to_string(xfer.SampleCount()) + " of " +
                     std::to_string(xfer.Length()) + " samples");
}

void WriteBins(ZelXfer& xfer, ResultFile& file) {
  const bool averaged = xfer.HasCoherence(0);
  std::vector<std::string> line{"Bin", "Frequency", "Gain", "Phase"};
  if (averaged) line.emplace_back("Excited");
  Append(line, MoreCaptions(xfer));
  file.Write(CsvLine(line));
  for (int bin = 0; bin <= xfer.Length() / 2; ++bin) {
    const double hz = xfer.BinFrequency(bin);
    line = {std::to_string(bin), FormatShortest(hz), FormatShortest(xfer.ResponseGain(0, bin)),
            FormatShortest(xfer.ResponsePhase(0, bin))};
    if (averaged) line.emplace_back(xfer.Excited(0, bin) ? "1" : "0");
    Append(line, MoreFields(xfer, bin, hz));
    file.Write(CsvLine(line));
  }
  file.Close();
}

void MeasureBode(const BodeOptions& options, Console& console) {
  CheckChannels(options.Response);
  const auto model = OpenModel(options.Response.Model, console);
  auto& xfer = dynamic_cast<ZelXfer&>(
      ChooseAnalyser(model->Bench(), InstrumentKind::FftAnalyser, options.Response));
  console.ApplySettings([&] { SetUp(xfer, options); });
  ResultFile file(options.Response.Out);
  Measure(*model, xfer, console, Console::CanShowProgress(false));
  if (WritesPoints(options.Response)) WriteBins(xfer, file);
  if (options.Response.Margins) PrintMargins(xfer);
  if (options.Response.Picture.empty()) return;
  // A file's range of frequencies is part of its set-up.
  if (!NamesModelFile(options.Response.Model.Model)) xfer.AutoRange();
  WritePicture(xfer, options.Response.Picture);
}

}  // namespace

void AddBodeCommand(CLI::App& app, Console& console) {
  CLI::App* const command =
      app.add_subcommand("bode", "Measure a frequency response with the FFT analyser, as CSV");
  const auto options = std::make_shared<BodeOptions>();
  AddResponseOptions(*command, options->Response);
  AddInteger(*command, "--order", options->Order, "Samples of the record, as a power of two");
  AddNumber(*command, "--start-delay", options->StartDelay, NumberRange::NotNegative,
            "Time before the first sample, seconds");
  AddNumber(*command, "--end-delay", options->EndDelay, NumberRange::NotNegative,
            "Last part of the record without excitation, seconds");
  command->add_flag_function(
      "--spectrum,!--no-spectrum", [options](std::int64_t count) { options->Spectrum = count > 0; },
      "Give the output's spectrum alone, under a triangular window, or the response");
  command->callback([options, &console] { MeasureBode(*options, console); });
}

}  // namespace torvane::cli
