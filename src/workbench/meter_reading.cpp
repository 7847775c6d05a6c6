#include "workbench/meter_reading.h"

#include <algorithm>

#include "core/text.h"
#include "models/catalogue_host.h"
#include "workbench/model/long_run.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

void SetSecondSignal(ZelMeter& meter, const ZelBenchTop& bench, const std::string& name) {
  const std::string& known = NamedSignal(bench, name).Name();
  switch (meter.Measurement()) {
    case MeterKind::Correlation:
      meter.SetCorrVar(known);
      break;
    case MeterKind::Harmonic:
      meter.SetHarmonicXferVar(known);
      meter.SetHarmonicXfer(true);
      break;
    default:
      throw UsageError("--with goes with the kinds harmonic and correlation only");
  }
}

void SetUp(ZelMeter& meter, const MeterOptions& options) {
  if (options.TSample) meter.SetTSample(*options.TSample);
  if (options.Lpf) meter.SetLpf(*options.Lpf);
  if (options.Hpf) meter.SetAcHpf(*options.Hpf);
  if (options.Harmonic) meter.SetHarmonicFreq(*options.Harmonic);
  if (options.Window) meter.SetTWindow(*options.Window);
  if (options.Ac) meter.SetAcCoupled(*options.Ac);
  if (options.Db) meter.SetUseDb(*options.Db);
}

// What the meter would pass over.
void CheckOptionsOfKind(const ZelMeter& meter, const MeterOptions& options) {
  const bool harmonic = meter.Measurement() == MeterKind::Harmonic;
  if (!harmonic && (options.Harmonic || options.Window)) {
    throw UsageError("--harmonic and --window go with the kind harmonic only");
  }
  if (harmonic && options.Lpf) throw UsageError("--lpf does not go with the kind harmonic");
  if (options.Db && !(harmonic && meter.HarmonicXfer())) {
    throw UsageError("--db goes with a ratio only, the kind harmonic and --with");
  }
  if (options.Hpf && !meter.AcCoupled()) throw UsageError("--hpf needs --ac");
}

// A harmonic is read from whole windows; before the first one ends there is nothing to read.
void CheckWindowFits(const ZelMeter& meter, double until) {
  if (meter.Measurement() != MeterKind::Harmonic) return;
  const double window = meter.WindowLength();
  if (until > window) return;
  throw UsageError("--until must be above the harmonic's window of " + FormatShortest(window) +
                   " s");
}

// The first meter that the model's file has set up, else a new one, of which the options must say
// what it measures.
ZelMeter& ChooseMeter(ZelModel& model, const MeterOptions& options) {
  const auto& meters = model.Bench().Instruments(InstrumentKind::Meter);
  if (!meters.empty()) return dynamic_cast<ZelMeter&>(*meters.front());
  if (options.Variable.empty()) throw UsageError("--variable is required");
  if (!options.Kind) throw UsageError("--kind is required");
  if (options.With.empty() && static_cast<MeterKind>(*options.Kind) == MeterKind::Correlation) {
    throw UsageError("--with names the signal to correlate with; it is needed");
  }
  ZelMeter* const meter = AddMeter(model, "Meter");
  if (!meter) throw UsageError("");
  return *meter;
}

}  // namespace

ZelMeter& SetUpMeter(ZelModel& model, const MeterOptions& options, Supervisor& supervisor) {
  ZelMeter& meter = ChooseMeter(model, options);
  if (!options.Variable.empty()) {
    meter.SetVariable(NamedSignal(model.Bench(), options.Variable).Name());
  }
  if (options.Kind) meter.SetKind(static_cast<MeterKind>(*options.Kind));
  if (!options.With.empty()) SetSecondSignal(meter, model.Bench(), options.With);
  supervisor.ApplySettings([&] { SetUp(meter, options); });
  CheckOptionsOfKind(meter, options);
  CheckWindowFits(meter, options.Until);
  return meter;
}

// The meter alone asks for times.
void Measure(ZelModel& model, ZelMeter& meter, double until, Supervisor& supervisor) {
  LongRun(model, supervisor, until).Serve(meter, until);
}

}  // namespace torvane
