#pragma once

#include <optional>
#include <string>

#include "instruments/meter/meter.h"
#include "workbench/model/model_options.h"

namespace torvane {

/// What a meter measures, and until when. A setting that is not given is the meter's own.
struct MeterOptions {
  ModelOptions Model;
  std::string Variable;     ///< needed unless the model has a meter
  std::optional<int> Kind;  ///< a MeterKind
  double Until = 0.0;       ///< simulated time of the reading, seconds
  std::string With;         ///< second signal, of a correlation or a harmonic ratio
  std::optional<double> Harmonic;
  std::optional<double> Window;
  std::optional<double> Lpf;
  std::optional<double> Hpf;
  std::optional<double> TSample;
  std::optional<bool> Ac;
  std::optional<bool> Db;
};

/// The first meter that the model's file has set up, else a new one, set as the options say. What
/// the meter refuses, or would pass over, is wrong usage.
ZelMeter& SetUpMeter(ZelModel& model, const MeterOptions& options, Supervisor& supervisor);

/// Runs the model with the meter alone to the time of the reading.
void Measure(ZelModel& model, ZelMeter& meter, double until, Supervisor& supervisor);

}  // namespace torvane
