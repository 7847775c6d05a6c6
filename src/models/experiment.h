#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"

namespace torvane {

/// A value that an experiment sets: "KVP = 3" of a constant, "Frequency = 10" of the model's first
/// generator, "Disturbance Source: Frequency = 10" of a generator by its name,
/// "Analyser: Sample Time = 0.0005" of the FFT analyser. Names are those of the windows.
struct ExperimentSetting {
  std::string Of;  ///< a generator's name or "Analyser"; empty of a constant or the first generator
  std::string Name;
  std::string Value;

  /// As it stands in the record.
  std::string Text() const;
};

/// A number that is to be read, and how far the reading may be from it. Readings are
///   Overshoot, Rise, Settling, Delay    of a signal's response to a step of the first one watched
///   Mean, RMS, Minimum, Maximum, Peak to peak, Frequency    of a signal on the scope's screen
///   Phase Margin, Phase Margin Frequency, Gain Margin, Gain Margin Frequency    of the analyser
///   Gain, Phase    of the analyser, at a frequency
struct ExperimentAnswer {
  std::string Reading;
  std::string Signal;  ///< empty of what the analyser reads
  std::optional<double> AtHz;
  double Value = 0.0;
  double Tolerance = 0.0;
  std::string Unit;

  /// What is read: "Overshoot of vF", "Gain at 45 Hz".
  std::string Name() const;
  bool IsMetBy(double reading) const;
};

/// Values to be set together, and what is to be read then.
struct ExperimentStep {
  std::vector<ExperimentSetting> Settings;
  std::vector<ExperimentAnswer> Answers;
  /// Something else is read when the model did not run before: "While running" in place of "Step".
  bool WhileRunning = false;
};

/// One of the things worth trying with a model. It is a file of its own beside the model file that
/// sets it up, with lines "Keyword: value"; what follows the line "Text:" is its text. In that
/// "[KVP = 3]" is a value to try, "K_T" and "K_{VP}" have an index, "s^2" and "e^{-x}" an exponent.
struct Experiment {
  std::string Title;
  std::string Model;
  int Number = 0;  ///< its place among those of its model, from 1
  std::string Question;
  std::string Cost;  ///< what is paid for what is gained; may be empty
  std::vector<InstrumentKind> Shown;
  std::vector<std::string> Watched;      ///< signals whose traces are on the scope
  std::vector<ExperimentSetting> SetUp;  ///< what its model file sets beside the first step
  std::vector<ExperimentStep> Steps;     ///< the model file is in the state of the first one
  std::string Text;
  std::vector<ExperimentSetting> Tries;  ///< what the text proposes in brackets, in its order

  bool Shows(InstrumentKind kind) const;
  /// What is set when a step has been done: by the model file and by this step and those before.
  std::vector<ExperimentSetting> SettingsAt(std::size_t step) const;
  /// What steps after this one set that neither the model file nor a step up to it speaks of.
  std::vector<ExperimentSetting> FirstSetAfter(std::size_t step) const;
};

/// Reads an experiment's file. A line that means nothing gives nothing, and is left in `fault`.
std::optional<Experiment> ReadExperiment(std::string_view text, std::string& fault);

/// Sets the value, as one change to undo; false when there is no such setting or it is refused.
bool Apply(const ExperimentSetting& setting, ZelModel& model);
/// Whether the model is set so.
bool IsSet(const ExperimentSetting& setting, const ZelModel& model);
/// Whether the model differs from former settings of it (SettingsText) only in values that the
/// experiment proposes, wherever: to set up, in its steps, in its text.
bool OnlyProposed(const Experiment& experiment, const std::string& former, const ZelModel& model);

}  // namespace torvane
