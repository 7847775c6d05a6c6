#include <algorithm>
#include <cmath>
#include <utility>

#include "core/messages.h"
#include "core/numeric.h"
#include "instruments/meter/meter.h"

namespace torvane {

namespace {

const Variable* FirstOffered(const ZelBenchTop& bench) {
  const auto& variables = bench.Variables();
  const auto found = std::find_if(variables.begin(), variables.end(),
                                  [](const Variable* variable) { return !variable->Internal(); });
  return found == variables.end() ? nullptr : *found;
}

const std::string Unitless = "(Unitless)";

std::string UnitOf(const Variable* variable) {
  return variable ? variable->Unit() : "";
}

std::string RatioUnit(const std::string& unit, const std::string& reference) {
  if (unit == reference) return Unitless;
  if (reference.empty()) return unit;
  return (unit.empty() ? "1" : unit) + "/" + reference;
}

}  // namespace

ZelMeter::ZelMeter(ZelBenchTop& bench, std::string name)
    : Instrument(InstrumentKind::Meter, std::move(name)), bench_(bench) {
  const Variable* first = FirstOffered(bench);
  measured_.Signal = correlated_.Signal = transfer_.Signal = first;
  clock_.SetNext(bench.Time());
  ComputePoles();
  bench.AddInstrument(*this);
}

ZelMeter::~ZelMeter() {
  bench_.RemoveInstrument(*this);
}

std::string ZelMeter::UnitText() const {
  const std::string unit = UnitOf(Measured());
  if (kind_ == MeterKind::Correlation) return RatioUnit(unit, UnitOf(CorrVar()));
  if (kind_ == MeterKind::Harmonic && harmonicXfer_) {
    return useDb_ ? "dB" : RatioUnit(unit, UnitOf(HarmonicXferVar()));
  }
  return unit.empty() ? Unitless : unit;
}

bool ZelMeter::Choose(Source& source, const std::string& name, const std::string& message) {
  const auto& variables = bench_.Variables();
  const auto found = std::find_if(variables.begin(), variables.end(), [&](const Variable* v) {
    return !v->Internal() && v->Name() == name;
  });
  if (found == variables.end()) {
    Error(message);
    return false;
  }
  source.Signal = *found;
  Restart();
  TellSettingsChanged();
  return true;
}

bool ZelMeter::SetVariable(const std::string& name) {
  return Choose(measured_, name, "Error in Meter:  Variable not found.");
}

bool ZelMeter::SetCorrVar(const std::string& name) {
  return Choose(correlated_, name, "Error in Meter:  CorrVar not found.");
}

bool ZelMeter::SetHarmonicXferVar(const std::string& name) {
  return Choose(transfer_, name, "Error in Meter:  Harm Xfer Var not found");
}

template <class T>
void ZelMeter::Store(T& setting, T value) {
  if (setting == value) return;
  setting = value;
  ComputePoles();
  // A window's sums belong to one frequency and one period.
  windowOpen_ = false;
  TellSettingsChanged();
}

void ZelMeter::SetKind(MeterKind kind) {
  if (kind != kind_) Restart();
  Store(kind_, kind);
}

void ZelMeter::SetAcCoupled(bool on) {
  if (on != ac_) Restart();
  Store(ac_, on);
}

void ZelMeter::SetHarmonicXfer(bool on) {
  Store(harmonicXfer_, on);
}

void ZelMeter::SetUseDb(bool on) {
  useDb_ = on;
  TellSettingsChanged();
}

void ZelMeter::SetNumber(double& setting, double value, bool good, const char* message) {
  if (!good) {
    Error(message);
  } else if (std::isfinite(value)) {
    Store(setting, value);
  }
}

void ZelMeter::SetTSample(double seconds) {
  // 0 is refused as well: the meter would never move on.
  SetNumber(tSample_, std::min(seconds, LongestTime), seconds > 0.0,
            "Attempt to set Meter Sample Time < 0");
  clock_.SetNext(bench_.Time());
}

void ZelMeter::SetLpf(double hz) {
  SetNumber(lpf_, hz, hz >= 0.0, "Attempt to set Meter Low-Pass Filter < 0");
}

void ZelMeter::SetAcHpf(double hz) {
  SetNumber(hpf_, hz, hz >= 0.0, "Attempt to set Meter High-Pass Filter < 0");
}

void ZelMeter::SetHarmonicFreq(double hz) {
  SetNumber(harmonicFreq_, hz, hz > 0.0, "Attempt to set Meter Harmonic Frequency <= 0");
}

void ZelMeter::SetTWindow(double seconds) {
  SetNumber(tWindow_, std::min(seconds, LongestTime), seconds >= 0.0,
            "Attempt to set Meter Window Time < 0");
}

void ZelMeter::ComputePoles() {
  lowPole_ = std::exp(-6.2831852 * lpf_ * tSample_);
  highPole_ = std::exp(-6.2831852 * hpf_ * tSample_);
}

}  // namespace torvane
