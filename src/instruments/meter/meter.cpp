#include "instruments/meter/meter.h"

#include <cmath>
#include <memory>
#include <utility>

#include "core/angle.h"
#include "core/messages.h"
#include "core/model.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

double ZelMeter::NextTime() const {
  return clock_.Request();
}

bool ZelMeter::Service(double t) {
  if (!clock_.TakeDue(t, tSample_)) return true;
  for (Source* source : Sources()) {
    source->Now = source->Signal ? source->Signal->DisplayValue() : 0.0;
  }
  Update(t);
  return true;
}

NextSample ZelMeter::BeginTape(const SampleTape& tape) {
  onTape_ = clock_;
  bool atOnce = false;
  for (const Source* source : Sources()) {
    atOnce = atOnce || !source->Signal || !tape.Has(*source->Signal);
  }
  return {onTape_.Request(), atOnce};
}

NextSample ZelMeter::AwaitOnTape(double t) {
  onTape_.TakeDue(t, tSample_);
  return {onTape_.Request(), false};
}

void ZelMeter::ReadTape(const SampleTape& tape, std::span<const int> rows) {
  clock_ = onTape_;
  clock_.Pass(tape.LastTime());
  const auto sources = Sources();
  std::array<const double*, sources.size()> values{};
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = tape.Values(*sources[i]->Signal);
  for (const int row : rows) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      sources[i]->Now = values[i][row] * sources[i]->Signal->Multiplier();
    }
    Update(tape.Time(row));
  }
}

double ZelMeter::Excitation(double now) const {
  if (!useExcitation_) return 0.0;
  return excitationMag_ * std::sin(TwoPi * harmonicFreq_ * excitationMult_ * now) + excitationOff_;
}

double ZelMeter::AngleDeg() const {
  return reading_.Angle * DegreesPerRadian;
}

double ZelMeter::Read(Source& source) const {
  const double x = source.Now;
  if (!ac_) return x;
  // The signal less its slow part; started at the signal, so that switching to AC makes no step.
  source.Slow = source.Primed ? highPole_ * source.Slow + (1.0 - highPole_) * x : x;
  source.Primed = true;
  return x - source.Slow;
}

void ZelMeter::Update(double t) {
  const double x = Read(measured_);
  switch (kind_) {
    case MeterKind::Rms:
      reading_ = rms_.Add(x, lowPole_);
      break;
    case MeterKind::Average:
      reading_ = average_.Add(x, lowPole_);
      break;
    case MeterKind::Harmonic:
      UpdateHarmonic(t, x);
      break;
    case MeterKind::Correlation:
      reading_ = correlation_.Add(x, Read(correlated_), lowPole_).value_or(reading_);
      break;
  }
  spread_.Add(t, reading_.Value, x);
  // A diverged loop's values, or their squares, would stay in the filters for good.
  if (!std::isfinite(x * x) || !Finite()) Restart();
}

bool ZelMeter::Finite() const {
  return rms_.Finite() && average_.Finite() && harmonic_.Finite() && correlation_.Finite();
}

void ZelMeter::UpdateHarmonic(double t, double x) {
  using Shown = HarmonicMeasurement::Shown;
  if (harmonic_.Open()) {
    const double y = harmonicXfer_ ? Read(transfer_) : 0.0;
    const Shown ratio = useDb_ ? Shown::RatioDb : Shown::Ratio;
    const auto read =
        harmonic_.Add(t, tSample_, harmonicFreq_, x, y, harmonicXfer_ ? ratio : Shown::Amplitude);
    if (!read) return;
    reading_ = *read;
  }
  harmonic_.Start(t, WindowLength());
}

void ZelMeter::Restart() {
  for (Source* source : Sources()) source->Primed = false;
  rms_ = {};
  average_ = {};
  correlation_ = {};
  harmonic_.Stop();
  spread_.Clear();
}

namespace {

std::string OwnName(const ZelBenchTop& bench, const std::string& name) {
  std::string own = name;
  for (int number = 2; bench.FindInstrument(InstrumentKind::Meter, own); ++number) {
    own = NumberedName(name, number);
  }
  return own;
}

}  // namespace

ZelMeter* AddMeter(ZelModel& model, const std::string& name) {
  if (model.Bench().Instruments(InstrumentKind::Meter).size() >= ZelMeter::MaxMeters) {
    Error("Too many meters");
    return nullptr;
  }
  auto meter = std::make_unique<ZelMeter>(model.Bench(), OwnName(model.Bench(), name));
  ZelMeter* added = meter.get();
  model.Own(std::move(meter));
  return added;
}

}  // namespace torvane
