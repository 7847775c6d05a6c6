#include "cli/arguments/instrument_arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>

#include "cli/arguments/response_arguments.h"
#include "cli/io/number_options.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

// In the order of MeterKind.
std::vector<std::string> KindNames() {
  std::vector<std::string> names;
  for (const MeterKindNames& kind : MeterKinds) names.emplace_back(kind.Option);
  return names;
}

constexpr const char* BodePrefix = "--bode-";
constexpr const char* SweepPrefix = "--sweep-";
constexpr const char* MeterPrefix = "--meter-";

void AddPair(CLI::App& command, ResponseOptions& options, const std::string& prefix) {
  command
      .add_option(prefix + "input", options.Input, "Signal that the response is measured against")
      ->type_name("SIGNAL");
  command.add_option(prefix + "output", options.Output, "Signal whose response is measured")
      ->type_name("SIGNAL");
  command.add_option(prefix + "setup", options.Setup, "Both, by the name of a pair of the model")
      ->type_name("PAIR")
      ->excludes(prefix + "input")
      ->excludes(prefix + "output");
}

// Nothing is asked of an instrument of which nothing is given.
template <class Set>
void ApplyGiven(const CLI::App& command, const std::string& prefix, const Set& set) {
  const auto options = command.get_options([&](const CLI::Option* option) {
    return option->count() > 0 && option->get_name().starts_with(prefix);
  });
  if (options.empty()) return;
  try {
    set();
  } catch (const WorkFault& fault) {
    const std::string why = fault.what();
    if (why.empty()) throw;
    throw WorkFault(fault.What(), prefix + "...: " + why);
  }
}

}  // namespace

void AddSweepOptions(CLI::App& command, SweepOptions& options, const std::string& prefix) {
  AddNumber(command, prefix + "from", options.From, NumberRange::Positive, "First frequency, Hz");
  AddNumber(command, prefix + "to", options.To, NumberRange::Positive,
            "The sweep ends at the first point at or above it, Hz");
  AddInteger(command, prefix + "per-decade", options.PerDecade, "Points per decade");
  AddNumber(command, prefix + "settle", options.Settle, NumberRange::NotNegative,
            "Time to settle at each frequency, seconds");
  AddNumber(command, prefix + "measure", options.Measure, NumberRange::NotNegative,
            "Divided by the frequency it gives the periods measured at each point, at least one");
}

void AddMeterOptions(CLI::App& command, MeterOptions& options, const std::string& prefix) {
  command
      .add_option(prefix + "variable", options.Variable,
                  "Signal to measure; needed unless MODEL is a file with a meter")
      ->type_name("SIGNAL");
  AddChoice(command, prefix + "kind", options.Kind, KindNames(),
            "What to measure; needed unless MODEL is a file with a meter");
  command
      .add_option(prefix + "with", options.With,
                  "Second signal, of a correlation or harmonic ratio")
      ->type_name("SIGNAL");
  AddNumber(command, prefix + "harmonic", options.Harmonic, NumberRange::Positive,
            "Frequency of the harmonic, Hz");
  AddNumber(command, prefix + "window", options.Window, NumberRange::NotNegative,
            "Integration time of the harmonic, rounded up to whole periods, seconds");
  AddNumber(command, prefix + "lpf", options.Lpf, NumberRange::NotNegative,
            "Low-pass filter of RMS, average and correlation, Hz");
  const auto coupling = [&](const std::string& flag, bool ac, const std::string& description) {
    return command.add_flag_callback(
        flag, [&options, ac] { options.Ac = ac; }, description);
  };
  coupling(prefix + "ac", true, "Couple through a high-pass filter")
      ->excludes(coupling(prefix + "dc", false, "Couple directly"));
  AddNumber(command, prefix + "hpf", options.Hpf, NumberRange::NotNegative,
            "The high-pass filter's frequency, Hz");
  command.add_flag_function(
      prefix + "db,!" + prefix + "no-db",
      [&options](std::int64_t count) { options.Db = count > 0; },
      "Give a harmonic ratio in dB, or as it is");
  AddNumber(command, prefix + "tsample", options.TSample, NumberRange::Positive,
            "The meter's sample time, seconds");
}

void AddInstrumentSettings(CLI::App& command, InstrumentSettings& settings) {
  AddPair(command, settings.Bode.Response, BodePrefix);
  AddExcitationOptions(command, settings.Bode.Response, BodePrefix);
  AddRecordOptions(command, settings.Bode, BodePrefix);
  AddSpectrum(command, settings.Bode, BodePrefix);
  AddPair(command, settings.Sweep.Response, SweepPrefix);
  AddExcitationOptions(command, settings.Sweep.Response, SweepPrefix);
  AddSweepOptions(command, settings.Sweep, SweepPrefix);
  AddMeterSettings(command, settings.Meter);
}

void AddMeterSettings(CLI::App& command, MeterOptions& options) {
  AddMeterOptions(command, options, MeterPrefix);
}

void Apply(const CLI::App& command, ZelModel& model, const InstrumentSettings& settings,
           Supervisor& supervisor) {
  ZelBenchTop& bench = model.Bench();
  ApplyGiven(command, BodePrefix, [&] {
    auto& xfer = dynamic_cast<ZelXfer&>(
        ChooseAnalyser(bench, InstrumentKind::FftAnalyser, settings.Bode.Response));
    supervisor.ApplySettings([&] { SetUp(xfer, settings.Bode); });
  });
  ApplyGiven(command, SweepPrefix, [&] {
    auto& analyser = dynamic_cast<ZelSweptDSA&>(
        ChooseAnalyser(bench, InstrumentKind::SweptSine, settings.Sweep.Response));
    supervisor.ApplySettings([&] { SetUp(analyser, settings.Sweep); });
  });
  ApplyGiven(command, MeterPrefix, [&] {
    MeterOptions meter = settings.Meter;
    meter.Until = std::numeric_limits<double>::infinity();  // it is not read here
    SetUpMeter(model, meter, supervisor);
  });
}

}  // namespace torvane::cli
