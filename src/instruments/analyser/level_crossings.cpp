#include "instruments/analyser/level_crossings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>

#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

// Which level lies below a value.
double StepOf(const Level& level, double value) {
  if (level.Every == 0.0) return value > level.At ? 0.0 : -1.0;
  return std::floor((value - level.At) / level.Every);
}

enum class Straight { Logarithm, Reciprocal, Value };

double ShareOf(Straight straight, double from, double at, double to) {
  if (straight == Straight::Logarithm) return (at - from) / (to - from);
  return std::expm1(at - from) / std::expm1(to - from);
}

std::complex<double> Ratio(const LogPoint& from, const LogPoint& to) {
  return std::polar(std::pow(10.0, (to.Gain - from.Gain) / 20.0),
                    (to.Phase - from.Phase) / DegreesPerRadian);
}

// What a response is at a share of the way to a point, of what it was at the first one.
std::complex<double> Along(Straight straight, const LogPoint& from, const LogPoint& to,
                           double share) {
  const std::complex<double> all = Ratio(from, to);
  if (straight == Straight::Value) return 1.0 + share * (all - 1.0);
  if (straight == Straight::Reciprocal) return 1.0 / (1.0 + share * (1.0 / all - 1.0));
  return std::polar(std::pow(10.0, share * (to.Gain - from.Gain) / 20.0),
                    share * (to.Phase - from.Phase) / DegreesPerRadian);
}

LogPoint Between(Straight straight, const LogPoint& from, const LogPoint& to, double share) {
  const double width = to.LogHz - from.LogHz;
  if (straight == Straight::Logarithm) {
    return {from.LogHz + share * width, from.Gain + share * (to.Gain - from.Gain),
            from.Phase + share * (to.Phase - from.Phase)};
  }
  const std::complex<double> moved = Along(straight, from, to, share);
  return {from.LogHz + std::log1p(share * std::expm1(width)), from.Gain + GainDb(std::abs(moved)),
          from.Phase + std::arg(moved) * DegreesPerRadian};
}

// How well the inner two of four points are told by their neighbours.
double Misses(Straight straight, std::span<const LogPoint> four) {
  double misses = 0.0;
  for (std::size_t i = 0; i < 2; ++i) {
    const LogPoint& from = four[i];
    const LogPoint& at = four[i + 1];
    const double share = ShareOf(straight, from.LogHz, at.LogHz, four[i + 2].LogHz);
    misses += std::abs(Along(straight, from, four[i + 2], share) / Ratio(from, at) - 1.0);
  }
  return misses;
}

// The logarithm, unless another tells the points well and clearly better.
Straight BestBetween(std::span<const LogPoint> points, std::size_t below) {
  if (below == 0 || below + 2 >= points.size()) return Straight::Logarithm;
  const std::span<const LogPoint> four = points.subspan(below - 1, 4);
  constexpr double Well = 0.2;
  double least = std::min(Well, 0.5 * Misses(Straight::Logarithm, four));
  Straight best = Straight::Logarithm;
  for (const Straight other : {Straight::Reciprocal, Straight::Value}) {
    const double misses = Misses(other, four);
    if (misses >= least) continue;
    least = misses;
    best = other;
  }
  return best;
}

// How far a point is from where its neighbours lead, as a complex number of its own size.
std::complex<double> OffLine(std::span<const LogPoint> three) {
  const double share = ShareOf(Straight::Logarithm, three[0].LogHz, three[1].LogHz, three[2].LogHz);
  return Ratio(three[0], three[1]) / Along(Straight::Logarithm, three[0], three[2], share) - 1.0;
}

// The middle one of five points does alone: it draws both neighbours' lines half as far to it.
bool StandsOut(std::span<const LogPoint> five) {
  constexpr double Least = 0.01;
  const std::complex<double> off = OffLine(five.subspan(1, 3));
  const auto agrees = [&](std::size_t first) {
    return std::abs(OffLine(five.subspan(first, 3)) + 0.5 * off) < 0.3 * std::abs(off);
  };
  return std::abs(off) > Least && agrees(0) && agrees(2);
}

