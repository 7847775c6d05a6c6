#pragma once

#include <cmath>
#include <complex>
#include <string>

#include "instruments/meter/meter.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "models/loop.h"

namespace torvane::test {

using Complex = std::complex<double>;

inline double Decibels(Complex response) {
  return 20.0 * std::log10(std::abs(response));
}
inline double Degrees(Complex response) {
  return std::arg(response) * 180.0 / M_PI;
}
/// Difference of two phases, in (-180, 180].
inline double Turn(double degrees, double from) {
  return std::remainder(degrees - from, 360.0);
}

/// Takes a record of 2^order samples with the FFT analyser. No other instrument asks for times.
inline ZelXfer& TakeRecord(Loop& loop, const std::string& input, const std::string& output,
                           int order, double tSample, double amplitude) {
  ZelXfer& fft = loop.Fft();
  fft.SetInput(input);
  fft.SetOutput(output);
  fft.SetOrder(order);
  fft.SetTSample(tSample);
  fft.SetTStartDelay(0.0);
  fft.SetTEndDelay(0.3 * fft.Length() * tSample);
  fft.SetAmplitude(amplitude);
  fft.Run();
  while (fft.Measuring()) {
    loop.Run(fft.NextTime());
    fft.Service(loop.Model().Time());
  }
  return fft;
}

/// A period of that many solver steps, a hair less: every sample falls on the step that it is meant
/// to, whatever the sum of steps rounds to.
inline double StepsLong(Loop& loop, int steps) {
  return steps * loop.Model().Solver().Step() * (1.0 - 1e-9);
}

}  // namespace torvane::test
