#include <CLI/CLI.hpp>
#include <cmath>
#include <set>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/number_options.h"
#include "cli/io/result_file.h"
#include "cli/response/response_output.h"
#include "core/csv.h"
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
  std::optional<int> Format;
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

void WriteRoots(const char* kind, const std::vector<Root>& roots, ResultFile& file) {
  for (const Root& root : roots) {
    std::vector<std::string> line{kind};
    for (std::string& field : RootFields(root)) line.push_back(std::move(field));
    file.Write(CsvLine(line));
  }
}

/// Writes JSON of numbers and lists; names are the loop's own and need their quotes escaped.
class Json {
 public:
  explicit Json(ResultFile& file) : file_(file) { file_.Write("{\n"); }

  void Text(const std::string& key, const std::string& text) {
    std::string escaped;
    for (const char c : text) {
      if (c == '"' || c == '\\') escaped += '\\';
      escaped += c;
    }
    Entry(key, '"' + escaped + '"');
  }
  void Number(const std::string& key, double value) { Entry(key, NumberText(value)); }
  void Matrix(const std::string& key, const Eigen::MatrixXd& matrix) {
    std::vector<std::string> rows;
    for (Eigen::Index i = 0; i < matrix.rows(); ++i) {
      std::vector<std::string> row;
      for (Eigen::Index k = 0; k < matrix.cols(); ++k) row.push_back(NumberText(matrix(i, k)));
      rows.push_back(List(row));
    }
    Entry(key, List(rows));
  }
  void Roots(const std::string& key, const std::vector<Root>& roots) {
    std::vector<std::string> list;
    for (const Root& root : roots) {
      list.push_back("{\"real\": " + NumberText(root.Value.real()) + ", \"imaginary\": " +
                     NumberText(root.Value.imag()) + ", \"frequency\": " + NumberText(root.Hz) +
                     ", \"damping\": " + NumberText(root.Damping) + "}");
    }
    Entry(key, List(list));
  }
  void Close() { file_.Write("\n}\n"); }

 private:
  static std::string NumberText(double value) {
    return std::isfinite(value) ? FormatShortest(value) : "null";
  }
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
  if (options.Format.value_or(0) == 0) {
    file.Write(CsvLine({"Kind", "Real", "Imaginary", "Frequency", "Damping"}));
    WriteRoots("Pole", poles, file);
    WriteRoots("Zero", zeros, file);
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

void WriteMargins(const LoopTheory& theory, ResultFile& file) {
  PrintMarginLines("Theory", theory.Read, file);
  if (const auto& peak = theory.Read.Sensitivity) {
    file.Write(CsvLine({"Theory", "Sensitivity", FormatGeneral(peak->Hz, 6, 2),
                        FormatGeneral(peak->Value, 6, 2), ""}));
  }
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
      WriteMargins(theory, file);
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
};

/// The poles at one value, as the model took it.
struct LocusPoint {
  std::string Value;
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
  return {value, linear.Poles(), linear.Notes};
}

void DrawLocus(const LocusOptions& options, Console& console) {
  const StudyRange range = ParseVaryRange(options.Vary, VaryValues::Listed);
  const StudyDesign design = MakeGrid({range});
  CheckDesign(design, *OpenModel(options.Model, console));
  ResultFile file(options.Out);
  file.Write(CsvLine({range.Name, "Real", "Imaginary", "Frequency", "Damping"}));
  std::set<std::string> told;
  for (std::size_t run = 0; run < design.Runs.size(); ++run) {
    const std::string at = range.Name + " = " + design.Runs[run].front() + ": ";
    try {
      const LocusPoint point = PointOf(options, design, run, console);
      for (const std::string& note : point.Notes) {
        if (told.insert(note).second) Note(at + note);
      }
      WriteRoots(point.Value.c_str(), point.Poles, file);
    } catch (const LinearFault& fault) {
      throw StoppedError(at + fault.what());
    }
  }
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
      ->excludes(margins);
  command->add_option("--output", options->Output, "Signal that follows")->excludes(margins);
  AddChoice(*command, "--format", options->Format, {"csv", "json"},
            "csv: poles and zeros; json: A, B, C, D and the sample time Ts as well")
      ->excludes(margins);
  command->add_option("--out", options->Out, "File to write; standard output without it");
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
      ->required();
  command->add_option("--out", options->Out, "File to write; standard output without it");
  command->callback([options, &console] { DrawLocus(*options, console); });
}

}  // namespace torvane::cli
