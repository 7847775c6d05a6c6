#include "instruments/scope/screen_measures.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace torvane {

namespace {

constexpr double SettledBand = 0.02;  // of the step's height
constexpr double FinalPart = 0.1;     // of the points after a step; their mean is its final value
constexpr std::size_t FewestPoints = 20;  // after a step, for a final value and a rise

/// A stretch of points from the last one before a step to the last one before the next.
struct Stretch {
  std::size_t Before;
  std::size_t End;  // behind the last point
};

std::optional<Stretch> FirstStep(std::span<const double> command) {
  const auto [least, most] = std::minmax_element(command.begin(), command.end());
  const double jump = 0.5 * (*most - *least);
  if (!(jump > 0.0)) return std::nullopt;
  const auto next = [&](std::size_t from) {
    std::size_t i = from;
    while (i + 1 < command.size() && !(std::abs(command[i + 1] - command[i]) > jump)) ++i;
    return i;
  };
  const std::size_t before = next(0);
  if (before + 1 >= command.size()) return std::nullopt;
  return Stretch{before, next(before + 1) + 1};
}

/// The response after a step, as a share of the step's height: 0 before it, 1 where it settles.
class Normalised {
 public:
  Normalised(std::span<const double> times, std::span<const double> response, Stretch stretch)
      : times_(times), response_(response), stretch_(stretch) {
    const auto points = static_cast<double>(stretch.End - stretch.Before);
    settledFrom_ = stretch.End - static_cast<std::size_t>(std::ceil(FinalPart * points));
    start_ = response[stretch.Before];
    double sum = 0.0;
    for (std::size_t i = settledFrom_; i < stretch.End; ++i) sum += response[i];
    height_ = sum / static_cast<double>(stretch.End - settledFrom_) - start_;
  }

  double At(std::size_t i) const { return (response_[i] - start_) / height_; }

  /// What moves less than rounding does not move; what has not come to rest has no final value.
  bool Settles() const {
    if (!std::isfinite(height_) || std::abs(height_) <= 1e-9 * std::abs(start_)) return false;
    for (std::size_t i = settledFrom_; i < stretch_.End; ++i) {
      if (!(std::abs(At(i) - 1.0) <= SettledBand)) return false;
    }
    return height_ != 0.0;
  }

  /// When the response first passes the share.
  double CrossingTime(double share) const {
    std::size_t i = stretch_.Before;
    while (i + 1 < stretch_.End && At(i + 1) < share) ++i;
    return TimeBetween(i, share);
  }

  /// When it last comes into the band around its final value.
  double BandTime() const {
    std::size_t i = settledFrom_;
    while (i > stretch_.Before && std::abs(At(i) - 1.0) <= SettledBand) --i;
    return TimeBetween(i, At(i) > 1.0 ? 1.0 + SettledBand : 1.0 - SettledBand);
  }

  double Highest() const {
    double highest = 1.0;
    for (std::size_t i = stretch_.Before; i < stretch_.End; ++i) highest = std::max(highest, At(i));
    return highest;
  }

 private:
  double TimeBetween(std::size_t i, double share) const {
    if (i + 1 >= stretch_.End) return times_[i];
    const double rise = At(i + 1) - At(i);
    const double part = rise != 0.0 ? std::clamp((share - At(i)) / rise, 0.0, 1.0) : 0.0;
    return times_[i] + part * (times_[i + 1] - times_[i]);
  }

  std::span<const double> times_;
  std::span<const double> response_;
  Stretch stretch_;
  std::size_t settledFrom_ = 0;
  double start_ = 0.0;
  double height_ = 0.0;
};

}  // namespace

std::optional<TraceMeasures> MeasureTrace(std::span<const double> values) {
  TraceMeasures measures;
  double sum = 0.0;
  double squares = 0.0;
  std::size_t count = 0;
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    measures.Minimum = count == 0 ? value : std::min(measures.Minimum, value);
    measures.Maximum = count == 0 ? value : std::max(measures.Maximum, value);
    sum += value;
    squares += value * value;
    ++count;
  }
  if (count == 0) return std::nullopt;
  measures.Mean = sum / static_cast<double>(count);
  measures.Rms = std::sqrt(squares / static_cast<double>(count));
  return measures;
}

std::optional<StepMeasures> MeasureStep(std::span<const double> times,
                                        std::span<const double> command,
                                        std::span<const double> response) {
  if (times.size() != command.size() || times.size() != response.size() || times.empty()) {
    return std::nullopt;
  }
  const std::optional<Stretch> stretch = FirstStep(command);
  if (!stretch || stretch->End - stretch->Before < FewestPoints) return std::nullopt;
  const Normalised trace(times, response, *stretch);
  if (!trace.Settles()) return std::nullopt;
  const double step = times[stretch->Before + 1];
  StepMeasures measures;
  measures.OvershootPercent = 100.0 * (trace.Highest() - 1.0);
  measures.RiseTime = trace.CrossingTime(0.9) - trace.CrossingTime(0.1);
  measures.SettlingTime = std::max(0.0, trace.BandTime() - step);
  measures.Delay = std::max(0.0, trace.CrossingTime(0.5) - step);
  return measures;
}

}  // namespace torvane
