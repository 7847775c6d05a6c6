// When a waveform generator's output jumps.

#include <cmath>
#include <vector>

#include "instruments/generator/wave.h"

namespace torvane {
namespace {

constexpr double CyclesPerDegree = 1.0 / 360.0;

// The fractions of a cycle at which a waveform jumps. Ramps meet where they end.
std::vector<double> Edges(const WaveSettings& settings) {
  const double duty = settings.DutyCycle / 100.0;
  switch (static_cast<Waveform>(settings.Index)) {
    case Waveform::Square:
      return {0.0, 0.5};
    case Waveform::Sawtooth:
      return {0.0};
    case Waveform::Pulse:
      return duty > 0.0 && duty < 1.0 ? std::vector{0.0, duty} : std::vector<double>{};
    case Waveform::BipolarPulse:
      if (!(duty > 0.0)) return {};
      return {0.0, 0.5 * duty, 0.5, 0.5 + 0.5 * duty};
    default:
      return {};
  }
}

}  // namespace

std::optional<double> ZelWave::JumpIn(double from, double to) const {
  if (from < changedAt_) return std::nullopt;
  if (played_ && !(settings_.FreqHz > 0.0)) return played_->JumpIn(from, to);
  if (!(settings_.FreqHz > 0.0)) return std::nullopt;
  std::optional<double> found;
  for (const double edge : played_ ? played_->EdgesIn(1.0 / settings_.FreqHz) : Edges(settings_)) {
    const double start = edge - settings_.PhaseDeg * CyclesPerDegree;
    const double cycle = std::floor(from * settings_.FreqHz - start) + 1.0;
    for (const double next : {cycle, cycle + 1.0}) {
      const double at = (next + start) / settings_.FreqHz;
      if (!(at > from && at <= to)) continue;
      if (found) return std::nullopt;
      found = at;
    }
  }
  return found;
}

std::optional<double> ZelWave::RisingEdge() const {
  if (played_) return std::nullopt;
  const std::vector<double> edges = Edges(settings_);
  if (edges.empty() || settings_.Amplitude == 0.0) return std::nullopt;
  if (settings_.Amplitude > 0.0 || edges.size() == 1) return edges.front();
  return edges.size() == 2 ? edges[1] : edges[2];
}

}  // namespace torvane
