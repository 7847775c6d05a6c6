#include "instruments/analyser/response_curve.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "instruments/analyser/analyser.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

// What is left between command and response of a loop of 60 dB. Below that it is the record's
// leakage and the samples' rounding, some 1e-5 of it, that tell by how much.
constexpr double LeastError = 0.001;

}  // namespace

void ReadCurve(const FrequencyAnalyser& analyser, int slot, ResponseCurve& curve) {
  curve.clear();
  if (!analyser.HasData(slot)) return;
  const std::span<const ResponsePoint> points = analyser.ResponseAt(slot).Curve();
  curve.assign(points.begin(), points.end());
}

void UnwrapPhase(std::span<ResponsePoint> curve) {
  bool begun = false;
  double last = 0.0;
  for (ResponsePoint& point : curve) {
    if (begun) point.Phase = last + std::remainder(point.Phase - last, 360.0);
    if (!point.Trusted()) continue;
    last = point.Phase;
    begun = true;
  }
}

void OpenFromClosed(std::span<ResponsePoint> curve) {
  for (ResponsePoint& point : curve) {
    const std::complex<double> closed =
        std::polar(std::pow(10.0, point.Gain / 20.0), point.Phase / DegreesPerRadian);
    const std::complex<double> open = closed / (1.0 - closed);
    point.Gain = GainDb(std::abs(open));
    point.Phase = PhaseDeg(open.real(), open.imag());
    if (std::abs(1.0 - closed) < LeastError) point.Excited = false;
    // G = 1 is a loop of infinite gain, which no plot can show.
    if (!std::isfinite(point.Gain) || !std::isfinite(point.Phase)) {
      point.Gain = NoGain;
      point.Phase = 0.0;
      point.Excited = false;
    }
  }
}

void GroupDelay(std::span<const ResponsePoint> unwrapped, std::vector<double>& seconds) {
  seconds.clear();
  if (unwrapped.size() < 2) return;
  seconds.reserve(unwrapped.size());
  for (std::size_t i = 0; i < unwrapped.size(); ++i) {
    const ResponsePoint& before = unwrapped[i == 0 ? 0 : i - 1];
    const ResponsePoint& after = unwrapped[std::min(i + 1, unwrapped.size() - 1)];
    seconds.push_back((before.Phase - after.Phase) / (360.0 * (after.Hz - before.Hz)));
  }
}

}  // namespace torvane
