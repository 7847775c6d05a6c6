#include "instruments/generator/wave_table.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/text.h"

namespace torvane {

namespace {

constexpr std::size_t PointsInARecord = 100;

}  // namespace

WaveTable::WaveTable(std::string name, std::vector<Point> points)
    : name_(std::move(name)), points_(std::move(points)) {
  for (std::size_t i = 0; i < points_.size(); ++i) {
    if (i % PointsInARecord == 0) recordTexts_.emplace_back();
    std::string& text = recordTexts_.back();
    if (!text.empty()) text += ' ';
    text += FormatShortest(points_[i].Time);
    text += ' ';
    text += FormatShortest(points_[i].Value);
  }
}

std::string WaveTable::Fault(const std::vector<Point>& points) {
  if (points.empty()) return "it has no points";
  if (points.size() > MostPoints) {
    return "it has more than " + std::to_string(MostPoints) + " points";
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!std::isfinite(points[i].Time) || !std::isfinite(points[i].Value)) {
      return "point " + std::to_string(i + 1) + " is no number";
    }
    if (i > 0 && points[i].Time < points[i - 1].Time) {
      return "point " + std::to_string(i + 1) + " is before the one that it follows";
    }
  }
  return {};
}

double WaveTable::At(double t) const {
  const auto next = std::upper_bound(points_.begin(), points_.end(), t,
                                     [](double time, const Point& p) { return time < p.Time; });
  if (next == points_.begin()) return next->Value;
  const Point& last = *(next - 1);
  if (next == points_.end()) return last.Value;
  return last.Value + (t - last.Time) / (next->Time - last.Time) * (next->Value - last.Value);
}

std::vector<double> WaveTable::EdgesIn(double period) const {
  std::vector<double> edges;
  if (At(0.0) != At(std::nextafter(period, 0.0))) edges.push_back(0.0);
  double from = 0.0;
  for (const Point& point : points_) {
    if (!(point.Time > from) || point.Time >= period) continue;
    if (JumpIn(from, point.Time)) edges.push_back(point.Time / period);
    from = point.Time;
  }
  return edges;
}

std::optional<double> WaveTable::JumpIn(double from, double to) const {
  std::optional<double> found;
  auto point = std::upper_bound(points_.begin(), points_.end(), from,
                                [](double time, const Point& p) { return time < p.Time; });
  for (; point != points_.end() && point->Time <= to; ++point) {
    const bool last = point + 1 == points_.end() || (point + 1)->Time != point->Time;
    if (point == points_.begin() || (point - 1)->Time != point->Time || !last) continue;
    // From the first of the points there, in which a ramp ends.
    const auto first = std::lower_bound(points_.begin(), point, point->Time,
                                        [](const Point& p, double time) { return p.Time < time; });
    if (first->Value == point->Value) continue;
    if (found) return {};
    found = point->Time;
  }
  return found;
}

}  // namespace torvane
