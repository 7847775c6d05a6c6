#include "workbench/model/model_options.h"

#include <filesystem>

#include "core/text.h"
#include "models/catalogue.h"
#include "workbench/model/loop_loading.h"
#include "workbench/model/model_file_loading.h"
#include "workbench/model/settings.h"
#include "workbench/unknown_name.h"

namespace torvane {

bool NamesModelFile(const std::string& text) {
  if (Catalogue().Find(text) || ParseInteger(text) || NamesLoop(text)) return false;
  std::error_code failure;
  return text.ends_with(".tvf") || text.find('/') != std::string::npos ||
         std::filesystem::exists(text, failure);
}

namespace {

// The file whose ending was left out; empty: none.
std::string FileMeant(const std::string& text) {
  std::error_code failure;
  for (const char* const ending : {".mo", ".tvf"}) {
    std::string file = text + ending;
    if (std::filesystem::exists(file, failure)) return file;
  }
  return {};
}

// A file is nearer than any name.
[[noreturn]] void ThrowUnknown(const std::string& text, const Catalogue& catalogue) {
  const std::string file = FileMeant(text);
  if (!file.empty())
    throw UsageError("unknown model \"" + text + "\"; did you mean the file " + file + "?");
  throw UnknownName("model", text, catalogue.Names());
}

// Of a name, what only one name begins with, or an index.
std::string ModelName(const Catalogue& catalogue, const std::string& text) {
  if (catalogue.Find(text)) return text;
  const std::optional<int> number = ParseInteger(text);
  if (!number) {
    const std::vector<std::string> meant = catalogue.NamesFrom(text);
    if (meant.size() == 1) return meant.front();
    if (meant.empty()) ThrowUnknown(text, catalogue);
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

std::unique_ptr<ZelModel> OpenModel(const std::string& text, Supervisor& supervisor) {
  if (NamesLoop(text)) return OpenLoop(text, supervisor);
  if (NamesModelFile(text)) return OpenModelFile(text, supervisor);
  const Catalogue catalogue;
  std::unique_ptr<ZelModel> model = catalogue.Load(ModelName(catalogue, text));
  if (!model) throw StoppedError("model " + text + " could not be built");
  return model;
}

std::unique_ptr<ZelModel> OpenModel(const ModelOptions& options, Supervisor& supervisor) {
  supervisor.SetAnswerOk(options.AnswerOk);
  std::unique_ptr<ZelModel> model =
      options.FileText ? OpenModelText(options.Model, *options.FileText, supervisor, options.Loop)
                       : OpenModel(options.Model, supervisor);
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

}  // namespace torvane
