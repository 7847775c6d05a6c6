#include <CLI/CLI.hpp>
#include <cmath>
#include <set>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/json.h"
#include "cli/io/number_options.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "cli/response/response_output.h"
#include "cli/study/study_columns.h"
#include "core/messages.h"
#include "core/text.h"
#include "linear/linear_fault.h"
#include "linear/linearize.h"
#include "linear/theory.h"
#include "workbench/model/model_options.h"
#include "workbench/quiet.h"
#include "workbench/study/study_set_up.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

struct LinearizeOptions {
  ModelOptions Model;
  std::string Input;
  std::string Output;
  TableForm Form;
  bool Margins = false;
  std::string Out;
};

std::vector<std::string> RootFields(const Root& root) {
  return {FormatShortest(root.Value.real()), FormatShortest(root.Value.imag() + 0.0),
          std::isfinite(root.Hz) ? FormatShortest(root.Hz) : "", FormatShortest(root.Damping)};
}

void TellNotes(const std::vector<std::string>& notes) {
  for (const std::string& note : notes) Note(note);
}

// In 1/s of a continuous system; those of a sampled one have no unit.
std::vector<Column> RootColumns(const std::string& first, const std::string& firstUnit,
                                bool sampled) {
  const char* const unit = sampled ? "" : "1/s";
  return {{first, firstUnit},
          {"Real", unit},
          {"Imaginary", unit},
          {"Frequency", "Hz"},
          {"Damping", ""}};
}

void WriteRoots(const std::string& kind, const std::vector<Root>& roots, TableWriter& table) {
  for (const Root& root : roots) {
    std::vector<std::string> line{kind};
    for (std::string& field : RootFields(root)) line.push_back(std::move(field));
    table.Write(line);
  }
}

/// Writes JSON of numbers and lists; names are the loop's own and need their quotes escaped.
class Json {
 public:
  explicit Json(ResultFile& file) : file_(file) { file_.Write("{\n"); }

  void Text(const std::string& key, const std::string& text) { Entry(key, JsonText(text)); }
  void Number(const std::string& key, double value) { Entry(key, JsonNumber(value)); }
  void Matrix(const std::string& key, const Eigen::MatrixXd& matrix) {
    std::vector<std::string> rows;
    for (Eigen::Index i = 0; i < matrix.rows(); ++i) {
      std::vector<std::string> row;
      for (Eigen::Index k = 0; k < matrix.cols(); ++k) row.push_back(JsonNumber(matrix(i, k)));
      rows.push_back(List(row));
    }
    Entry(key, List(rows));
  }
  void Roots(const std::string& key, const std::vector<Root>& roots) {
    std::vector<std::string> list;
    for (const Root& root : roots) {
      list.push_back("{\"real\": " + JsonNumber(root.Value.real()) + ", \"imaginary\": " +
                     JsonNumber(root.Value.imag()) + ", \"frequency\": " + JsonNumber(root.Hz) +
                     ", \"damping\": " + JsonNumber(root.Damping) + "}");
    }
    Entry(key, List(list));
  }
  void Close() { file_.Write("\n}\n"); }

 private:
  static std::string List(const std::vector<std::string>& items) {
    std::string list;
    for (const std::string& item : items) list += (list.empty() ? "" : ", ") + item;
    return "[" + list + "]";
  }
  void Entry(const std::string& key, const std::string& value) {
    file_.Write((first_ ? "  \"" : ",\n  \"") + key + "\": " + value);
    first_ = false;
  }

  ResultFile& file_;
  bool first_ = true;
};

void WriteLinear(const LinearizeOptions& options, const std::string& model,
                 const LinearModel& linear, ResultFile& file) {
  const LinearSystem system = TheoryPair(linear, options.Input, options.Output).System();
  std::vector<Root> poles = Poles(system);
  std::vector<Root> zeros = Zeros(system, 0);
  Cancel(poles, zeros);
  if (!options.Form.IsJson()) {
    TableWriter table(RootColumns("Kind", "", system.Ts > 0.0), options.Form, file);
    WriteRoots("Pole", poles, table);
    WriteRoots("Zero", zeros, table);
    return;
  }
  Json json(file);
  json.Text("model", model);
  json.Text("input", options.Input);
  json.Text("output", options.Output);
  json.Number("Ts", system.Ts);
  json.Matrix("A", system.A);
  json.Matrix("B", system.B);
  json.Matrix("C", system.C);
  json.Matrix("D", system.D);
  json.Roots("poles", poles);
  json.Roots("zeros", zeros);
  json.Close();
}

void WriteMargins(const LoopTheory& theory, const TableForm& form, ResultFile& file) {
  PrintMarginLines("Theory", theory.Read, form, file);
  TellNotes(theory.Read.Missing);
}

void TellStability(const Stability& stability) {
  if (stability.Is == Stability::Verdict::Stable) return;
  if (stability.Is == Stability::Verdict::Unstable) {
    Warning(stability.Text + "  The loop leaves the point that this is about.");
  } else {
    Note(stability.Text);
  }
}

