#include "instruments/analyser/margins.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

constexpr double HalfTurn = 180.0;
constexpr double LeastPeak = 0.1;  // dB; less is scatter

Level GainLevel(double at) {
  return {&LogPoint::Gain, &LogPoint::Phase, at, 0.0, 0.02, 0.5, 1.0};
}

Level PhaseLevel(double at, double every) {
  return {&LogPoint::Phase, &LogPoint::Gain, at, every, 0.2, 5.0, 6.0};
}

double PhaseMargin(double phase) {
  const double margin = std::remainder(HalfTurn + phase, Turn);
  return margin == -HalfTurn ? HalfTurn : margin;
}

std::string Text(double value) {
  return FormatGeneral(value, 4, 1);
}

std::string Between(std::span<const LogPoint> points) {
  return " from " + Text(std::exp(points.front().LogHz)) + " to " +
         Text(std::exp(points.back().LogHz)) + " Hz";
}

// Why crossings of a level are not there.
std::string NoCrossing(const std::string& what, const std::string& crosses,
                       const LevelCrossings& crossings, std::span<const LogPoint> points) {
  if (crossings.Scattered()) return "no " + what + ": the response scatters too much there";
  return "no " + what + ": the " + crosses + Between(points);
}

// The reciprocal of the squared gain is a parabola in the square of the frequency for every
// resonance of second order, so that its top is found whatever points it is given by.
Margins::Reading Top(const LogPoint& left, const LogPoint& middle, const LogPoint& right) {
  const auto x = [&](const LogPoint& point) {
    return std::exp(2.0 * (point.LogHz - middle.LogHz)) - 1.0;
  };
  const auto y = [&](const LogPoint& point) {
    return std::pow(10.0, (middle.Gain - point.Gain) / 10.0) - 1.0;
  };
  const double left1 = y(left) / x(left);
  const double right1 = y(right) / x(right);
  const double curvature = (right1 - left1) / (x(right) - x(left));
  const double slope = left1 - curvature * x(left);
  const double at = -slope / (2.0 * curvature);
  const double least = 1.0 + (slope + curvature * at) * at;
  if (!(curvature > 0.0 && at > -1.0 && least > 0.0)) {
    return {std::exp(middle.LogHz), middle.Gain};
  }
  return {std::exp(middle.LogHz) * std::sqrt(1.0 + at), middle.Gain - 10.0 * std::log10(least)};
}

std::size_t Highest(std::span<const LogPoint> points) {
  const auto highest =
      std::max_element(points.begin(), points.end(),
                       [](const LogPoint& a, const LogPoint& b) { return a.Gain < b.Gain; });
  return static_cast<std::size_t>(highest - points.begin());
}

void ReadPeak(std::span<const LogPoint> points, Margins& margins) {
  const std::size_t highest = Highest(points);
  margins.NeverPeaks = points[highest].Gain <= LeastPeak;
  if (margins.NeverPeaks) {
    margins.Missing.push_back("no peaking: the gain does not rise above " + Text(LeastPeak) +
                              " dB" + Between(points));
  } else if (highest == 0 || highest + 1 == points.size()) {
    margins.Missing.push_back("no peaking: the gain is greatest at an end of the response");
  } else {
    margins.Peaking = Top(points[highest - 1], points[highest], points[highest + 1]);
  }
}

// The gain's is the bandwidth as one speaks of it: the phase's is not missed.
void ReadBandwidths(std::span<const LogPoint> points, Margins& margins) {
  const auto first = [](const LevelCrossings& crossings) -> std::optional<double> {
    for (const LevelCrossing& one : crossings.All()) {
      if (one.Falls) return one.Hz;
    }
    return std::nullopt;
  };
  const Level gain = GainLevel(Margins::BandwidthGain);
  const LevelCrossings crossings(points, gain);
  margins.GainBandwidth = first(crossings);
  if (!margins.GainBandwidth) {
    margins.Missing.push_back(
        NoCrossing("bandwidth", "gain does not fall through -3 dB", crossings, points));
  }
  margins.Scatter = crossings.Scatter();
  margins.PhaseBandwidth = first({points, PhaseLevel(Margins::BandwidthPhase, 0.0)});
}

