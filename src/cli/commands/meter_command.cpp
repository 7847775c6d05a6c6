#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/command_error.h"
#include "cli/commands/commands.h"
#include "cli/io/number_options.h"
#include "cli/io/result_file.h"
#include "cli/model/long_run.h"
#include "cli/model/model_options.h"
#include "core/text.h"
#include "instruments/meter/meter.h"

namespace torvane::cli {
namespace {

struct MeterOptions {
  ModelOptions Model;
  std::string Variable;
  std::optional<int> Kind;  ///< a MeterKind
  double Until = 0.0;
  std::string With;
  std::optional<double> Harmonic;
  std::optional<double> Window;
  std::optional<double> Lpf;
  std::optional<double> Hpf;
  std::optional<double> TSample;
  std::optional<bool> Ac;
  std::optional<bool> Db;
};

// In the order of MeterKind.
std::vector<std::string> KindNames() {
  std::vector<std::string> names;
  for (const MeterKindNames& kind : MeterKinds) names.emplace_back(kind.Option);
  return names;
}

void SetSecondSignal(ZelMeter& meter, const ZelBenchTop& bench, const std::string& name) {
  const std::string& known = NamedSignal(bench, name).Name();
  switch (meter.Measurement()) {
    case MeterKind::Correlation:
      meter.SetCorrVar(known);
      break;
    case MeterKind::Harmonic:
      meter.SetHarmonicXferVar(known);
      meter.SetHarmonicXfer(true);
      break;
    default:
      throw UsageError("--with goes with the kinds harmonic and correlation only");
  }
}

void SetUp(ZelMeter& meter, const MeterOptions& options) {
  if (options.TSample) meter.SetTSample(*options.TSample);
  if (options.Lpf) meter.SetLpf(*options.Lpf);
  if (options.Hpf) meter.SetAcHpf(*options.Hpf);
  if (options.Harmonic) meter.SetHarmonicFreq(*options.Harmonic);
  if (options.Window) meter.SetTWindow(*options.Window);
  if (options.Ac) meter.SetAcCoupled(*options.Ac);
  if (options.Db) meter.SetUseDb(*options.Db);
}

// What the meter would pass over.
void CheckOptionsOfKind(const ZelMeter& meter, const MeterOptions& options) {
  const bool harmonic = meter.Measurement() == MeterKind::Harmonic;
  if (!harmonic && (options.Harmonic || options.Window)) {
    throw UsageError("--harmonic and --window go with the kind harmonic only");
  }
  if (harmonic && options.Lpf) throw UsageError("--lpf does not go with the kind harmonic");
  if (options.Db && !(harmonic && meter.HarmonicXfer())) {
    throw UsageError("--db goes with a ratio only, the kind harmonic and --with");
  }
  if (options.Hpf && !meter.AcCoupled()) throw UsageError("--hpf needs --ac");
}

// A harmonic is read from whole windows; before the first one ends there is nothing to read.
void CheckWindowFits(const ZelMeter& meter, double until) {
  if (meter.Measurement() != MeterKind::Harmonic) return;
  const double window = meter.WindowLength();
  if (until > window) return;
  throw UsageError("--until must be above the harmonic's window of " + FormatShortest(window) +
                   " s");
}

// The meter alone asks for times.
void Measure(ZelModel& model, ZelMeter& meter, double until, Console& console) {
  LongRun run(model, console, until, Console::CanShowProgress(false));
  while (run.Time() < until) {
    run.StepTo(std::min(meter.NextTime(), until));
    run.Service(meter);
  }
}

// The first meter that the model's file has set up, else a new one, of which the options must say
// what it measures.
ZelMeter& ChooseMeter(ZelModel& model, const MeterOptions& options) {
  const auto& meters = model.Bench().Instruments(InstrumentKind::Meter);
  if (!meters.empty()) return dynamic_cast<ZelMeter&>(*meters.front());
  if (options.Variable.empty()) throw UsageError("--variable is required");
  if (!options.Kind) throw UsageError("--kind is required");
  if (options.With.empty() && static_cast<MeterKind>(*options.Kind) == MeterKind::Correlation) {
    throw UsageError("--with names the signal to correlate with; it is needed");
  }
  ZelMeter* const meter = AddMeter(model, "Meter");
  if (!meter) throw UsageError("");
  return *meter;
}

void ReadMeter(const MeterOptions& options, Console& console) {
  const auto model = OpenModel(options.Model, console);
  ZelMeter* const meter = &ChooseMeter(*model, options);
  if (!options.Variable.empty()) {
    meter->SetVariable(NamedSignal(model->Bench(), options.Variable).Name());
  }
  if (options.Kind) meter->SetKind(static_cast<MeterKind>(*options.Kind));
  if (!options.With.empty()) SetSecondSignal(*meter, model->Bench(), options.With);
  console.ApplySettings([&] { SetUp(*meter, options); });
  CheckOptionsOfKind(*meter, options);
  CheckWindowFits(*meter, options.Until);
  ResultFile output("");
  Measure(*model, *meter, options.Until, console);
  std::string reading = FormatShortest(meter->Value());
  if (meter->Measurement() == MeterKind::Harmonic)
    reading += " " + FormatShortest(meter->AngleDeg());
  output.Write(reading + "\n");
  output.Close();
}

}  // namespace

void AddMeterCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "meter", "Measure one signal: prints the value and, for a harmonic, its angle in degrees");
  const auto options = std::make_shared<MeterOptions>();
  AddModelOptions(*command, options->Model);
  command
      ->add_option("--variable", options->Variable,
                   "Signal to measure; needed unless MODEL is a file with a meter")
      ->type_name("V");
  AddChoice(*command, "--kind", options->Kind, KindNames(),
            "What to measure; needed unless MODEL is a file with a meter");
  AddNumber(*command, "--until", options->Until, NumberRange::Positive,
            "Simulated time at which to read the meter, seconds")
      ->required();
  command->add_option("--with", options->With, "Second signal, of a correlation or harmonic ratio")
      ->type_name("V2");
  AddNumber(*command, "--harmonic", options->Harmonic, NumberRange::Positive,
            "Frequency of the harmonic, Hz");
  AddNumber(*command, "--window", options->Window, NumberRange::NotNegative,
            "Integration time of the harmonic, rounded up to whole periods, seconds");
  AddNumber(*command, "--lpf", options->Lpf, NumberRange::NotNegative,
            "Low-pass filter of RMS, average and correlation, Hz");
  const auto coupling = [&](const std::string& flag, bool ac, const std::string& description) {
    return command->add_flag_callback(
        flag, [options, ac] { options->Ac = ac; }, description);
  };
  coupling("--ac", true, "Couple through a high-pass filter")
      ->excludes(coupling("--dc", false, "Couple directly"));
  AddNumber(*command, "--hpf", options->Hpf, NumberRange::NotNegative,
            "The high-pass filter's frequency, Hz");
  command->add_flag_function(
      "--db,!--no-db", [options](std::int64_t count) { options->Db = count > 0; },
      "Give a harmonic ratio in dB, or as it is");
  AddNumber(*command, "--tsample", options->TSample, NumberRange::Positive,
            "The meter's sample time, seconds");
  command->callback([options, &console] { ReadMeter(*options, console); });
}

}  // namespace torvane::cli
