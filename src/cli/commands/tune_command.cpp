#include <CLI/CLI.hpp>

#include "cli/arguments/measure_arguments.h"
#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/interrupt.h"
#include "cli/io/number_options.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "core/csv.h"
#include "core/text.h"
#include "study/row.h"
#include "workbench/study/tuning_run.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

struct TuneCommand {
  TuneOptions Tune;
  std::string Save;
  bool Progress = false;
  std::string Trace;
  TableForm Form;
};

/// A search whose course is told.
class TuneAndTell {
 public:
  TuneAndTell(const TuneCommand& options, Console& console)
      : options_(options), console_(console), search_(options.Tune, console, [&] {
          const std::string& model = options.Tune.Measure.Bode.Response.Model.Model;
          if (!options.Save.empty() && !options.Trace.empty() &&
              SameFile(options.Save, options.Trace)) {
            throw UsageError("--out and --trace name one file, \"" + options.Trace + "\"");
          }
          CheckOutputs(options.Save, options.Trace, NamesModelFile(model) ? model : "");
        }) {}

  void Run() {
    const InterruptGuard guard;
    ResultFile output("");
    std::optional<TableWriter> table;
    if (options_.Progress) table.emplace(TuneColumns(), options_.Form, output);
    table_ = table ? &*table : nullptr;
    const Tuning best = search_.Run([this](int runs, const Tuning& so) { return GoOn(runs, so); });
    console_.ShowProgress("");
    if (!options_.Progress) {
      table.emplace(TuneColumns(), options_.Form, output);
      table->Write(search_.Fields(best));
    }
    table->End();
    output.Close();
    search_.CheckMet(best);
    if (!options_.Save.empty()) search_.Save(best, options_.Save);
    if (InterruptGuard::Interrupted()) throw StoppedError("interrupted; this is the best so far");
  }

 private:
  bool GoOn(int runs, const Tuning& best) {
    // A better one is the one that was measured last.
    if (best.Values != best_) WriteResponse();
    best_ = best.Values;
    const bool good = search_.Met(best);
    if (options_.Progress) {
      std::vector<std::string> fields{std::to_string(runs), good ? "1" : "0"};
      Append(fields, search_.Fields(best));
      table_->Write(fields);
    }
    if (Console::CanShowProgress(false)) {
      console_.ShowProgress("run " + std::to_string(runs) + " of " +
                            std::to_string(search_.MostRuns()) +
                            (good ? ", the goal is met" : ", the goal is not met yet"));
    }
    return !InterruptGuard::Interrupted();
  }

  std::vector<Column> TuneColumns() const {
    const std::vector<std::string> captions = search_.Captions();
    const std::vector<std::string> units = search_.Units();
    std::vector<Column> columns;
    if (options_.Progress) columns = Columns({"Runs", "Met"});
    for (std::size_t i = 0; i < captions.size(); ++i) {
      columns.push_back({captions[i], units[i], captions[i] == ReasonCaption});
    }
    return columns;
  }

  void WriteResponse() const {
    const StudyTrace& response = search_.LastResponse();
    if (options_.Trace.empty() || response.Times.empty()) return;
    ResultFile file(options_.Trace);
    file.Write(CsvLine({"Time", search_.ResponseSignal()}));
    for (std::size_t i = 0; i < response.Times.size(); ++i) {
      file.Write(CsvLine(
          {FormatShortestSingle(response.Times[i]), FormatShortestSingle(response.Values[i])}));
    }
    file.Close();
  }

  const TuneCommand& options_;
  Console& console_;
  TuningRun search_;
  TableWriter* table_ = nullptr;  // of a search whose course is printed
  std::vector<std::string> best_;
};

}  // namespace

void AddTuneCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "tune", "Look for the constants with which a model meets requirements, as a line of CSV");
  const auto options = std::make_shared<TuneCommand>();
  AddModelName(*command, options->Tune.Measure.Bode.Response.Model.Model);
  command
      ->add_option(
          "--vary", options->Tune.Vary,
          "A constant and between which values it is looked for; with :log evenly on their "
          "logarithm. Repeatable")
      ->type_name("NAME=FROM:TO[:log]")
      ->required();
  command
      ->add_option("--require", options->Tune.Require,
                   "What the tuning has to reach, as Overshoot<10 or GainMargin>=6. Repeatable")
      ->type_name("MEASURE<NUMBER");
  command
      ->add_option("--best", options->Tune.Best,
                   "The measure that is to be as good as it can be then: as large as it can for "
                   "Bandwidth and margins, else as small")
      ->type_name("MEASURE");
  AddInteger(*command, "--runs", options->Tune.MostRuns,
             "Try so many tunings at most; 200 without it");
  AddMeasureOptions(*command, options->Tune.Measure);
  command->add_option("--out", options->Save, "Model file to write, with the tuning that was found")
      ->type_name("FILE.tvf");
  command->add_flag("--progress", options->Progress,
                    "Print a line after each run instead: how many were made, whether the best so "
                    "far meets all, and the best so far");
  command
      ->add_option("--trace", options->Trace,
                   "Write the response of the best so far to this file, whenever there is a better "
                   "one")
      ->type_name("FILE.csv");
  AddTableForm(*command, options->Form);
  command->callback([options, &console] { TuneAndTell(*options, console).Run(); });
}

}  // namespace torvane::cli