// Where the quantity is at the level, which lies between two points.
LogPoint AtLevel(const LogPoint& one, const LogPoint& next, Straight straight,
                 double LogPoint::*quantity, double level) {
  const bool falls = next.*quantity < one.*quantity;
  double before = 0.0;
  double behind = 1.0;
  constexpr int Halvings = 50;
  for (int i = 0; i < Halvings; ++i) {
    const double middle = 0.5 * (before + behind);
    const bool below = Between(straight, one, next, middle).*quantity <= level;
    (below == falls ? behind : before) = middle;
  }
  return Between(straight, one, next, 0.5 * (before + behind));
}

}  // namespace

void TakeLogPoints(std::span<const ResponsePoint> unwrapped, std::vector<LogPoint>& points) {
  points.clear();
  for (const ResponsePoint& point : unwrapped) {
    if (point.Trusted()) points.push_back({std::log(point.Hz), point.Gain, point.Phase});
  }
  std::vector<bool> out(points.size());
  for (std::size_t i = 2; i + 2 < points.size(); ++i) {
    out[i] = !out[i - 1] && StandsOut(std::span(points).subspan(i - 2, 5));
  }
  std::size_t index = 0;
  std::erase_if(points, [&](const LogPoint&) { return out[index++]; });
}

LevelCrossings::LevelCrossings(std::span<const LogPoint> points, const Level& level)
    : points_(points), level_(level) {
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    const double one = StepOf(level, points[i].*level.Crosses);
    const double next = StepOf(level, points[i + 1].*level.Crosses);
    if (one != next) Cross(i, level.At + level.Every * std::max(one, next));
  }
  Close();
}

void LevelCrossings::Cross(std::size_t below, double level) {
  const std::optional<double> scatter = ScatterAt(points_, below, level_.Crosses);
  mostScatter_ = std::max(mostScatter_, scatter.value_or(0.0));
  if (scatter > level_.MostScatter) return;
  if (!Returns(below, level, scatter)) Close();
  const LogPoint& one = points_[below];
  const LogPoint& next = points_[below + 1];
  if (cluster_.Count == 0) cluster_.Falls = next.*level_.Crosses < one.*level_.Crosses;
  cluster_.Level = level;
  cluster_.Last = below;
  const LogPoint at = AtLevel(one, next, BestBetween(points_, below), level_.Crosses, level);
  cluster_.LogHz += at.LogHz;
  cluster_.Value += at.*level_.Read;
  ++cluster_.Count;
}

// Whether the response has not been clear of the level since it crossed it last.
bool LevelCrossings::Returns(std::size_t below, double level, std::optional<double> scatter) const {
  if (cluster_.Count == 0 || cluster_.Level != level) return false;
  constexpr double Deviations = 4.0;
  const double most =
      scatter ? std::max(Deviations * *scatter, level_.LeastExcursion) : level_.UsualExcursion;
  for (std::size_t i = cluster_.Last + 1; i <= below; ++i) {
    if (std::abs(points_[i].*level_.Crosses - level) > most) return false;
  }
  return true;
}

void LevelCrossings::Close() {
  if (cluster_.Count % 2 == 1) {
    all_.push_back({std::exp(cluster_.LogHz / cluster_.Count), cluster_.Value / cluster_.Count,
                    cluster_.Falls});
  }
  cluster_ = {};
}

// By the median of the fourth differences: few steps or peaks among the points do not count.
std::optional<double> ScatterAt(std::span<const LogPoint> points, std::size_t index,
                                double LogPoint::*quantity) {
  constexpr std::size_t Around = 12;
  constexpr std::size_t Fewest = 16;
  constexpr double OfDifferences = 1.4826 / 8.3666;  // 1 / 0.6745 and 1 / sqrt(1+16+36+16+1)
  const std::size_t first = index < Around ? 0 : index - Around;
  const std::size_t end = std::min(points.size(), index + 2 + Around);
  if (end - first < Fewest) return std::nullopt;
  std::array<double, 2 * Around + 2> differences{};
  std::size_t count = 0;
  const auto value = [&](std::size_t i) { return points[i].*quantity; };
  for (std::size_t i = first; i + 4 < end; ++i) {
    differences[count++] = std::abs(value(i) - 4.0 * value(i + 1) + 6.0 * value(i + 2) -
                                    4.0 * value(i + 3) + value(i + 4));
  }
  const auto middle = differences.begin() + static_cast<std::ptrdiff_t>(count / 2);
  std::nth_element(differences.begin(), middle,
                   differences.begin() + static_cast<std::ptrdiff_t>(count));
  return *middle * OfDifferences;
}

}  // namespace torvane
