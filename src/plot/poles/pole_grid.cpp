#include "plot/poles/pole_grid.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "plot/number_axis.h"

namespace torvane {

namespace {

constexpr int Pieces = 60;
constexpr int Circles = 5;  // at least
constexpr double RadiansPerTurn = 2.0 * std::numbers::pi;

std::complex<double> PlaceOf(double w, double zeta, double ts) {
  const std::complex<double> s = w * std::complex<double>(-zeta, std::sqrt(1.0 - zeta * zeta));
  return ts > 0.0 ? std::exp(s * ts) : s;
}

}  // namespace

std::vector<PoleGridLine> DampingLines(double ts, double reach) {
  std::vector<PoleGridLine> lines;
  for (int tenth = 1; tenth <= 9; ++tenth) {
    const double zeta = 0.1 * tenth;
    // In the z plane no further than half the sample frequency, where it meets its image.
    const double half = std::numbers::pi / (ts * std::sqrt(1.0 - zeta * zeta));
    const double end = ts > 0.0 ? std::min(half, reach) : reach;
    PoleGridLine line{{}, "ζ " + FormatGeneral(zeta, 2, 1)};
    for (int i = 0; i <= Pieces; ++i) line.Points.push_back(PlaceOf(end * i / Pieces, zeta, ts));
    lines.push_back(std::move(line));
  }
  return lines;
}

std::vector<PoleGridLine> FrequencyLines(double ts, double reach) {
  const double highest =
      (ts > 0.0 ? std::min(reach, std::numbers::pi / ts) : reach) / RadiansPerTurn;
  const double step = RoundStep(highest / (2 * Circles));
  std::vector<PoleGridLine> lines;
  for (int k = 1; k * step <= highest; ++k) {
    PoleGridLine line{{}, FormatGeneral(k * step, 4, 1) + " Hz"};
    for (int i = 0; i <= Pieces; ++i) {
      line.Points.push_back(PlaceOf(RadiansPerTurn * k * step, 1.0 * i / Pieces, ts));
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace torvane
