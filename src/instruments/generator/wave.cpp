#include "instruments/generator/wave.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/angle.h"
#include "core/bench.h"
#include "core/messages.h"
#include "core/text.h"

namespace torvane {

namespace {

// Not-a-number becomes 0, for a generator that is built with it.
double LimitedDuty(double percent) {
  return percent > 0.0 ? std::min(percent, 100.0) : 0.0;
}

WaveSettings Limited(WaveSettings settings) {
  settings.Index = ZelWave::LimitedIndex(settings.Index);
  settings.FreqHz = std::abs(settings.FreqHz);
  settings.DutyCycle = LimitedDuty(settings.DutyCycle);
  return settings;
}

double Triangle(const WaveSettings& s, double x) {
  return (x < 0.5 ? 4.0 * x - 1.0 : 3.0 - 4.0 * x) * s.Amplitude + s.Offset;
}

double BipolarPulse(const WaveSettings& s, double x) {
  const double width = s.DutyCycle / 200.0;
  if (x < width) return s.Offset + s.Amplitude;
  if (0.5 < x && x < 0.5 + width) return s.Offset - s.Amplitude;
  return s.Offset;
}

double Trapezoid(const WaveSettings& s, double x) {
  const double third = s.DutyCycle / 300.0;
  if (x < third) return x / third * s.Amplitude + s.Offset;
  if (x < 2.0 * third) return s.Offset + s.Amplitude;
  if (x < 3.0 * third) return (1.0 - (x - 2.0 * third) / third) * s.Amplitude + s.Offset;
  return s.Offset;
}

// The trapezoid with ramps of one sine period, u - sin(2 pi u) / 2 pi.
double SCurve(const WaveSettings& s, double x) {
  const double third = s.DutyCycle / 300.0;
  const auto bend = [&](double into) {
    return 1.0 / TwoPi * std::sin(into * TwoPi * 300.0 / s.DutyCycle);
  };
  if (x < third) return s.Amplitude * (x / third - bend(x)) + s.Offset;
  if (x < 2.0 * third) return s.Offset + s.Amplitude;
  if (x < 3.0 * third) {
    const double into = x - 2.0 * third;
    return s.Amplitude * (1.0 - into / third + bend(into)) + s.Offset;
  }
  return s.Offset;
}

}  // namespace

int ZelWave::LimitedIndex(int index) {
  return std::clamp(index, 0, WaveformCount - 1);
}

ZelWave::ZelWave(ZelBenchTop& bench, std::string name, const WaveSettings& settings,
                 double gain) try
    : Instrument(InstrumentKind::WaveGenerator, std::move(name)),
      settings_(Limited(settings)),
      shape_(settings_.Index),
      gain_(gain),
      nextOnBench_(bench, next_, "ZelWave #1", "Null", 0.0, {}, Visibility::Internal),
      delayedOnBench_(bench, delayed_, "ZelWave #2", "Null", 0.0, {}, Visibility::Internal) {
  bench.AddTimeDriven(*this);
  bench.AddInstrument(*this);
} catch (...) {
  Error("Fault in ZelWave :: ZelWave");
}

const std::array<const char*, ZelWave::WaveformCount>& ZelWave::WaveformNames() {
  static constexpr std::array<const char*, WaveformCount> names = {
      "Sine",          "Square",    "Triangle", "Sawtooth", "Pulse",
      "Bipolar Pulse", "Trapezoid", "S-Curve",  "DC (None)"};
  return names;
}

bool ZelWave::OverflowsAt(double t) const {
  const double cycles = CyclesAt(t);
  return !std::isfinite(cycles) || !std::isfinite(gain_ * ValueAt(cycles - Floor(cycles), t));
}

double ZelWave::CyclesAt(double t) const {
  constexpr double CyclesPerDegree = 0.002777777777777778;
  return t * settings_.FreqHz + settings_.PhaseDeg * CyclesPerDegree;
}

void ZelWave::Recompute(double t) {
  const double cycles = CyclesAt(t);
  fraction_ = cycles - Floor(cycles);
  computed_ = gain_ * ValueAt(fraction_, t);
  computedAt_ = t;
  steadyUntil_ = SteadyUntil(cycles);
}

// A little sooner than the next edge, or half of the cycle, for what cycles are rounded by.
double ZelWave::SteadyUntil(double cycles) const {
  constexpr double Rounding = 1e-14;
  const bool pulse = shape_ == static_cast<int>(Waveform::Pulse);
  const bool flat = pulse || shape_ == static_cast<int>(Waveform::Square) ||
                    shape_ == static_cast<int>(Waveform::Dc);
  if (!flat || !std::isfinite(computed_)) return std::numeric_limits<double>::quiet_NaN();
  double edge = fraction_ < 0.5 ? 0.5 : 1.0;
  const double width = settings_.DutyCycle / 100.0;
  if (pulse && fraction_ < width) edge = std::min(edge, width);
  const double turned = std::abs(computedAt_) * settings_.FreqHz;
  const double left = edge - fraction_ - Rounding * (std::abs(cycles) + turned + 1.0);
  return computedAt_ + left / settings_.FreqHz;
}

double ZelWave::PlayedAt(double x, double t) const {
  const double at = settings_.FreqHz > 0.0 ? x / settings_.FreqHz : t;
  return settings_.Amplitude * played_->At(at) + settings_.Offset;
}

// The value at the fraction x of a cycle, 0 <= x < 1, at time t.
double ZelWave::ValueAt(double x, double t) const {
  if (shape_ == Table) return PlayedAt(x, t);
  const double amplitude = settings_.Amplitude;
  const double offset = settings_.Offset;
  switch (static_cast<Waveform>(shape_)) {
    case Waveform::Sine:
      return amplitude * std::sin(2.0 * Pi * x) + offset;
    case Waveform::Square:
      return x < 0.5 ? offset + amplitude : offset - amplitude;
    case Waveform::Triangle:
      return Triangle(settings_, x);
    case Waveform::Sawtooth:
      return (2.0 * x - 1.0) * amplitude + offset;
    case Waveform::Pulse:
      return x < settings_.DutyCycle / 100.0 ? offset + amplitude : offset - amplitude;
    case Waveform::BipolarPulse:
      return BipolarPulse(settings_, x);
    case Waveform::Trapezoid:
      return Trapezoid(settings_, x);
    case Waveform::SCurve:
      return SCurve(settings_, x);
    case Waveform::Dc:
      break;
  }
  return offset;
}

const std::array<WaveNumber, 5>& ZelWave::Numbers() {
  static constexpr std::array<WaveNumber, 5> numbers{
      WaveNumber{"Amplitude", "Amplitude", &WaveSettings::Amplitude, &ZelWave::SetAmplitude},
      WaveNumber{"FreqHz", "Frequency", &WaveSettings::FreqHz, &ZelWave::SetFreqHz},
      WaveNumber{"Offset", "Offset", &WaveSettings::Offset, &ZelWave::SetOffset},
      WaveNumber{"PhaseDeg", "Phase", &WaveSettings::PhaseDeg, &ZelWave::SetPhaseDeg},
      WaveNumber{"DutyCycle", "Duty Cycle", &WaveSettings::DutyCycle, &ZelWave::SetDutyCycle},
  };
  return numbers;
}

void ZelWave::ForgetComputed() {
  // A second change comes without a time of its own.
  if (!std::isnan(computedAt_)) changedAt_ = computedAt_;
  computedAt_ = std::numeric_limits<double>::quiet_NaN();
}

std::string ZelWave::Caption(const std::string& setting, const std::string& value) const {
  const std::string what = setting + " = " + value;
  return Name() == "MainWaveGen" ? what : Name() + " " + what;
}

std::string ZelWave::WaveformCaption() const {
  return Caption("Waveform", played_ ? played_->Name()
                                     : WaveformNames()[static_cast<std::size_t>(settings_.Index)]);
}

void ZelWave::SetNumber(double WaveSettings::*number, double value) {
  if (!std::isfinite(value)) return;
  Change(
      [&] {
        settings_.*number = value;
        ForgetComputed();
      },
      [&] {
        const auto known = std::find_if(Numbers().begin(), Numbers().end(),
                                        [&](const WaveNumber& n) { return n.Value == number; });
        return Caption(known->Caption, FormatEdit(value));
      });
}

void ZelWave::SetWaveform(int index) {
  Change(
      [&] {
        if (played_) EndPlaying();
        settings_.Index = LimitedIndex(index);
        Take(nullptr);
      },
      [&] { return WaveformCaption(); });
}

void ZelWave::Play(std::shared_ptr<const WaveTable> table) {
  Change(
      [&] {
        if (!played_) unplayed_ = settings_;
        settings_ = {.Index = settings_.Index,
                     .FreqHz = 0.0,
                     .Amplitude = 1.0,
                     .DutyCycle = settings_.DutyCycle};
        Take(std::move(table));
      },
      [&] { return WaveformCaption(); });
}

// The waveform and the duty cycle, which no table needs, stay as they are.
void ZelWave::EndPlaying() {
  unplayed_.Index = settings_.Index;
  unplayed_.DutyCycle = settings_.DutyCycle;
  settings_ = unplayed_;
  Take(nullptr);
}

std::ptrdiff_t ZelWave::PlayedPlace() const {
  return played_ ? std::find(tables_.begin(), tables_.end(), played_) - tables_.begin() : -1;
}

std::string ZelWave::WaveformText() const {
  return played_ ? played_->Name() + " (" + std::to_string(PlayedPlace() + 1) + ")"
                 : WaveformNames()[static_cast<std::size_t>(settings_.Index)];
}

void ZelWave::Take(std::shared_ptr<const WaveTable> table) {
  if (table && std::find(tables_.begin(), tables_.end(), table) == tables_.end()) {
    tables_.push_back(table);
  }
  played_ = std::move(table);
  shape_ = played_ ? Table : settings_.Index;
  ForgetComputed();
}

void ZelWave::SetFreqHz(double hz) {
  SetNumber(&WaveSettings::FreqHz, std::abs(hz));
}

void ZelWave::SetAmplitude(double amplitude) {
  SetNumber(&WaveSettings::Amplitude, amplitude);
}

void ZelWave::SetOffset(double offset) {
  SetNumber(&WaveSettings::Offset, offset);
}

void ZelWave::SetPhaseDeg(double degrees) {
  SetNumber(&WaveSettings::PhaseDeg, degrees);
}

void ZelWave::SetDutyCycle(double percent) {
  SetNumber(&WaveSettings::DutyCycle, LimitedDuty(percent));
}

}  // namespace torvane
