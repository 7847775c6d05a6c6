#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/number_options.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "core/text.h"
#include "workbench/meter_reading.h"
#include "workbench/model/model_options.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

// In the order of MeterKind.
std::vector<std::string> KindNames() {
  std::vector<std::string> names;
  for (const MeterKindNames& kind : MeterKinds) names.emplace_back(kind.Option);
  return names;
}

// As one reads it: the value and, of a harmonic, its angle.
void WriteReading(const ZelMeter& meter, const TableForm& form, ResultFile& output) {
  std::vector<std::string> fields{FormatShortest(meter.Value())};
  if (meter.Measurement() == MeterKind::Harmonic)
    fields.push_back(FormatShortest(meter.AngleDeg()));
  if (form.Format) {
    std::vector<std::string> captions{"Value", "Angle"};
    captions.resize(fields.size());
    TableWriter table(Columns(captions), form, output);
    table.Write(fields);
  } else {
    output.Write(fields.front() + (fields.size() > 1 ? " " + fields.back() : "") + "\n");
  }
}

void ReadMeter(const MeterOptions& options, const TableForm& form, Console& console) {
  const auto model = OpenModel(options.Model, console);
  ZelMeter& meter = SetUpMeter(*model, options, console);
  ResultFile output("");
  console.ShowRuns();
  Measure(*model, meter, options.Until, console);
  WriteReading(meter, form, output);
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
      ->type_name("SIGNAL");
  AddChoice(*command, "--kind", options->Kind, KindNames(),
            "What to measure; needed unless MODEL is a file with a meter");
  AddNumber(*command, "--until", options->Until, NumberRange::Positive,
            "Simulated time at which to read the meter, seconds")
      ->required();
  command->add_option("--with", options->With, "Second signal, of a correlation or harmonic ratio")
      ->type_name("SIGNAL");
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
  const auto form = std::make_shared<TableForm>();
  AddFormat(*command, *form);
  command->callback([options, form, &console] { ReadMeter(*options, *form, console); });
}

}  // namespace torvane::cli
