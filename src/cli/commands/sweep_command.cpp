#include <CLI/CLI.hpp>
#include <cmath>

#include "cli/command_error.h"
#include "cli/commands/commands.h"
#include "cli/io/number_options.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "cli/model/long_run.h"
#include "cli/response/response_output.h"
#include "cli/response/theory_overlay.h"
#include "core/csv.h"
#include "core/text.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane::cli {
namespace {

struct SweepOptions {
  ResponseOptions Response;
  std::optional<double> From;
  std::optional<double> To;
  std::optional<int> PerDecade;
  std::optional<double> Settle;
  std::optional<double> Measure;
};

void SetUp(ZelSweptDSA& analyser, const SweepOptions& options) {
  const ResponseOptions& response = options.Response;
  const double from = options.From.value_or(analyser.FreqMin());
  const double to = options.To.value_or(analyser.FreqMax());
  if (from >= to) {
    throw UsageError("--from must be below --to: " + FormatShortest(from) + " is not below " +
                     FormatShortest(to));
  }
  SweepSetup setup = analyser.Setup();
  setup.StartFreq = from;
  setup.EndFreq = to;
  setup.StepsPerDecade = options.PerDecade.value_or(setup.StepsPerDecade);
  setup.SettleTime = options.Settle.value_or(setup.SettleTime);
  setup.MeasurementTime = options.Measure.value_or(setup.MeasurementTime);
  setup.TSample = response.TSample.value_or(setup.TSample);
  setup.Amplitude = response.Amplitude.value_or(setup.Amplitude);
  setup.Offset = response.Offset.value_or(setup.Offset);
  Heed(analyser.Check(setup));
  analyser.Apply(setup);
  ApplyOptions(analyser, response);
}

// One sweep, from Run to its last point. No other instrument asks for times.
void Sweep(ZelModel& model, ZelSweptDSA& analyser, Console& console) {
  LongRun run(model, console, analyser.ExpectedPlan().Seconds, Console::CanShowProgress(false));
  analyser.Run();
  while (analyser.Measuring()) {
    run.StepTo(analyser.NextTick());
    run.Service(analyser);
  }
  const int points = analyser.PointCount();
  if (points == analyser.ExpectedPlan().Points) return;
  throw StoppedError("the sweep is not whole: " + std::to_string(points) + " points");
}

void WritePoints(const ZelSweptDSA& analyser, ResultFile& file) {
  std::vector<std::string> line{"Frequency", "Gain", "Phase"};
  Append(line, MoreCaptions(analyser));
  file.Write(CsvLine(line));
  for (int point = 0; point < analyser.PointCount(); ++point) {
    const double hz = analyser.PointFrequency(0, point);
    line = {FormatShortest(hz), FormatShortest(analyser.ResponseGain(0, point)),
            FormatShortest(analyser.ResponsePhase(0, point))};
    Append(line, MoreFields(analyser, point, hz));
    file.Write(CsvLine(line));
  }
  file.Close();
}

void MeasureSweep(const SweepOptions& options, Console& console) {
  CheckChannels(options.Response);
  const auto model = OpenModel(options.Response.Model, console);
  auto& analyser = dynamic_cast<ZelSweptDSA&>(
      ChooseAnalyser(model->Bench(), InstrumentKind::SweptSine, options.Response));
  console.ApplySettings([&] { SetUp(analyser, options); });
  if (options.Response.Theory) {
    // The last point is the first at or above the highest frequency.
    const double last = analyser.FreqMax() * std::pow(10.0, 1.0 / analyser.StepsPerDecade());
    LayTheory(analyser, options.Response, analyser.FreqMin(), last, analyser.TSample(), console);
  }
  ResultFile file(options.Response.Out);
  Sweep(*model, analyser, console);
  TellDoubts(analyser, file);
  if (WritesPoints(options.Response)) WritePoints(analyser, file);
  if (options.Response.Margins)
    PrintMargins(analyser, static_cast<ReadAs>(options.Response.MarginsAs.value_or(0)));
  if (!options.Response.Picture.empty()) WritePicture(analyser, options.Response.Picture);
}

}  // namespace

void AddSweepCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "sweep", "Measure a frequency response with the swept-sine analyser, as CSV");
  const auto options = std::make_shared<SweepOptions>();
  AddResponseOptions(*command, options->Response);
  AddNumber(*command, "--from", options->From, NumberRange::Positive, "First frequency, Hz");
  AddNumber(*command, "--to", options->To, NumberRange::Positive,
            "The sweep ends at the first point at or above it, Hz");
  AddInteger(*command, "--per-decade", options->PerDecade, "Points per decade");
  AddNumber(*command, "--settle", options->Settle, NumberRange::NotNegative,
            "Time to settle at each frequency, seconds");
  AddNumber(*command, "--measure", options->Measure, NumberRange::NotNegative,
            "Divided by the frequency it gives the periods measured at each point, at least one");
  command->callback([options, &console] { MeasureSweep(*options, console); });
}

}  // namespace torvane::cli