void LinearizeModel(const LinearizeOptions& options, Console& console) {
  if (!options.Margins && (options.Input.empty() || options.Output.empty())) {
    throw UsageError("--input and --output are needed, or --margins");
  }
  const auto model = OpenModel(options.Model, console);
  for (const std::string& signal : {options.Input, options.Output}) {
    if (!signal.empty()) NamedSignal(model->Bench(), signal);
  }
  ResultFile file(options.Out);
  try {
    if (options.Margins) {
      const LoopTheory theory = TheoryOfLoop(*model);
      TellNotes(theory.Notes);
      WriteMargins(theory, options.Form, file);
    } else {
      const LinearModel linear = Linearize(*model);
      TellNotes(linear.Notes);
      TellStability(linear.Stability());
      WriteLinear(options, model->Name(), linear, file);
    }
  } catch (const LinearFault& fault) {
    throw StoppedError(fault.what());
  }
  file.Close();
}

struct LocusOptions {
  ModelOptions Model;
  std::string Vary;
  std::string Out;
  TableForm Form;
};

/// The poles at one value, as the model took it.
struct LocusPoint {
  std::string Value;
  bool Sampled = false;
  std::vector<Root> Poles;
  std::vector<std::string> Notes;
};

// One model a value: what an earlier one carried is no matter of a later one.
LocusPoint PointOf(const LocusOptions& options, const StudyDesign& design, std::size_t run,
                   Console& console) {
  const Quiet quiet;
  const auto model = OpenModel(options.Model, console);
  const std::string value = ApplyRun(model->Bench(), design, run).Settings.front();
  const LinearModel linear = Linearize(*model);
  return {value, linear.Sampled(), linear.Poles(), linear.Notes};
}

void DrawLocus(const LocusOptions& options, Console& console) {
  const StudyRange range = ParseVaryRange(options.Vary, VaryValues::Listed);
  const StudyDesign design = MakeGrid({range});
  const auto first = OpenModel(options.Model, console);
  CheckDesign(design, *first);
  const std::string unit = SettingColumns(*first, design.Names).front().Unit;
  ResultFile file(options.Out);
  std::optional<TableWriter> table;  // the first value tells whether the model is sampled
  std::set<std::string> told;
  for (std::size_t run = 0; run < design.Runs.size(); ++run) {
    const std::string at = range.Name + " = " + design.Runs[run].front() + ": ";
    try {
      const LocusPoint point = PointOf(options, design, run, console);
      for (const std::string& note : point.Notes) {
        if (told.insert(note).second) Note(at + note);
      }
      if (!table) table.emplace(RootColumns(range.Name, unit, point.Sampled), options.Form, file);
      WriteRoots(point.Value, point.Poles, *table);
    } catch (const LinearFault& fault) {
      throw StoppedError(at + fault.what());
    }
  }
  if (table) table->End();
  file.Close();
}

}  // namespace

void AddLinearizeCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "linearize",
      "Tell a model's poles and zeros between two signals as CSV, or its state space as JSON, "
      "about the point at which it stands with its generators at their offsets");
  const auto options = std::make_shared<LinearizeOptions>();
  AddModelOptions(*command, options->Model);
  CLI::Option* const margins =
      command->add_flag("--margins", options->Margins,
                        "Print margins and sensitivity peak of the model's own loop instead");
  command->add_option("--input", options->Input, "Signal that leads to the output")
      ->type_name("SIGNAL")
      ->excludes(margins);
  command->add_option("--output", options->Output, "Signal that follows")
      ->type_name("SIGNAL")
      ->excludes(margins);
  AddChoice(*command, "--format", options->Form.Format, {"csv", "json"},
            "csv: poles and zeros; json: A, B, C, D and the sample time Ts as well. Of margins a "
            "table either way");
  AddUnits(*command, options->Form);
  command->add_option("--out", options->Out, "File to write; standard output without it")
      ->type_name("FILE");
  command->callback([options, &console] { LinearizeModel(*options, console); });
}

void AddLocusCommand(CLI::App& app, Console& console) {
  CLI::App* const command =
      app.add_subcommand("locus", "Tell how a model's poles move with a constant, as CSV");
  const auto options = std::make_shared<LocusOptions>();
  AddModelOptions(*command, options->Model);
  command
      ->add_option("--vary", options->Vary,
                   "The constant and its values: NAME=FROM:TO:COUNT, with :log evenly spaced on "
                   "their logarithm")
      ->type_name("NAME=FROM:TO:COUNT[:log]")
      ->required();
  command->add_option("--out", options->Out, "File to write; standard output without it")
      ->type_name("FILE");
  AddTableForm(*command, options->Form);
  command->callback([options, &console] { DrawLocus(*options, console); });
}

}  // namespace torvane::cli
