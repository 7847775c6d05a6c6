#include "instruments/meter/meter.h"

#include <cmath>
#include <memory>
#include <utility>

#include "core/angle.h"
#include "core/messages.h"
#include "core/model.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

constexpr double QuarterTurn = Pi / 2.0;

// The angle of the sums against a sine. Without a cosine part it is a quarter turn, not 0 or half a
// turn: deliberate.
double Angle(double s, double c) {
  if (c == 0.0) return s < 0.0 ? -QuarterTurn : QuarterTurn;
  return std::atan2(c, s);
}

double WrapAngle(double angle) {
  for (int i = 0; i < 2 && angle > QuarterTurn; ++i) angle -= TwoPi;
  for (int i = 0; i < 2 && angle < -4.7123889; ++i) angle += TwoPi;
  return angle;
}

}  // namespace

double ZelMeter::NextTime() const {
  return clock_.Request();
}

bool ZelMeter::Service(double t) {
  if (clock_.TakeDue(t, tSample_)) Update(t);
  return true;
}

double ZelMeter::Excitation(double now) const {
  if (!useExcitation_) return 0.0;
  return excitationMag_ * std::sin(TwoPi * harmonicFreq_ * excitationMult_ * now) + excitationOff_;
}

double ZelMeter::AngleDeg() const {
  return angle_ * DegreesPerRadian;
}

double ZelMeter::Read(Source& source) const {
  const double x = source.Signal ? source.Signal->DisplayValue() : 0.0;
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
      rms_ = std::sqrt(lowPole_ * rms_ * rms_ + (1.0 - lowPole_) * x * x);
      Show(rms_, 0.0);
      break;
    case MeterKind::Average:
      mean_ = lowPole_ * mean_ + (1.0 - lowPole_) * x;
      Show(mean_, 0.0);
      break;
    case MeterKind::Harmonic:
      UpdateHarmonic(t, x);
      break;
    case MeterKind::Correlation:
      UpdateCorrelation(x);
      break;
  }
  // A diverged loop's values, or their squares, would stay in the filters for good.
  if (!std::isfinite(x * x + rms_ + mean_ + p_ + q_ + transfer_.S)) Restart();
}

void ZelMeter::Show(double value, double angle) {
  value_ = value;
  angle_ = angle;
}

void ZelMeter::UpdateCorrelation(double x) {
  const double y = Read(correlated_);
  p_ = lowPole_ * p_ + (1.0 - lowPole_) * x * y;
  q_ = lowPole_ * q_ + (1.0 - lowPole_) * y * y;
  if (q_ != 0.0) Show(p_ / q_, 0.0);
}

void ZelMeter::UpdateHarmonic(double t, double x) {
  if (!windowOpen_) {
    StartWindow(t);
    return;
  }
  const double sine = std::sin(TwoPi * harmonicFreq_ * t);
  const double cosine = std::cos(TwoPi * harmonicFreq_ * t);
  measured_.S += sine * x * tSample_;
  measured_.C += cosine * x * tSample_;
  if (harmonicXfer_) {
    const double y = Read(transfer_);
    transfer_.S += sine * y * tSample_;
    transfer_.C += cosine * y * tSample_;
  }
  // Times are running sums of steps: a tick that falls short of the end by their rounding is there.
  if (t < windowEnd_ - 1e-6 * tSample_) return;
  FinishWindow();
  StartWindow(t);
}

void ZelMeter::FinishWindow() {
  const double duration = WindowLength();
  const double s = measured_.S / duration;
  const double c = measured_.C / duration;
  if (!harmonicXfer_) {
    Show(2.0 * std::sqrt(c * c + s * s), WrapAngle(Angle(s, c)));
    return;
  }
  const double sx = transfer_.S / duration;
  const double cx = transfer_.C / duration;
  if (sx != 0.0 || cx != 0.0) ratio_ = std::sqrt((c * c + s * s) / (cx * cx + sx * sx));
  // Without a cosine part the reference stands at a plus quarter turn whatever its sine:
  // deliberate.
  const double reference = cx == 0.0 ? QuarterTurn : std::atan2(cx, sx);
  Show(useDb_ ? GainDb(ratio_) : ratio_, WrapAngle(Angle(s, c) - reference));
}

void ZelMeter::StartWindow(double t) {
  windowOpen_ = true;
  windowEnd_ = t + WindowLength();
  measured_.S = measured_.C = 0.0;
  transfer_.S = transfer_.C = 0.0;
}

void ZelMeter::Restart() {
  for (Source* source : {&measured_, &correlated_, &transfer_}) source->Primed = false;
  rms_ = mean_ = p_ = q_ = 0.0;
  windowOpen_ = false;
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
