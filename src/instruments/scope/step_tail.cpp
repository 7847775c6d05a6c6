#include "instruments/scope/step_tail.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "core/extremes.h"

namespace torvane {

namespace {

constexpr double LeastMove = 1e-9;      // of the value before the step: less is rounding
constexpr double LeastHeight = 0.01;    // of all that the response moves
constexpr double MostDrift = 0.005;     // of the height, left in a response that has settled
constexpr double MostChange = 0.01;     // of it, from one part of the tail to the next: no peak
constexpr double Standing = 0.0002;     // of the height, from one part of the tail to the next
constexpr double Ended = 0.1;           // of a change before it: the most in what is flat then
constexpr double NearCommand = 0.02;    // of the command's step
constexpr double FarFromCommand = 0.2;  // of it: what does not follow
constexpr double Fading = 0.9;          // of a swing's size, from one quarter to the next

using Trace = std::span<const double>;

double MeanOf(Trace values) {
  return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

double RangeOf(Trace values) {
  const Extremes extremes = ExtremesOf(values);
  return extremes.Greatest - extremes.Least;
}

/// Means of the last three eighths of a trace, oldest first.
struct Eighths {
  explicit Eighths(Trace values)
      : Last(values.last(values.size() / 8)), LastTwo(values.last(values.size() / 8 * 2)) {
    const std::size_t part = Last.size();
    for (std::size_t i = 0; i < 3; ++i) {
      Mean.at(i) = MeanOf(values.subspan(values.size() - (3 - i) * part, part));
    }
  }

  double Earlier() const { return Mean[1] - Mean[0]; }
  double Later() const { return Mean[2] - Mean[1]; }
  /// How far the drift leads from the last mean if it fades by the same ratio each time; one that
  /// turns round may do so again, one that does not fade leads nowhere. Drift below `least` is
  /// none.
  double DriftLeft(double least) const {
    if (std::max(std::abs(Earlier()), std::abs(Later())) <= least) return 0.0;
    // It has come to an end, and not just to a peak.
    if (std::abs(Later()) <= least && RangeOf(LastTwo) <= Ended * std::abs(Earlier())) return 0.0;
    const double ratio = Later() / Earlier();
    if (ratio <= 0.0) return std::max(std::abs(Earlier()), std::abs(Later()));
    return ratio < 1.0 ? Later() * ratio / (1.0 - ratio) : INFINITY;
  }

  Trace Last;
  Trace LastTwo;
  std::array<double, 3> Mean{};
};

/// The response has passed the command's end value and comes back to it, and does not stop short of
/// it; or it swings around it, less and less. `share` is of the command's step.
bool Follows(const std::vector<double>& share) {
  if (std::abs(share.front()) > FarFromCommand) return false;
  const auto behind = share.end() - static_cast<std::ptrdiff_t>(3 * (share.size() / 8));
  const bool passed = *std::max_element(share.begin(), behind) > 1.0;
  const Eighths tail(share);
  const double off = tail.Mean[2] - 1.0;
  if (std::abs(off) > FarFromCommand) return false;
  if (!passed && !(off > 0.0)) return false;
  if (tail.Earlier() * off < 0.0 && tail.Later() * off < 0.0) {
    const double left = tail.DriftLeft(0.0);
    return (off + left) * off <= NearCommand * std::abs(off) || !std::isfinite(left);
  }
  const std::size_t quarter = share.size() / 4;
  const Trace half = Trace(share).last(2 * quarter);
  return passed && std::abs(MeanOf(half) - 1.0) <= NearCommand &&
         RangeOf(half.last(quarter)) < Fading * RangeOf(half.first(quarter));
}

}  // namespace

StepTail FindTail(const StepTraces& traces, const StepStretch& stretch, double band) {
  const auto response = traces.Response.subspan(stretch.Before, stretch.End - stretch.Before);
  const auto finite = [](double value) { return std::isfinite(value); };
  if (!std::all_of(response.begin(), response.end(), finite)) return {StepGap::NotFinite, {}};
  const double start = response.front();
  const double range = RangeOf(response);
  if (!(range > LeastMove * std::abs(start))) return {StepGap::Still, {}};

  const Eighths tail(response);
  const double height = tail.Mean[2] - start;
  const double size = std::max(std::abs(height), LeastHeight * range);
  const double left = tail.DriftLeft(Standing * size);
  const auto inBand = [&](double value) { return std::abs(value - tail.Mean[2]) <= band * size; };
  const double change = std::max(std::abs(tail.Earlier()), std::abs(tail.Later()));
  const bool settled = std::abs(left) <= MostDrift * size && change <= MostChange * size &&
                       std::all_of(tail.Last.begin(), tail.Last.end(), inBand);
  if (settled && !(std::abs(height) > LeastHeight * range)) return {StepGap::Returns, {}};

  const StepEnds command{traces.Command[stretch.Before], traces.Command[stretch.End - 1]};
  const auto share = [&](double value) {
    return (value - command.From) / (command.To - command.From);
  };
  if (!settled) {
    std::vector<double> shares(response.size());
    std::ranges::transform(response, shares.begin(), share);
    if (traces.SameUnit && Follows(shares)) return {StepGap::None, {command}};
    return {StepGap::NotSettled, {}};
  }
  StepTail found{StepGap::None, {{start, tail.Mean[2]}}};
  if (left == 0.0) return found;
  found.Ends.push_back({start, tail.Mean[2] + left});
  const bool near = std::abs(share(start)) <= NearCommand &&
                    std::abs(share(response.back()) - 1.0) <= NearCommand;
  if (traces.SameUnit && near) found.Ends.push_back(command);
  return found;
}

}  // namespace torvane
