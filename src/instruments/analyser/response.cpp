#include "instruments/analyser/response.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "instruments/analyser/response_reading.h"

namespace torvane {

Response::Response(ResponseSource source, std::string name, ResponseCurve points, bool hasCoherence,
                   const BinSpacing& bins)
    : source_(source),
      name_(std::move(name)),
      points_(std::move(points)),
      hasCoherence_(hasCoherence),
      bins_(bins) {}

const ResponsePoint* Response::At(int index) const {
  return index >= 0 && index < End() ? &points_[static_cast<std::size_t>(index)] : nullptr;
}

std::span<const ResponsePoint> Response::Curve() const {
  return std::span(points_).subspan(Empty() ? 0 : static_cast<std::size_t>(First()));
}

std::span<ResponsePoint> Response::Curve() {
  return std::span(points_).subspan(Empty() ? 0 : static_cast<std::size_t>(First()));
}

double Response::LowestHz() const {
  if (bins_.Length > 0) return 1.0 / (bins_.Length * bins_.TSample);
  return Empty() ? 0.0 : points_.front().Hz;
}

double Response::HighestHz() const {
  if (bins_.Length > 0) return 0.5 / bins_.TSample;
  return Empty() ? 0.0 : points_.back().Hz;
}

double Response::IndexAt(double hz) const {
  if (Empty() || !(hz >= LowestHz() && hz <= HighestHz())) return -1.0;
  if (bins_.Length > 0) return hz * bins_.TSample * bins_.Length;
  if (hz == points_.back().Hz) return static_cast<double>(points_.size() - 1);
  const auto above = std::ranges::upper_bound(points_, hz, {}, &ResponsePoint::Hz);
  const auto below = above - 1;
  const double fraction = std::log(hz / below->Hz) / std::log(above->Hz / below->Hz);
  return static_cast<double>(below - points_.begin()) + fraction;
}

std::optional<double> Response::ValueOf(ResponseQuantity quantity, int index) const {
  const ResponsePoint* point = index >= First() ? At(index) : nullptr;
  if (!point) return std::nullopt;
  switch (quantity) {
    case ResponseQuantity::Gain:
      return point->Gain;
    case ResponseQuantity::Phase:
      return point->Phase;
    case ResponseQuantity::Delay:
      if (delays_.empty()) return std::nullopt;
      return delays_[static_cast<std::size_t>(index - First())];
    case ResponseQuantity::Coherence:
      if (!hasCoherence_) return std::nullopt;
      return point->Coherence;
  }
  return std::nullopt;
}

std::optional<double> Response::Read(ResponseQuantity quantity, double hz) const {
  const double index = IndexAt(hz);
  if (index < 0.0) return std::nullopt;
  const int below = static_cast<int>(index);
  const double share = index - below;
  const auto value = ValueOf(quantity, below);
  const auto next = ValueOf(quantity, below + 1);
  // The highest frequency may round to a place above the last point.
  if (!value || share == 0.0 || !next) return value;
  if (quantity == ResponseQuantity::Phase && PhaseWraps(*value, *next)) return std::nullopt;
  return (1.0 - share) * *value + share * *next;
}

Response Response::Loaded(std::string name) const {
  const std::span<const ResponsePoint> points = Curve();
  Response loaded(ResponseSource::Loaded, std::move(name), {points.begin(), points.end()},
                  hasCoherence_);
  loaded.subject_ = subject_;
  loaded.doubts_ = doubts_;
  return loaded;
}

Response Response::Seen(const ResponseView& view) const {
  Response seen = *this;
  if (view.OpenLoop) OpenFromClosed(seen.Curve());
  if (view.GroupDelay) {
    const std::span<const ResponsePoint> curve = std::as_const(seen).Curve();
    ResponseCurve unwrapped(curve.begin(), curve.end());
    UnwrapPhase(unwrapped);
    GroupDelay(unwrapped, seen.delays_);
  }
  if (view.Unwrapped) UnwrapPhase(seen.Curve());
  return seen;
}

void Response::TurnBy(double turns) {
  for (ResponsePoint& point : points_) point.Phase += turns * Turn;
}

}  // namespace torvane
