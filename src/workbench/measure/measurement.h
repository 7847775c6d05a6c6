#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/measure/loop_measurement.h"
#include "workbench/measure/step_measurement.h"

namespace torvane {

/// What is measured of a run: how a signal follows one step of another and, if asked for, the
/// frequency response between them.
struct MeasureOptions {
  /// MODEL, the two signals (Input is the command, Output the response) and how the frequency
  /// responses are measured.
  BodeOptions Bode;
  std::string Loop;  ///< as in LoopOptions
  bool WithBode = false;
  bool WithTheory = false;  ///< the loop's measures are computed instead

  std::string Peak;  ///< a signal of which the largest magnitude is told

  MeasureSet Measured() const {
    return {WithBode || WithTheory, !Peak.empty(), false, Window || TimeBase};
  }
  std::optional<double> Until;
  std::optional<double> Window;
  std::optional<double> TimeBase;
};

/// Wrong usage if the options do not fit the model, which is set up for a measurement: the signals
/// are there, and the analyser takes its settings. Where neither signal is named they become those
/// of the model's closed loop, which is noted.
void CheckMeasurement(ZelModel& model, MeasureOptions& options, Supervisor& supervisor);

/// The units of what is measured of the model, in the order of MeasureCaptions.
std::vector<std::string> UnitsOfMeasures(const ZelModel& model, const MeasureOptions& options,
                                         const MeasureSet& set);

/// Wrong usage, of an option that asks for a measure: one that takes other options that were not
/// given.
void CheckMeasured(const std::string& option, const RunMeasure& measure, const MeasureSet& set);
/// The same, and one that says nothing of how good a run is.
void CheckAskedFor(const std::string& option, const RunMeasure& measure, const MeasureSet& set);

/// Reads as a process would that runs nothing else, whatever ran in this one: each part in a model
/// of its own whose class has seen none. Fills the trace, if there is one, with the response. An
/// overflow, or a record that is not whole, is a WorkFault of WorkFault::Kind::Stopped.
RunReadings ReadRun(const MakeModel& make, const MeasureOptions& options, Supervisor& supervisor,
                    StudyTrace* trace = nullptr);

}  // namespace torvane