// A loop that ends far below unity gain has its sensitivity go to 1 there.
void ReadSensitivity(std::span<const LogPoint> points, Margins& margins) {
  constexpr double FarBelow = -40.0;    // dB
  constexpr double MostScatter = 0.25;  // dB; the greatest of points that scatter is too great
  std::vector<LogPoint> sensitivity;
  for (const LogPoint& point : points) {
    const auto open = std::polar(std::pow(10.0, point.Gain / 20.0), point.Phase / DegreesPerRadian);
    sensitivity.push_back({point.LogHz, -20.0 * std::log10(std::abs(1.0 + open)), 0.0});
  }
  const std::size_t highest = Highest(sensitivity);
  const bool last = highest + 1 == sensitivity.size();
  if (highest == 0 || (last && points.back().Gain > FarBelow)) {
    margins.Missing.emplace_back("no sensitivity: it has no greatest value within the response");
    return;
  }
  if (ScatterAt(sensitivity, highest, &LogPoint::Gain) > MostScatter) {
    margins.Missing.emplace_back("no sensitivity: the response scatters too much at its peak");
    return;
  }
  const LogPoint& at = sensitivity[highest];
  const Margins::Reading top = last ? Margins::Reading{std::exp(at.LogHz), at.Gain}
                                    : Top(sensitivity[highest - 1], at, sensitivity[highest + 1]);
  margins.Sensitivity = {top.Hz, std::pow(10.0, top.Value / 20.0)};
}

// Of too many those that say most, in order of frequency.
void KeepSmallest(std::vector<Margins::Reading>& readings) {
  if (readings.size() <= Margins::MostCrossings) return;
  const auto by = [&](auto of) {
    std::sort(readings.begin(), readings.end(),
              [&](const auto& a, const auto& b) { return of(a) < of(b); });
  };
  by([](const Margins::Reading& one) { return std::abs(one.Value); });
  readings.resize(Margins::MostCrossings);
  by([](const Margins::Reading& one) { return one.Hz; });
}

void ReadCrossings(std::span<const LogPoint> points, Margins& margins) {
  const Level gain = GainLevel(0.0);
  const LevelCrossings ofGain(points, gain);
  for (const LevelCrossing& one : ofGain.All()) {
    margins.PhaseMargins.push_back({one.Hz, PhaseMargin(one.Value)});
  }
  const Level phase = PhaseLevel(-HalfTurn, Turn);
  const LevelCrossings ofPhase(points, phase);
  for (const LevelCrossing& one : ofPhase.All()) {
    margins.GainMargins.push_back({one.Hz, -one.Value});
  }
  margins.NeverTurns = ofPhase.All().empty() && !ofPhase.Scattered();
  ReadSensitivity(points, margins);
  margins.Scatter = std::max(ofGain.Scatter(), ofPhase.Scatter());
  KeepSmallest(margins.PhaseMargins);
  KeepSmallest(margins.GainMargins);
  if (margins.PhaseMargins.empty()) {
    margins.Missing.push_back(
        NoCrossing("phase margin", "gain does not cross 0 dB", ofGain, points));
  }
  if (margins.GainMargins.empty()) {
    margins.Missing.push_back(
        NoCrossing("gain margin", "phase does not cross -180 degrees", ofPhase, points));
  }
}

// How many points there are in the octaves that a response begins with.
std::size_t FirstOctaves(std::span<const LogPoint> points, double octaves) {
  const double end = points.front().LogHz + octaves * std::log(2.0);
  return static_cast<std::size_t>(std::count_if(
      points.begin(), points.end(), [&](const LogPoint& point) { return point.LogHz < end; }));
}

