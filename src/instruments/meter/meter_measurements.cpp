#include "instruments/meter/meter_measurements.h"

#include <cmath>

#include "core/angle.h"
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

MeterReading RmsMeasurement::Add(double x, double pole) {
  rms_ = std::sqrt(pole * rms_ * rms_ + (1.0 - pole) * x * x);
  return {rms_};
}

bool RmsMeasurement::Finite() const {
  return std::isfinite(rms_);
}

MeterReading AverageMeasurement::Add(double x, double pole) {
  mean_ = pole * mean_ + (1.0 - pole) * x;
  return {mean_};
}

bool AverageMeasurement::Finite() const {
  return std::isfinite(mean_);
}

std::optional<MeterReading> CorrelationMeasurement::Add(double x, double y, double pole) {
  p_ = pole * p_ + (1.0 - pole) * x * y;
  q_ = pole * q_ + (1.0 - pole) * y * y;
  if (q_ == 0.0) return {};
  return MeterReading{p_ / q_};
}

bool CorrelationMeasurement::Finite() const {
  return std::isfinite(p_ + q_);
}

void HarmonicMeasurement::Start(double t, double length) {
  open_ = true;
  length_ = length;
  end_ = t + length;
  x_ = {};
  y_ = {};
}

std::optional<MeterReading> HarmonicMeasurement::Add(double t, double period, double hz, double x,
                                                     double y, Shown shown) {
  const double sine = std::sin(TwoPi * hz * t);
  const double cosine = std::cos(TwoPi * hz * t);
  x_.S += sine * x * period;
  x_.C += cosine * x * period;
  y_.S += sine * y * period;
  y_.C += cosine * y * period;
  // Times are running sums of steps: a tick that falls short of the end by their rounding is there.
  if (t < end_ - 1e-6 * period) return {};
  return Finish(shown);
}

MeterReading HarmonicMeasurement::Finish(Shown shown) {
  const double s = x_.S / length_;
  const double c = x_.C / length_;
  if (shown == Shown::Amplitude) {
    return {2.0 * std::sqrt(c * c + s * s), WrapAngle(Angle(s, c))};
  }
  const double sy = y_.S / length_;
  const double cy = y_.C / length_;
  if (sy != 0.0 || cy != 0.0) ratio_ = std::sqrt((c * c + s * s) / (cy * cy + sy * sy));
  // Without a cosine part the reference stands at a plus quarter turn whatever its sine:
  // deliberate.
  const double reference = cy == 0.0 ? QuarterTurn : std::atan2(cy, sy);
  return {shown == Shown::RatioDb ? GainDb(ratio_) : ratio_, WrapAngle(Angle(s, c) - reference)};
}

bool HarmonicMeasurement::Finite() const {
  return !open_ || std::isfinite(y_.S);
}

}  // namespace torvane
