#pragma once

#include <optional>
#include <string>
#include <vector>

#include "models/experiment.h"

namespace torvane {

/// What the instruments read of one answer of an experiment.
struct ExperimentReading {
  /// In the answer's unit; the last one that was read of the answer's own set-up.
  std::optional<double> Value;
  /// It is what stands on the instrument now, made with the values that are set.
  bool Present = false;
  std::string Gap;  ///< why there is no present reading, in a few words
};

/// Reads an experiment's answers off the instruments while its steps are done: from the last whole
/// screen of the first scope, for a step's figures as a response to the trigger's source, and from
/// the FFT analyser's current measurement. An answer is read while all that its step and those
/// before have set is in force, without what a later step sets for the first time, and of nothing
/// that was recorded before that.
class ExperimentReader {
 public:
  /// The model, in the experiment's first step, must outlive it.
  ExperimentReader(const Experiment& experiment, const ZelModel& model);

  /// Looks at the instruments; to be called several times a second while the model runs or is set.
  void Look();
  /// As of the last look.
  const ExperimentReading& Of(std::size_t step, std::size_t answer) const {
    return readings_[step][answer];
  }

 private:
  std::string MissingFor(std::size_t step) const;
  ExperimentReading Read(const ExperimentAnswer& answer) const;
  ExperimentReading ReadScope(const ExperimentAnswer& answer) const;
  ExperimentReading ReadAnalyser(const ExperimentAnswer& answer) const;

  Experiment experiment_;
  const ZelModel& model_;
  std::vector<std::vector<ExperimentReading>> readings_;  // by step and answer
  std::vector<std::vector<ExperimentSetting>> beyond_;    // by step, what is not to be set yet
  // What was last set, and the simulated time of its last change.
  std::string constants_;
  std::string generators_;
  double anyChange_;
  double generatorChange_;
};

}  // namespace torvane
