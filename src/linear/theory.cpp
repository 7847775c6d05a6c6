#include "linear/theory.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <utility>

#include "core/bench.h"
#include "core/constant.h"
#include "core/model.h"
#include "instruments/analyser/analyser.h"
#include "linear/linear_fault.h"
#include "linear/linearize.h"

namespace torvane {

namespace {

using Eigen::Index;

constexpr double DegreesPerRadian = 180.0 / std::numbers::pi;
// Of a response read for its margins.
constexpr int PerDecade = 200;
constexpr double Lowest = 1e-2;  // Hz
constexpr double LowestOfAll = 1e-7;
constexpr double BelowRoots = 0.01;
// Of two integrators so slow that rounding turns them about half a turn, gain has no end; dB.
constexpr double HighestGain = 100.0;
constexpr double HighestHz = 1e5;  // of a continuous loop

Index Place(const LinearModel& model, const std::string& signal) {
  const auto place = model.Find(signal);
  if (!place) throw LinearFault("the model has no signal " + signal);
  const LinearSystem alone = model.System().Reduced({*place});
  if (alone.Order() == 0 && alone.D[0] == 0.0) {
    throw LinearFault("no path leads from the command that the analysers excite to " + signal);
  }
  return *place;
}

ResponsePoint PointOf(double hz, std::complex<double> ratio) {
  ResponsePoint point;
  point.Hz = hz;
  point.Gain = 20.0 * std::log10(std::abs(ratio));
  point.Phase = std::arg(ratio) * DegreesPerRadian;
  if (point.Phase > 90.0) point.Phase -= 360.0;
  return point;
}

// As an analyser measures it that samples when the loop does.
ResponseCurve WholeResponse(const LinearModel& model, const TheoryPair& pair) {
  const double highest = model.Sampled() ? 0.5 / model.System().Ts : HighestHz;
  return pair.At(pair.Frequencies(pair.LowestHz(), highest, PerDecade), ReadSignals::AtItsSamples);
}

/// Reads a response of theory to more digits than are told: what is read off its even points is
/// read anew among points close about each reading.
class CloseReading {
 public:
  CloseReading(const LinearModel& model, const TheoryPair& pair, ReadAs as, bool fromClosed)
      : as_(as), fromClosed_(fromClosed), points_(WholeResponse(model, pair)) {
    Read();
    const std::vector<double> near = About(Margins);
    const ResponseCurve closer = pair.At(near, ReadSignals::AtItsSamples);
    points_.insert(points_.end(), closer.begin(), closer.end());
    std::sort(points_.begin(), points_.end(),
              [](const ResponsePoint& a, const ResponsePoint& b) { return a.Hz < b.Hz; });
    Read();
  }

  ResponseCurve Curve;  ///< unwrapped
  torvane::Margins Margins;

 private:
  void Read() {
    Curve = points_;
    if (fromClosed_) OpenFromClosed(Curve);
    std::erase_if(Curve, [](const ResponsePoint& p) { return p.Gain > HighestGain; });
    UnwrapPhase(Curve);
    Margins = FindMargins(Curve, as_);
  }

  static std::vector<double> About(const torvane::Margins& margins) {
    constexpr int Beside = 4;
    constexpr double Apart = 5e-4;
    std::vector<double> near;
    const auto add = [&](double hz) {
      for (int i = -Beside; i <= Beside; ++i) near.push_back(hz * (1.0 + i * Apart));
    };
    for (const auto& hz : {margins.GainBandwidth, margins.PhaseBandwidth}) {
      if (hz) add(*hz);
    }
    for (const auto& peak : {margins.Peaking, margins.Sensitivity}) {
      if (peak) add(peak->Hz);
    }
    for (const auto* all : {&margins.PhaseMargins, &margins.GainMargins}) {
      for (const auto& one : *all) add(one.Hz);
    }
    return near;
  }

