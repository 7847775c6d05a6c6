#include "cli/model/model_options.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "cli/io/names.h"
#include "cli/model/loop_loading.h"
#include "cli/model/model_file_loading.h"
#include "cli/model/settings.h"
#include "core/text.h"
#include "models/catalogue.h"

namespace torvane::cli {

void AddModelName(CLI::App& command, std::string& model) {
  command
      .add_option("MODEL", model,
                  "Name of a model, as \"models\" lists them, its beginning (\"6-1\") or index, a "
                  "model file, or a loop of your own, a file that ends in .mo")
      ->required()
      ->type_name("");
}

void AddModelOptions(CLI::App& command, ModelOptions& options) {
  AddModelName(command, options.Model);
  AddModelSettings(command, options);
}

void AddModelSettings(CLI::App& command, ModelOptions& options) {
  command
      .add_option(
          "--set", options.Settings,
          "Set a constant; VALUE of a list constant is a choice's text or index. Repeatable")
      ->allow_extra_args(false)
      ->type_name("NAME=VALUE");
  command
      .add_option(
          "--wave", options.Waves,
          "Set the waveform generator: Waveform (name or index), Amplitude, FreqHz, Offset, "
          "PhaseDeg or DutyCycle; GENERATOR:KEY=VALUE addresses one by name. FILE.csv or "
          "File=FILE.csv "
          "plays a table of time and value; FILE.csv:COLUMN one of several columns. Repeatable")
      ->allow_extra_args(false)
      ->type_name("KEY=VALUE|FILE");
  command.add_flag("--yes", options.AnswerOk,
                   "Answer OK to every question; without it the answer is Cancel");
}

bool NamesModelFile(const std::string& text) {
  if (Catalogue().Find(text) || ParseInteger(text) || NamesLoop(text)) return false;
  std::error_code failure;
  return text.ends_with(".tvf") || text.find('/') != std::string::npos ||
         std::filesystem::exists(text, failure);
}

namespace {

// Of a name, what only one name begins with, or an index.
std::string ModelName(const Catalogue& catalogue, const std::string& text) {
  if (catalogue.Find(text)) return text;
  const std::optional<int> number = ParseInteger(text);
  if (!number) {
    const std::vector<std::string> meant = catalogue.NamesFrom(text);
    if (meant.size() == 1) return meant.front();
    if (meant.empty()) throw UnknownName("model", text, catalogue.Names());
    throw UsageError("\"" + text + "\" may be " + meant[0] + " or " + meant[1] +
                     (meant.size() > 2 ? ", and others" : ""));
  }
  const int count = static_cast<int>(catalogue.Entries().size());
  if (*number < 0 || *number >= count) {
    throw UsageError("no model has the index " + text + "; they go from 0 to " +
                     std::to_string(count - 1));
  }
  return catalogue.Entries()[static_cast<std::size_t>(*number)].Name;
}

}  // namespace

std::unique_ptr<ZelModel> OpenModel(const std::string& text, Console& console) {
  if (NamesLoop(text)) return OpenLoop(text, console);
  if (NamesModelFile(text)) return OpenModelFile(text, console);
  const Catalogue catalogue;
  std::unique_ptr<ZelModel> model = catalogue.Load(ModelName(catalogue, text));
  if (!model) throw StoppedError("model " + text + " could not be built");
  return model;
}

std::unique_ptr<ZelModel> OpenModel(const ModelOptions& options, Console& console) {
  console.SetAnswerOk(options.AnswerOk);
  std::unique_ptr<ZelModel> model = options.FileText
                                        ? OpenModelText(options.Model, *options.FileText, console)
                                        : OpenModel(options.Model, console);
  for (const std::string& setting : options.Settings) ApplySetting(model->Bench(), setting);
  for (const std::string& wave : options.Waves) {
    ApplyWave(model->Bench(), wave, *options.PlayedFiles);
  }
  return model;
}

std::vector<Variable*> OfferedSignals(const ZelBenchTop& bench) {
  std::vector<Variable*> signals;
  for (Variable* variable : bench.Variables()) {
    if (!variable->Internal()) signals.push_back(variable);
  }
  return signals;
}

Variable& NamedSignal(const ZelBenchTop& bench, const std::string& name) {
  std::vector<std::string> names;
  for (Variable* signal : OfferedSignals(bench)) {
    if (signal->Name() == name) return *signal;
    names.push_back(signal->Name());
  }
  throw UnknownName("signal", name, names);
}

}  // namespace torvane::cli
