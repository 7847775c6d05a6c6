#include "instruments/fft/signal_record.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace torvane {

namespace {

// A limit holds more samples than these, and so many times those of a level beside it.
constexpr int FewSamples = 3;
constexpr int Rarer = 3;
// It holds the signal for so many times as long as the signal stays elsewhere; peaks that quantised
// motion repeats come one by one.
constexpr double Longer = 1.1;

/// The greatest values among samples, and how often each was met.
class Extremes {
 public:
  void See(float value) {
    ++samples_;
    const bool begins = samples_ == 1 || value != last_;
    if (begins) ++runs_;
    last_ = value;
    if (count_ == Levels && value < levels_.back().Value) return;
    const auto end = levels_.begin() + count_;
    const auto at = std::find_if(levels_.begin(), end,
                                 [&](const Level& level) { return level.Value <= value; });
    if (at != end && at->Value == value) {
      ++at->Times;
      if (begins) ++at->Runs;
      return;
    }
    if (count_ < Levels) ++count_;
    std::move_backward(at, levels_.begin() + count_ - 1, levels_.begin() + count_);
    *at = {value, 1, 1};
  }

  /// Samples at the greatest value, if they are at a limit.
  int AtLimit() const {
    if (count_ < Levels) return 0;
    int beside = 0;
    for (std::size_t i = 1; i < Levels; ++i) beside = std::max(beside, levels_[i].Times);
    const auto& [value, times, runs] = levels_.front();
    const double stays = static_cast<double>(samples_) / runs_;
    const bool held = times >= Longer * stays * runs;
    return held && times > FewSamples && times > Rarer * beside ? times : 0;
  }

 private:
  struct Level {
    float Value = 0.0F;
    int Times = 0;
    int Runs = 0;  ///< of samples that follow each other
  };
  static constexpr std::size_t Levels = 6;
  std::array<Level, Levels> levels_;
  std::size_t count_ = 0;
  int samples_ = 0;
  int runs_ = 0;
  float last_ = 0.0F;
};

double Reach(std::span<const float> samples, float from) {
  double reach = 0.0;
  for (const float x : samples) reach = std::max(reach, std::abs(double{x} - double{from}));
  return reach;
}

}  // namespace

SignalRecord ReadSignal(std::span<const float> samples, int excited) {
  SignalRecord record;
  record.Step = double{samples.back()} - double{samples.front()};
  const std::size_t last = samples.size() - samples.size() / 4;
  const double before = Reach(samples.first(last), samples.front());
  const double after = Reach(samples.subspan(last), samples.front());
  if (before > 0.0) record.Growth = after / before;
  const auto count = std::min(static_cast<std::size_t>(std::max(excited, 0)), samples.size());
  Extremes greatest;
  Extremes least;
  for (const float x : samples.first(count)) {
    greatest.See(x);
    least.See(-x);
  }
  const int atLimit = greatest.AtLimit() + least.AtLimit();
  if (count > 0) record.AtLimit = static_cast<double>(atLimit) / static_cast<double>(count);
  return record;
}

}  // namespace torvane