// Of some points the middle value: single ones scatter.
template <class Of>
double Middle(std::span<const LogPoint> points, Of of) {
  std::vector<double> values;
  for (const LogPoint& point : points) values.push_back(of(point));
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double FromUnity(std::span<const LogPoint> points) {
  return Middle(points, [](const LogPoint& point) {
    return std::abs(std::polar(std::pow(10.0, point.Gain / 20.0), point.Phase / DegreesPerRadian) -
                    1.0);
  });
}

// A closed loop with a high gain at low frequencies follows its command there: 1 / (1 + L) goes to
// 0 with the frequency. An open loop that begins near unity stays as far from it as it is.
bool IsClosed(std::span<const LogPoint> points) {
  constexpr double Close = 0.1;
  constexpr double Near = 0.4;
  constexpr double Growth = 1.6;
  const std::size_t first = FirstOctaves(points, 1.0);
  const std::size_t second =
      std::min(std::max(FirstOctaves(points, 2.0), first + 1), points.size());
  const double begin = FromUnity(points.first(first));
  if (begin <= Close) return true;
  if (begin > Near) return false;
  if (second <= first) return true;
  return FromUnity(points.subspan(first, second - first)) > Growth * begin;
}

const Margins::Reading* Smallest(const std::vector<Margins::Reading>& readings) {
  const auto found = std::min_element(
      readings.begin(), readings.end(),
      [](const auto& a, const auto& b) { return std::abs(a.Value) < std::abs(b.Value); });
  return found == readings.end() ? nullptr : &*found;
}

bool IsModelLoop(const FrequencyAnalyser& analyser, const ResponseSubject& of) {
  const auto loop = analyser.Loop();
  return loop && !loop->FromClosed && !of.Input.empty() && of.Input == loop->Input &&
         of.Output == loop->Output;
}

}  // namespace

const Margins::Reading* Margins::SmallestPhaseMargin() const {
  return Smallest(PhaseMargins);
}

const Margins::Reading* Margins::SmallestGainMargin() const {
  return Smallest(GainMargins);
}

double Margins::HighestHz() const {
  double highest = std::max(GainBandwidth.value_or(0.0), PhaseBandwidth.value_or(0.0));
  for (const auto* readings : {&PhaseMargins, &GainMargins}) {
    for (const Reading& one : *readings) highest = std::max(highest, one.Hz);
  }
  for (const auto& one : {Peaking, Sensitivity}) highest = std::max(highest, one ? one->Hz : 0.0);
  return highest;
}

Margins FindMargins(std::span<const ResponsePoint> unwrapped, ReadAs as) {
  Margins margins;
  std::vector<LogPoint> points;
  TakeLogPoints(unwrapped, points);
  if (points.size() < 2) {
    margins.Missing.emplace_back("the response has no two points that can be trusted");
    return margins;
  }
  margins.Begin = Middle(std::span(points).first(FirstOctaves(points, 1.0)),
                         [](const LogPoint& point) { return point.Gain; });
  margins.Closed = as == ReadAs::Closed || (as == ReadAs::Auto && IsClosed(points));
  if (margins.Closed) {
    ReadBandwidths(points, margins);
    ReadPeak(points, margins);
  } else {
    ReadCrossings(points, margins);
  }
  return margins;
}

const Margins& MarginReader::Read(const FrequencyAnalyser& analyser, int slot, ReadAs as,
                                  std::optional<double> highest) {
  ReadCurve(analyser, slot, curve_);
  const ResponseSubject& of = analyser.ResponseAt(slot).Subject();
  const double most = highest.value_or(2.0 * of.AccurateUpTo);
  std::erase_if(curve_, [&](const ResponsePoint& point) { return point.Hz > most; });
  for (ResponsePoint& point : curve_) point.Phase -= of.PhaseAdd;
  if (as == ReadAs::Unity) OpenFromClosed(curve_);
  if (as == ReadAs::Auto && IsModelLoop(analyser, of)) as = ReadAs::Open;
  UnwrapPhase(curve_);
  margins_ = FindMargins(curve_, as);
  return margins_;
}

const Margins& MarginReader::Read(const FrequencyAnalyser& analyser, int slot) {
  const ResponseView& view = analyser.View();
  return Read(analyser, slot, view.OpenLoop ? ReadAs::Unity : view.MarginsAs);
}

}  // namespace torvane