  ReadAs as_;
  bool fromClosed_;
  ResponseCurve points_;  ///< as they were computed
};

}  // namespace

ReadSignals SampledBy(const LinearModel& model, double sampleTime) {
  constexpr double Rounding = 1e-9;
  const double ts = model.System().Ts;
  const bool together = model.Sampled() && std::abs(sampleTime - ts) <= Rounding * ts;
  return together ? ReadSignals::AtItsSamples : ReadSignals::EveryStep;
}

TheoryPair::TheoryPair(const LinearModel& model, const std::string& input,
                       const std::string& output)
    : model_(model),
      input_(Place(model, input)),
      output_(Place(model, output)),
      both_(model.System().Reduced({input_, output_})) {}

ResponseCurve TheoryPair::At(std::span<const double> hz, ReadSignals read) const {
  if (!model_.HasResponse()) throw LinearFault("the loop is unstable: it has no response");
  ResponseCurve curve;
  for (const double f : hz) {
    if (read == ReadSignals::EveryStep) {
      const Eigen::VectorXcd pair = model_.ToSine(f, {input_, output_});
      curve.push_back(PointOf(f, pair[1] / pair[0]));
    } else {
      const Eigen::VectorXcd pair = both_.ResponseAt(f);
      curve.push_back(PointOf(f, pair[1] / pair[0]));
    }
  }
  return curve;
}

std::vector<Root> TheoryPair::Roots() const {
  std::vector<Root> roots = Poles(both_);
  for (const Index output : {0, 1}) {
    const auto zeros = Zeros(both_, output);
    roots.insert(roots.end(), zeros.begin(), zeros.end());
  }
  return roots;
}

double TheoryPair::LowestHz() const {
  double lowest = Lowest;
  for (const Root& root : Roots()) {
    if (root.Hz > LowestOfAll) lowest = std::min(lowest, BelowRoots * root.Hz);
  }
  return lowest;
}

std::vector<double> TheoryPair::Frequencies(double from, double to, int perDecade) const {
  std::vector<double> hz;
  const int count = static_cast<int>(perDecade * std::log10(to / from));
  hz.reserve(static_cast<std::size_t>(count) + 2);
  for (int i = 0; i <= count; ++i) hz.push_back(from * std::pow(10.0, 1.0 * i / perDecade));
  hz.push_back(to);
  const std::vector<Root> roots = Roots();
  constexpr double Resonant = 0.1;  // damping above which the even spacing follows well
  for (const Root& root : roots) {
    const double damping = std::abs(root.Damping);
    if (damping >= Resonant || !(root.Hz > from && root.Hz < to)) continue;
    for (int i = -16; i <= 16; ++i) {
      const double f = root.Hz * (1.0 + 0.25 * i * damping);
      if (f > from && f < to) hz.push_back(f);
    }
  }
  std::sort(hz.begin(), hz.end());
  hz.erase(std::unique(hz.begin(), hz.end()), hz.end());
  return hz;
}

LinearSystem TheoryPair::System() const {
  const auto seen = both_.Seen(0);
  if (!seen) {
    throw LinearFault(model_.Signals()[static_cast<std::size_t>(output_)] +
                      " follows the command sooner than " +
                      model_.Signals()[static_cast<std::size_t>(input_)] +
                      " does: no system leads from one to the other");
  }
  return seen->Reduced({1});
}

Margins TheoryOfClosed(const LinearModel& model, const std::string& input,
                       const std::string& output) {
  const TheoryPair pair(model, input, output);
  return CloseReading(model, pair, ReadAs::Closed, false).Margins;
}

ModelLoop LoopOf(const ZelModel& model) {
  const auto loop = LoopOnBench(model.Bench());
  if (!loop || loop->Input.empty()) throw LinearFault("the model names no loop of its own");
  return *loop;
}

LoopTheory TheoryOfLoop(ZelModel& model) {
  const ModelLoop loop = LoopOf(model);
  for (const auto& [constant, value] : loop.Meanwhile) constant->Set(value);
  return TheoryOfLoop(Linearize(model), loop);
}

LoopTheory TheoryOfLoop(const LinearModel& linear, const ModelLoop& loop) {
  const TheoryPair pair(linear, loop.Input, loop.Output);
  LoopTheory theory;
  theory.Notes = linear.Notes;
  for (const std::string& signal : {loop.Input, loop.Output}) {
    if (linear.Moves(*linear.Find(signal))) {
      theory.Notes.push_back(signal +
                             " goes on between the loop's samples: it is read a step of "
                             "the solver after them, which counts as so much less delay");
    }
  }
  CloseReading reading(linear, pair, ReadAs::Open, loop.FromClosed);
  theory.Open = std::move(reading.Curve);
  theory.Read = std::move(reading.Margins);
  return theory;
}

}  // namespace torvane
