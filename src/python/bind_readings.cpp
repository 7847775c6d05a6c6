#include <pybind11/stl.h>

#include "core/messages.h"
#include "core/text.h"
#include "python/arrays.h"
#include "python/bindings.h"
#include "study/row.h"
#include "workbench/measure/measurement.h"
#include "workbench/meter_reading.h"
#include "workbench/model/scope_run.h"
#include "workbench/model/scope_settings.h"
#include "workbench/quiet.h"

namespace torvane::python {
namespace {

py::tuple StepMeasures(ScriptModel& model, const py::dict& given, const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  MeasureOptions options = MeasureOptionsOf(model, keywords);
  std::vector<std::string> units;
  const RunReadings readings = Do(onProgress, [&](PythonSupervisor& supervisor) {
    const auto first = model.Make(supervisor);
    CheckMeasurement(*first, options, supervisor);
    units = UnitsOfMeasures(*first, options, options.Measured());
    RunReadings read = [&] {
      const Quiet quiet;
      return ReadRun([&] { return OpenModel(options.Bode.Response.Model, supervisor); }, options,
                     supervisor);
    }();
    for (const std::string& warning : read.Warnings) Warning(warning);
    return read;
  });
  return py::make_tuple(MeasureCaptions(options.Measured()),
                        MeasureValues(readings, options.Measured()), readings.Reasons,
                        readings.Warnings, units);
}

py::object Meter(ScriptModel& model, const py::dict& given, const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  MeterOptions options;
  options.Model = model.Options();
  std::optional<double> until;
  std::vector<std::string> kinds;
  for (const MeterKindNames& kind : MeterKinds) kinds.emplace_back(kind.Option);
  keywords.Take("variable", options.Variable);
  keywords.TakeChoice("kind", options.Kind, kinds);
  keywords.Take("until", until, Accepts::Positive);
  options.Until = until.value();
  keywords.Take("with", options.With);
  keywords.Take("harmonic", options.Harmonic, Accepts::Positive);
  keywords.Take("window", options.Window, Accepts::NotNegative);
  keywords.Take("lpf", options.Lpf, Accepts::NotNegative);
  keywords.Take("hpf", options.Hpf, Accepts::NotNegative);
  keywords.Take("tsample", options.TSample, Accepts::Positive);
  keywords.Take("ac", options.Ac);
  keywords.Take("db", options.Db);
  const auto [value, angle] = Do(onProgress, [&](PythonSupervisor& supervisor) {
    const auto measured = model.Make(supervisor);
    ZelMeter& meter = SetUpMeter(*measured, options, supervisor);
    Measure(*measured, meter, options.Until, supervisor);
    const bool turns = meter.Measurement() == MeterKind::Harmonic;
    return std::pair(meter.Value(), turns ? std::optional(meter.AngleDeg()) : std::nullopt);
  });
  return py::make_tuple(value, angle);
}

// Single-precision samples in display units, as the screen's CSV has them.
std::vector<double> Shown(const ZelChannel& channel, const std::vector<float>& samples) {
  std::vector<double> shown;
  shown.reserve(samples.size());
  for (const float sample : samples) {
    shown.push_back(static_cast<float>(sample * channel.Signal().Multiplier()));
  }
  return shown;
}

py::tuple Scope(ScriptModel& model, double until, const py::dict& given,
                const py::object& onProgress) {
  const ScriptModel::Use use(model);
  Keywords keywords(given);
  ScopeSettings settings;
  keywords.Take("time_base", settings.TimeBase, Accepts::Positive);
  keywords.Take("show", settings.Show);
  keywords.Take("scale", settings.Scales);
  keywords.Take("shift", settings.Shifts);
  keywords.Take("trig_mode", settings.TrigMode);
  keywords.Take("trig_source", settings.TrigSource);
  keywords.Take("trig_slope", settings.TrigSlope);
  keywords.Take("trig_level", settings.TrigLevel, Accepts::Any);
  keywords.Take("trig_position", settings.TrigPosition, Accepts::NotNegative);
  std::vector<std::string> names;
  std::vector<std::string> units;
  std::vector<std::vector<double>> columns;
  Do(onProgress, [&](PythonSupervisor& supervisor) {
    const auto measured = model.Make(supervisor);
    ZelScope& scope = FirstScope(measured->Bench());
    Apply(measured->Bench(), settings);
    const ScopeScreen screen = LastCompleteScreen(*measured, scope, until, supervisor);
    names.emplace_back("Time");
    units.push_back(measured->Bench().TimeVar()->Unit());
    columns.emplace_back(screen.Time.begin(), screen.Time.end());
    for (const std::size_t i : scope.DisplayedChannels()) {
      const ZelChannel& channel = *scope.Channels()[i];
      names.push_back(channel.Name());
      units.push_back(channel.Signal().Unit());
      columns.push_back(Shown(channel, screen.Values[i]));
    }
  });
  py::list arrays;
  for (auto& column : columns) arrays.append(ArrayOf(std::move(column)));
  return py::make_tuple(names, units, arrays);
}

}  // namespace

MeasureOptions MeasureOptionsOf(const ScriptModel& model, Keywords& keywords) {
  MeasureOptions options;
  BodeOptions& bode = options.Bode;
  ResponseOptions& response = bode.Response;
  response.Model = model.Options();
  keywords.Take("command", response.Input);
  keywords.Take("response", response.Output);
  keywords.Take("until", options.Until, Accepts::Positive);
  keywords.Take("window", options.Window, Accepts::Positive);
  keywords.Take("time_base", options.TimeBase, Accepts::Positive);
  keywords.Take("peak", options.Peak);
  keywords.Take("bode", options.WithBode);
  keywords.Take("theory", options.WithTheory);
  keywords.Take("loop", options.Loop);
  keywords.Take("order", bode.Order);
  keywords.Take("start_delay", bode.StartDelay, Accepts::NotNegative);
  keywords.Take("end_delay", bode.EndDelay, Accepts::NotNegative);
  keywords.Take("tsample", response.TSample, Accepts::Positive);
  keywords.Take("amplitude", response.Amplitude, Accepts::NotNegative);
  keywords.Take("offset", response.Offset, Accepts::Any);
  keywords.Take("average", response.Average);
  if (options.Window && options.TimeBase) {
    throw py::value_error("window and time_base say the same: one of them");
  }
  if (options.WithBode && options.WithTheory) {
    throw py::value_error("bode and theory tell the same: one of them");
  }
  const bool measuresLoop = !options.Loop.empty() || bode.Order || bode.StartDelay ||
                            bode.EndDelay || response.TSample || response.Amplitude ||
                            response.Offset || response.Average;
  if (measuresLoop && !options.WithBode) {
    throw py::value_error("how the loop is measured needs bode=True");
  }
  return options;
}

void BindReadings(py::class_<ScriptModel>& model) {
  model.def("step_measures", &StepMeasures).def("meter", &Meter).def("scope", &Scope);
}

}  // namespace torvane::python
