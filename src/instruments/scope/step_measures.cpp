#include "instruments/scope/step_measures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "core/extremes.h"
#include "core/text.h"
#include "instruments/scope/step_tail.h"

namespace torvane {

namespace {

constexpr double SettledBand = 0.02;          // of the step
constexpr double FinestOvershoot = 0.01;      // per cent
constexpr double SameOvershoot = 0.5;         // per cent: what two views may differ by
constexpr double UnsurePeak = 1.0;            // per cent
constexpr double ScreenPoints = 400.0;        // half their distance is what times may differ by
constexpr std::size_t FewestStepPoints = 20;  // after a step, for a final value and a rise

struct GapTexts {
  const char* Short;
  const char* Clause;
};
constexpr std::array<GapTexts, 9> Texts{{
    {"", ""},
    {"No step", "the command makes no step"},
    {"Few points", "the step has too few points"},
    {"Not finite", "the response is not finite"},
    {"Still", "the response does not move"},
    {"Not settled", "the response has not settled"},
    {"Comes back", "the response settles where it was before the step"},
    {"Other way", "the response first leaves the other way by more than its height"},
    {"Too coarse", "the points are too far apart for it"},
}};

/// The response as a share of a step: 0 before it, 1 where it ends.
class Shares {
 public:
  Shares(const StepTraces& traces, const StepStretch& stretch, const StepEnds& ends,
         const JumpTime& jump)
      : times_(traces.Times.subspan(stretch.Before, stretch.End - stretch.Before)), jump_(jump) {
    const auto response = traces.Response.subspan(stretch.Before, times_.size());
    share_.reserve(response.size());
    for (const double value : response) {
      share_.push_back((value - ends.From) / (ends.To - ends.From));
    }
  }

  StepMeasures Measured() const {
    if (LeavesOtherWay()) return StepMeasures::Without(StepGap::OtherWay);
    StepMeasures measures;
    measures.Overshoot = Overshoot();
    const StepFigure low = Crossing(0.1);
    const StepFigure high = Crossing(0.9);
    measures.Rise = {high.Value - low.Value, std::max(low.Resolution, high.Resolution)};
    measures.Settling = SinceJump(BandTime());
    measures.Delay = SinceJump(Crossing(0.5));
    // A response that jumps with the command, and falls back, may have been anywhere in between.
    if (At(1) > 0.1 && At(2) < At(1) && !EveryStep()) {
      measures.Rise.Gap = measures.Delay.Gap = StepGap::Coarse;
    }
    return measures;
  }

 private:
  double At(std::size_t i) const { return share_[i]; }

  bool EveryStep() const { return times_[1] - times_[0] <= 1.001 * jump_.SolverStep; }

  StepFigure SinceJump(const StepFigure& time) const {
    return {std::max(0.0, time.Value - jump_.At), std::max(time.Resolution, jump_.Resolution),
            time.Gap};
  }

  /// Between a point and the next the trace steps from one level to another.
  bool Stair(std::size_t i) const {
    return At(i) != At(i + 1) &&
           ((i > 0 && At(i) == At(i - 1)) || (i + 2 < times_.size() && At(i + 1) == At(i + 2)));
  }

  /// When a share is passed between a point and the next: as sure as the trace is straight there.
  StepFigure TimeBetween(std::size_t i, double share) const {
    if (i + 1 >= times_.size()) return {times_[i], 0.0, StepGap::NotSettled};
    const double apart = times_[i + 1] - times_[i];
    if (Stair(i)) {
      const double unsure = std::max(0.0, apart - jump_.SolverStep);
      return {times_[i + 1] - 0.5 * unsure, apart};
    }
    const double rise = At(i + 1) - At(i);
    const double part = rise != 0.0 ? std::clamp((share - At(i)) / rise, 0.0, 1.0) : 0.0;
    return {times_[i] + part * apart, std::abs(rise) < 0.2 ? 0.1 * apart : apart};
  }

  StepFigure Crossing(double share) const {
    std::size_t i = 0;
    while (i + 1 < times_.size() && At(i + 1) < share) ++i;
    return TimeBetween(i, share);
  }

  bool LeavesOtherWay() const {
    for (std::size_t i = 0; i < times_.size() && At(i) < 0.5; ++i) {
      if (At(i) < -1.0) return true;
    }
    return false;
  }

  bool Extreme(std::size_t i) const {
    return i > 0 && i + 1 < times_.size() && (At(i) - At(i - 1)) * (At(i) - At(i + 1)) > 0.0;
  }

  /// How far beyond a point that is higher or lower than both of its neighbours the parabola
  /// through the three has its peak. A stair has its own flat top.
  double Beyond(std::size_t i) const {
    if (!Extreme(i)) return 0.0;
    const double before = At(i) - At(i - 1);
    const double after = At(i) - At(i + 1);
    return (before - after) * (before - after) / (8.0 * (before + after));
  }

  /// How far beyond it a peak can be at the most: that of a parabola halfway to a neighbour.
  double Unsure(std::size_t i) const {
    return Extreme(i) ? std::abs(2.0 * At(i) - At(i - 1) - At(i + 1)) / 8.0 : 0.0;
  }

