#include <algorithm>
#include <cmath>
#include <utility>

#include "core/angle.h"
#include "core/messages.h"
#include "core/numeric.h"
#include "instruments/meter/meter.h"
#include "instruments/setting_caption.h"
#include "instruments/setting_limits.h"

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

bool ZelMeter::Choose(Source& source, const std::string& name, const char* caption,
                      const std::string& message) {
  const auto& variables = bench_.Variables();
  const auto found = std::find_if(variables.begin(), variables.end(), [&](const Variable* v) {
    return !v->Internal() && v->Name() == name;
  });
  if (found == variables.end()) {
    Error(message);
    return false;
  }
  Change(
      [&] {
        source.Signal = *found;
        Restart();
      },
      [&] { return SettingCaption(caption, name); });
  return true;
}

bool ZelMeter::SetVariable(const std::string& name) {
  return Choose(measured_, name, "Variable", "Error in Meter:  Variable not found.");
}

bool ZelMeter::SetCorrVar(const std::string& name) {
  return Choose(correlated_, name, "Correlation Variable", "Error in Meter:  CorrVar not found.");
}

bool ZelMeter::SetHarmonicXferVar(const std::string& name) {
  return Choose(transfer_, name, "Harmonic Transfer Variable",
                "Error in Meter:  Harm Xfer Var not found");
}

template <class T>
void ZelMeter::Keep(T& setting, T value, const char* name) {
  if (setting == value) return;
  Change([&] { setting = value; }, [&] { return SettingCaption(name, value); });
}

template <class T>
void ZelMeter::Store(T& setting, T value, const char* name) {
  if (setting == value) return;
  Change(
      [&] {
        setting = value;
        ComputePoles();
        // A window's sums belong to one frequency and one period.
        harmonic_.Stop();
      },
      [&] { return SettingCaption(name, value); });
}

void ZelMeter::SetKind(MeterKind kind) {
  if (kind == kind_) return;
  Change(
      [&] {
        kind_ = kind;
        Restart();
      },
      [&] { return SettingCaption("Meter", std::string(NamesOf(kind).Caption)); });
}

void ZelMeter::SetAcCoupled(bool on) {
  if (on != ac_) Restart();
  Store(ac_, on, "AC");
}

void ZelMeter::SetHarmonicXfer(bool on) {
  Store(harmonicXfer_, on, "Harmonic Transfer");
}

void ZelMeter::SetUseDb(bool on) {
  Keep(useDb_, on, "dB");
}

void ZelMeter::SetNumber(double& setting, double value, bool good, const char* message,
                         const char* name, double limit) {
  if (!good) {
    Error(message);
  } else if (value > limit) {
    Error(std::string("Attempt to set Meter ") + name + " > " + FormatEdit(limit));
  } else {
    Store(setting, value, name);
  }
}

void ZelMeter::SetTSample(double seconds) {
  const double before = tSample_;
  // 0 is refused as well: the meter would never move on.
  SetNumber(tSample_, seconds, seconds >= ShortestTime, "Attempt to set Meter Sample Time < 0",
            "Sample Time", LongestTime);
  if (tSample_ != before) clock_.SetNext(bench_.Time());
}

void ZelMeter::SetLpf(double hz) {
  SetNumber(lpf_, hz, hz >= 0.0, "Attempt to set Meter Low-Pass Filter < 0", "Low-Pass Filter",
            LargestMagnitude);
}

void ZelMeter::SetAcHpf(double hz) {
  SetNumber(hpf_, hz, hz >= 0.0, "Attempt to set Meter High-Pass Filter < 0", "High-Pass Filter",
            LargestMagnitude);
}

void ZelMeter::SetHarmonicFreq(double hz) {
  SetNumber(harmonicFreq_, hz, hz > 0.0, "Attempt to set Meter Harmonic Frequency <= 0",
            "Harmonic Frequency", LargestMagnitude);
}

void ZelMeter::SetTWindow(double seconds) {
  SetNumber(tWindow_, seconds, seconds >= 0.0, "Attempt to set Meter Window Time < 0",
            "Window Time", LongestTime);
}

void ZelMeter::SetUseExcitation(bool on) {
  Keep(useExcitation_, on, "Use Excitation");
}

void ZelMeter::SetExcitation(double& setting, double value, const char* name) {
  SetNumber(setting, value, value >= -LargestMagnitude,
            "Attempt to set Meter Excitation out of range", name, LargestMagnitude);
}

void ZelMeter::SetExcitationMag(double magnitude) {
  SetExcitation(excitationMag_, magnitude, "Excitation Magnitude");
}

void ZelMeter::SetExcitationOff(double offset) {
  SetExcitation(excitationOff_, offset, "Excitation Offset");
}

void ZelMeter::SetExcitationMult(double multiplier) {
  SetExcitation(excitationMult_, multiplier, "Excitation Multiplier");
}

void ZelMeter::SetShowSetup(bool on) {
  Keep(showSetup_, on, "Show Setup");
}

void ZelMeter::ComputePoles() {
  spread_.Clear();
  lowPole_ = std::exp(-TwoPi * lpf_ * tSample_);
  highPole_ = std::exp(-TwoPi * hpf_ * tSample_);
}

}  // namespace torvane
