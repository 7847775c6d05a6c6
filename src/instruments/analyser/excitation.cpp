#include "instruments/analyser/excitation.h"

#include <cmath>

#include "core/angle.h"

namespace torvane {

namespace {

constexpr std::int32_t Multiplier = 7141;
constexpr std::int32_t Increment = 54773;

constexpr double CornerFrequency = 0.390625 * Pi;
// pi/16, 3 pi/16, ... of an eighth-order Butterworth filter; products would round otherwise.
constexpr std::array PoleAngles = {0.1963495375, 0.5890486125, 0.9817476875, 1.3744467625};

}  // namespace

void RandomSequence::Advance() {
  state_ = (Multiplier * state_ + Increment) % Modulus;
}

double RandomSequence::Uniform(double amplitude, double offset) {
  Advance();
  return (static_cast<double>(state_) / Modulus - 0.5) * amplitude + offset;
}

double RandomSequence::Binary(double amplitude, double offset) {
  Advance();
  return state_ <= Modulus / 2 ? offset - amplitude : offset + amplitude;
}

SmoothingFilter::SmoothingFilter() {
  for (std::size_t i = 0; i < sections_.size(); ++i) {
    const double zeta = std::cos(PoleAngles[i]);
    const double w = CornerFrequency;
    Section& section = sections_[i];
    section.A1 = -2.0 * std::exp(-zeta * w) * std::sin(std::sqrt(1.0 - zeta * zeta) * w);
    section.A2 = std::exp(-2.0 * zeta * w);
    section.B0 = 1.0 + section.A1 + section.A2;
  }
}

double SmoothingFilter::Step(double x) {
  for (Section& section : sections_) {
    const double y = section.B0 * x - section.A1 * section.Y1 - section.A2 * section.Y2;
    section.Y2 = section.Y1;
    section.Y1 = y;
    x = y;
  }
  return x;
}

}  // namespace torvane