  StepFigure Overshoot() const {
    std::size_t peak = 0;
    for (std::size_t i = 0; i < times_.size(); ++i) {
      if (At(i) > At(peak)) peak = i;
    }
    StepFigure figure{100.0 * std::max(0.0, At(peak) + Beyond(peak) - 1.0), FinestOvershoot};
    if (figure.Value == 0.0) return figure;
    const double unsure = 100.0 * Unsure(peak);
    figure.Resolution = std::max(FinestOvershoot, 0.2 * unsure);
    if (unsure > UnsurePeak) figure.Gap = StepGap::Coarse;
    return figure;
  }

  /// When it last comes into the band around its final value. A peak that may or may not leave the
  /// band later makes that too coarse.
  StepFigure BandTime() const {
    StepGap gap = StepGap::None;
    for (std::size_t i = times_.size(); i-- > 0;) {
      const double from = At(i) - 1.0;
      if (std::abs(from) > SettledBand) {
        StepFigure time = TimeBetween(i, 1.0 + std::copysign(SettledBand, from));
        if (time.Gap == StepGap::None) time.Gap = gap;
        return time;
      }
      if (std::abs(from + Beyond(i)) > SettledBand) {
        return {times_[i], times_[i] - times_[i - 1], gap};
      }
      if (std::abs(from) + Unsure(i) > SettledBand) gap = StepGap::Coarse;
    }
    return {times_[0], times_[1] - times_[0], gap};
  }

  std::span<const double> times_;
  std::vector<double> share_;
  JumpTime jump_;
};

void Compare(StepFigure& figure, const StepFigure& other, double most) {
  if (figure.Gap == StepGap::None) figure.Gap = other.Gap;
  const double difference = std::abs(figure.Value - other.Value);
  if (!(difference <= most)) figure.Gap = StepGap::NotSettled;
  figure.Resolution = std::max(figure.Resolution, difference);
}

}  // namespace

const char* ShortReason(StepGap gap) {
  return Texts.at(static_cast<std::size_t>(gap)).Short;
}

const char* Reason(StepGap gap) {
  return Texts.at(static_cast<std::size_t>(gap)).Clause;
}

std::string StepFigure::Text() const {
  if (Gap != StepGap::None) return {};
  const double unit = std::ceil(std::log10(Resolution) - 1e-9);
  const double digits = std::floor(std::log10(std::abs(Value)) + 1e-9) - unit + 1.0;
  // Less than half of what is known is nothing.
  if (!(digits >= 0.0) || (digits == 0.0 && std::abs(Value) < 0.5 * std::pow(10.0, unit))) {
    return "0";
  }
  return FormatGeneral(Value, static_cast<int>(std::clamp(digits, 1.0, 15.0)), 2);
}

StepMeasures StepMeasures::Without(StepGap gap) {
  const StepFigure none{0.0, 0.0, gap};
  return {none, none, none, none};
}

StepGap StepMeasures::Gap() const {
  for (const StepFigure* figure : {&Overshoot, &Rise, &Settling, &Delay}) {
    if (figure->Gap != StepGap::None) return figure->Gap;
  }
  return StepGap::None;
}

std::optional<StepStretch> FindStep(std::span<const double> command) {
  if (command.empty()) return std::nullopt;
  const Extremes extremes = ExtremesOf(command);
  const double jump = 0.5 * (extremes.Greatest - extremes.Least);
  if (!(jump > 0.0)) return std::nullopt;
  const auto next = [&](std::size_t from) {
    std::size_t i = from;
    while (i + 1 < command.size() && !(std::abs(command[i + 1] - command[i]) > jump)) ++i;
    return i;
  };
  const std::size_t before = next(0);
  if (before + 1 >= command.size()) return std::nullopt;
  return StepStretch{before, next(before + 1) + 1};
}

StepMeasures MeasureStep(const StepTraces& traces, const StepStretch& stretch,
                         const JumpTime& jump) {
  const std::size_t count = stretch.End - stretch.Before;
  if (count < FewestStepPoints) return StepMeasures::Without(StepGap::FewPoints);
  const StepTail tail = FindTail(traces, stretch, SettledBand);
  if (tail.Gap != StepGap::None) return StepMeasures::Without(tail.Gap);
  const double length = traces.Times[stretch.End - 1] - traces.Times[stretch.Before];
  const double most = 0.5 * length / std::min(static_cast<double>(count - 1), ScreenPoints);
  StepMeasures measures = Shares(traces, stretch, tail.Ends.front(), jump).Measured();
  for (std::size_t k = 1; k < tail.Ends.size(); ++k) {
    const StepMeasures other = Shares(traces, stretch, tail.Ends[k], jump).Measured();
    Compare(measures.Overshoot, other.Overshoot, SameOvershoot);
    Compare(measures.Rise, other.Rise, most);
    Compare(measures.Settling, other.Settling, most);
    Compare(measures.Delay, other.Delay, most);
  }
  return measures;
}

}  // namespace torvane
