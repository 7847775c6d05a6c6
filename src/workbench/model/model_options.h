#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/model.h"
#include "workbench/model/model_file_loading.h"
#include "workbench/model/wave_files.h"
#include "workbench/supervisor.h"

namespace torvane {

/// Which model is worked on, and what is set on it before it runs.
struct ModelOptions {
  std::string Model;
  /// Of the file that MODEL is, when it has been read already.
  std::optional<std::string> FileText;
  /// The loop that the file is for, wherever that is now.
  std::optional<LoopSource> Loop;
  std::vector<std::string> Settings;
  std::vector<std::string> Waves;
  /// Of the Waves; all models that the options make share them.
  std::shared_ptr<WaveFiles> PlayedFiles = std::make_shared<WaveFiles>();
  bool AnswerOk = false;
};

/// Whether the text stands for a model file and not for a model of the catalogue.
bool NamesModelFile(const std::string& text);

/// Builds the model that the text names: a catalogue name or index, or a model file, whose set-up
/// it then has. What is wrong with a file is reported with its line.
std::unique_ptr<ZelModel> OpenModel(const std::string& text, Supervisor& supervisor);

/// Builds the model and applies the options to it and to the supervisor.
std::unique_ptr<ZelModel> OpenModel(const ModelOptions& options, Supervisor& supervisor);

/// Signals that instruments are offered, in registration order.
std::vector<Variable*> OfferedSignals(const ZelBenchTop& bench);

/// The offered signal of that name; any other name is wrong usage.
Variable& NamedSignal(const ZelBenchTop& bench, const std::string& name);

}  // namespace torvane
