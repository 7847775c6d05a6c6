#include "instruments/analyser/margins.h"

#include <algorithm>
#include <cmath>

#include "instruments/analyser/analyser.h"

namespace torvane {

namespace {

constexpr double HalfTurn = 180.0;
constexpr double Turn = 360.0;
constexpr double Unity = 6.0;      // dB that a closed response may begin beside unity
constexpr double LeastPeak = 0.1;  // dB; less is scatter
constexpr double Closeness = 1.01;
// How far a curve must have moved away from a level before it can cross it again.
constexpr double GainScatter = 0.5;   // dB
constexpr double PhaseScatter = 5.0;  // degrees

/// Two neighbours of a curve, and what lies between them.
struct Span {
  const ResponsePoint& Low;
  const ResponsePoint& High;

  double HzAt(double share) const { return Low.Hz * std::pow(High.Hz / Low.Hz, share); }
  double GainAt(double share) const { return Low.Gain + share * (High.Gain - Low.Gain); }
  double PhaseAt(double share) const { return Low.Phase + share * (High.Phase - Low.Phase); }
};

double ShareOf(double level, double low, double high) {
  return (level - low) / (high - low);
}

bool FallsThrough(double level, double low, double high) {
  return low > level && high <= level;
}

double PhaseMargin(double phase) {
  const double margin = std::remainder(HalfTurn + phase, Turn);
  return margin == -HalfTurn ? HalfTurn : margin;
}

// Which full turn below the half turn a phase lies in: it changes where the loop's gain becomes
// real and negative.
double TurnOf(double phase) {
  return std::floor((phase + HalfTurn) / Turn);
}

/// The crossings of a level that a measured curve makes while it scatters about it: they are one,
/// in their middle.
class Scatter {
 public:
  explicit Scatter(std::vector<Margins::Reading>& crossings) : crossings_(crossings) {}

  void Cross(double hz, double value) {
    logHz_ += std::log(hz);
    value_ += value;
    ++count_;
  }
  /// The curve is clear of the level.
  void Leave() {
    if (count_ > 0) crossings_.push_back({std::exp(logHz_ / count_), value_ / count_});
    logHz_ = value_ = 0.0;
    count_ = 0;
  }

 private:
  std::vector<Margins::Reading>& crossings_;
  double logHz_ = 0.0;
  double value_ = 0.0;
  int count_ = 0;
};

void ReadBandwidth(const Span& span, Margins& margins) {
  const auto& [low, high] = span;
  if (!margins.GainBandwidth && FallsThrough(Margins::BandwidthGain, low.Gain, high.Gain)) {
    margins.GainBandwidth = span.HzAt(ShareOf(Margins::BandwidthGain, low.Gain, high.Gain));
  }
  if (!margins.PhaseBandwidth && FallsThrough(Margins::BandwidthPhase, low.Phase, high.Phase)) {
    margins.PhaseBandwidth = span.HzAt(ShareOf(Margins::BandwidthPhase, low.Phase, high.Phase));
  }
}

void ReadCrossings(const Span& span, Scatter& ofGain, Scatter& ofPhase) {
  const auto& [low, high] = span;
  if ((low.Gain > 0.0) != (high.Gain > 0.0)) {
    const double share = ShareOf(0.0, low.Gain, high.Gain);
    ofGain.Cross(span.HzAt(share), span.PhaseAt(share));
  }
  if (std::abs(high.Gain) > GainScatter) ofGain.Leave();
  if (TurnOf(low.Phase) != TurnOf(high.Phase)) {
    const double upper = std::max(TurnOf(low.Phase), TurnOf(high.Phase));
    const double share = ShareOf(upper * Turn - HalfTurn, low.Phase, high.Phase);
    ofPhase.Cross(span.HzAt(share), -span.GainAt(share));
  }
  if (std::abs(std::remainder(high.Phase + HalfTurn, Turn)) > PhaseScatter) ofPhase.Leave();
}

// The top of the parabola through three points of gain against the logarithm of frequency, of which
// the middle one is the highest.
Margins::Reading Top(const ResponsePoint& left, const ResponsePoint& middle,
                     const ResponsePoint& right) {
  const double a = std::log(left.Hz / middle.Hz);
  const double b = std::log(right.Hz / middle.Hz);
  const double left1 = (left.Gain - middle.Gain) / a;
  const double right1 = (right.Gain - middle.Gain) / b;
  const double curvature = (right1 - left1) / (b - a);
  if (!(curvature < 0.0)) return {middle.Hz, middle.Gain};
  const double slope = left1 - curvature * a;
  const double at = -slope / (2.0 * curvature);
  return {middle.Hz * std::exp(at), middle.Gain + (slope + curvature * at) * at};
}

// The lowest points scatter most, so that the median of some says where the curve begins.
bool BeginsAtUnity(std::span<const ResponsePoint> curve) {
  constexpr std::size_t Points = 9;
  std::vector<double> gains;
  for (const ResponsePoint& point : curve) {
    if (point.Trusted()) gains.push_back(point.Gain);
    if (gains.size() == Points) break;
  }
  if (gains.empty()) return false;
  const auto middle = gains.begin() + static_cast<std::ptrdiff_t>(gains.size() / 2);
  std::nth_element(gains.begin(), middle, gains.end());
  return std::abs(*middle) <= Unity;
}

std::optional<Margins::Reading> Peak(std::span<const ResponsePoint> curve) {
  std::optional<Margins::Reading> peak;
  const ResponsePoint* before = nullptr;
  const ResponsePoint* last = nullptr;
  const ResponsePoint* highest = nullptr;
  for (const ResponsePoint& point : curve) {
    if (!point.Trusted()) continue;
    if (highest == last && before && last->Gain > LeastPeak && last->Gain >= point.Gain) {
      peak = Top(*before, *last, point);
    }
    if (!highest || point.Gain > highest->Gain) {
      highest = &point;
      peak.reset();
    }
    before = last;
    last = &point;
  }
  return peak;
}

/// The mean of points that follow each other closely.
class Mean {
 public:
  bool Holds(const ResponsePoint& point) const {
    return count_ == 0 || point.Hz <= first_ * Closeness;
  }
  void Add(const ResponsePoint& point) {
    if (count_ == 0) first_ = point.Hz;
    logHz_ += std::log(point.Hz / first_);
    gain_ += point.Gain;
    phase_ += point.Phase;
    ++count_;
  }
  ResponsePoint Take() {
    const ResponsePoint mean{first_ * std::exp(logHz_ / count_), gain_ / count_, phase_ / count_};
    *this = {};
    return mean;
  }
  bool IsEmpty() const { return count_ == 0; }

