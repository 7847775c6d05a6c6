#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/number_options.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "core/text.h"
#include "workbench/model/model_options.h"
#include "workbench/recording.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

struct RunOptions {
  ModelOptions Model;
  double Until = 0.0;
  double Every = 0.0;
  std::string Record;
  std::string Out;
  std::string Picture;
  TableForm Form;
};

std::vector<Column> ColumnsOf(const ZelBenchTop& bench, const std::vector<Variable*>& signals) {
  std::vector<Column> columns{{"Time", bench.TimeVar()->Unit()}};
  for (const Variable* signal : signals) columns.push_back({signal->Name(), signal->Unit()});
  return columns;
}

std::vector<RecordedRun::Signal> SignalsOf(const std::vector<Variable*>& signals) {
  std::vector<RecordedRun::Signal> named;
  for (const Variable* signal : signals) named.push_back({signal->Name(), signal->Unit()});
  return named;
}

class Recording {
 public:
  Recording(const ZelModel& model, const RunOptions& options)
      : bench_(model.Bench()),
        signals_(ListedSignals(bench_, options.Record)),
        file_(options.Out, Delivery::Streamed),
        table_(ColumnsOf(bench_, signals_), options.Form, file_),
        row_(signals_.size() + 1) {
    if (options.Picture.empty()) return;
    drawn_.emplace(model.Name(), bench_.TimeVar()->Unit(), SignalsOf(signals_));
  }

  void WriteRow() {
    row_.front() = bench_.Time();
    std::transform(signals_.begin(), signals_.end(), row_.begin() + 1,
                   [](const Variable* signal) { return signal->DisplayValue(); });
    table_.Write(row_);
    if (drawn_) drawn_->Add(row_.front(), std::span(row_).subspan(1));
  }

  bool IsStandardOutput() const { return file_.IsStandardOutput(); }
  void Close() {
    table_.End();
    file_.Close();
  }
  RecordedRun Drawn() { return std::move(*drawn_); }
  /// Of an end before time: what a message about it ends with.
  std::string KeepRows() {
    table_.End();
    return file_.KeepRows();
  }

 private:
  const ZelBenchTop& bench_;
  std::vector<Variable*> signals_;
  ResultFile file_;
  TableWriter table_;
  std::vector<double> row_;
  std::optional<RecordedRun> drawn_;
};

void Record(ZelModel& model, const RunOptions& options, Recording& recording, Console& console) {
  console.ShowRuns(recording.IsStandardOutput());
  RecordRows(model, options.Until, options.Every, console, [&] { recording.WriteRow(); });
  recording.Close();
}

void Run(const RunOptions& options, Console& console) {
  CheckPictureFile(options.Picture);
  CheckOutputs(options.Out, options.Picture, "");
  const auto model = OpenModel(options.Model, console);
  Recording recording(*model, options);
  try {
    Record(*model, options, recording, console);
  } catch (const WorkFault& error) {
    throw WorkFault(error.What(), error.what() + recording.KeepRows());
  }
  if (!options.Picture.empty()) WritePicture(recording.Drawn(), options.Picture);
}

}  // namespace

void AddRunCommand(CLI::App& app, Console& console) {
  CLI::App* const command =
      app.add_subcommand("run", "Simulate a model and record its signals as CSV");
  const auto options = std::make_shared<RunOptions>();
  AddModelOptions(*command, options->Model);
  AddNumber(*command, "--until", options->Until, NumberRange::Positive,
            "Simulated time at which to end, seconds")
      ->required();
  AddNumber(*command, "--every", options->Every, NumberRange::Positive,
            "Simulated time between two rows, seconds")
      ->required();
  command->add_option("--record", options->Record, "Signals to record; all without it")
      ->type_name("A,B,...");
  command
      ->add_option("--out", options->Out,
                   "File to write; standard output without it. Until the end its rows stand in "
                   "FILE.part, and stay there after an end before time")
      ->type_name("FILE");
  command
      ->add_option("--picture", options->Picture,
                   "Draw the signals on time into this file as well, those of very different size "
                   "below each other")
      ->type_name("FILE.png|svg|pdf");
  AddTableForm(*command, options->Form);
  command->callback([options, &console] { Run(*options, console); });
}

}  // namespace torvane::cli
