#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/loop_measurement.h"
#include "cli/step_measurement.h"

namespace torvane::cli {

/// What is measured of a run: how a signal follows one step of another and, if asked for, the
/// frequency response between them.
struct MeasureOptions {
  /// MODEL, the two signals (Input is the command, Output the response) and how the frequency
  /// responses are measured.
  BodeOptions Bode;
  std::string Loop;  ///< as in LoopOptions
  bool WithBode = false;
  std::optional<double> Until;
  std::optional<double> Window;
  std::optional<double> TimeBase;
};

/// All but MODEL.
void AddMeasureOptions(CLI::App& command, MeasureOptions& options);

/// What the fields of a measurement are called.
std::vector<std::string> MeasureCaptions(const MeasureOptions& options);

/// The unit of such a field.
std::string MeasureUnit(const std::string& caption);

/// Wrong usage if the options do not fit the model, which is set up for a measurement: the signals
/// are there, and the analyser takes its settings.
void CheckMeasurement(ZelModel& model, const MeasureOptions& options, Console& console);

/// What came of a run.
struct RunMeasures {
  std::vector<std::string> Fields;    ///< by caption; one that cannot be measured is empty
  std::string Reason;                 ///< of empty fields
  std::vector<std::string> Warnings;  ///< what makes fields less trustworthy, a sentence each
  StepRun Step;
};

/// Measures as a process would that runs nothing else, whatever ran in this one: each part in a
/// model of its own whose class has seen none. An overflow, or a record that is not whole,
/// is a CommandError of ExitCode::Stopped.
RunMeasures MeasureRun(const MakeModel& make, const MeasureOptions& options, Console& console,
                       bool showProgress);

}  // namespace torvane::cli
