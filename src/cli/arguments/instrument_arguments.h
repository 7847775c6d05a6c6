#pragma once

#include <string>

#include "workbench/meter_reading.h"
#include "workbench/response/bode_measurement.h"
#include "workbench/response/sweep_measurement.h"

namespace CLI {
class App;
}

namespace torvane::cli {

/// Settings of a model's analysers and meter, for commands that run none of them.
struct InstrumentSettings {
  BodeOptions Bode;
  SweepOptions Sweep;
  MeterOptions Meter;
};

/// What sets the swept-sine analyser, and a meter; the prefix begins the options' names.
void AddSweepOptions(CLI::App& command, SweepOptions& options, const std::string& prefix = "--");
void AddMeterOptions(CLI::App& command, MeterOptions& options, const std::string& prefix = "--");

/// The options of "bode", "sweep" and "meter" that set the instrument, with the command's name
/// before each: --bode-order, --sweep-from, --meter-kind.
void AddInstrumentSettings(CLI::App& command, InstrumentSettings& settings);

/// Those of the meter alone: --meter-kind.
void AddMeterSettings(CLI::App& command, MeterOptions& options);

/// Those that are given; a setting without an instrument, or which it refuses, is wrong usage.
void Apply(const CLI::App& command, ZelModel& model, const InstrumentSettings& settings,
           Supervisor& supervisor);

}  // namespace torvane::cli