 private:
  double first_ = 0.0;
  double logHz_ = 0.0;
  double gain_ = 0.0;
  double phase_ = 0.0;
  int count_ = 0;
};

/// Calls read(span) for each two neighbours among the means of the points that can be trusted.
template <class Read>
void ForEachSpan(std::span<const ResponsePoint> curve, Read read) {
  Mean mean;
  std::optional<ResponsePoint> before;
  const auto close = [&] {
    const ResponsePoint point = mean.Take();
    if (before) read(Span{*before, point});
    before = point;
  };
  for (const ResponsePoint& point : curve) {
    if (!point.Trusted()) continue;
    if (!mean.Holds(point)) close();
    mean.Add(point);
  }
  if (!mean.IsEmpty()) close();
}

const Margins::Reading* Smallest(const std::vector<Margins::Reading>& readings) {
  const auto found = std::min_element(
      readings.begin(), readings.end(),
      [](const auto& a, const auto& b) { return std::abs(a.Value) < std::abs(b.Value); });
  return found == readings.end() ? nullptr : &*found;
}

}  // namespace

const Margins::Reading* Margins::SmallestPhaseMargin() const {
  return Smallest(PhaseMargins);
}

const Margins::Reading* Margins::SmallestGainMargin() const {
  return Smallest(GainMargins);
}

void FindMargins(std::span<const ResponsePoint> unwrapped, Margins& margins) {
  margins.GainBandwidth.reset();
  margins.PhaseBandwidth.reset();
  margins.Peaking.reset();
  margins.PhaseMargins.clear();
  margins.GainMargins.clear();
  margins.Closed = BeginsAtUnity(unwrapped);
  if (margins.Closed) {
    margins.Peaking = Peak(unwrapped);
    ForEachSpan(unwrapped, [&](const Span& span) { ReadBandwidth(span, margins); });
    return;
  }
  Scatter ofGain(margins.PhaseMargins);
  Scatter ofPhase(margins.GainMargins);
  ForEachSpan(unwrapped, [&](const Span& span) { ReadCrossings(span, ofGain, ofPhase); });
  ofGain.Leave();
  ofPhase.Leave();
  for (Margins::Reading& reading : margins.PhaseMargins) reading.Value = PhaseMargin(reading.Value);
}

const Margins& MarginReader::Read(FrequencyAnalyser& analyser, int slot, bool opened) {
  ReadCurve(analyser, slot, curve_);
  if (analyser.LoadedFrom(slot).empty()) {
    const double highest = 2.0 * analyser.AccurateUpTo();
    std::erase_if(curve_, [&](const ResponsePoint& point) { return point.Hz > highest; });
  }
  if (opened) OpenFromClosed(curve_);
  UnwrapPhase(curve_);
  FindMargins(curve_, margins_);
  return margins_;
}

}  // namespace torvane
