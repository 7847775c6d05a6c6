#include "linear/theory.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

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
constexpr double LowestHz = 1e-2;
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
  return pair.At(pair.Frequencies(LowestHz, highest, PerDecade), ReadSignals::AtItsSamples);
}

// A peak is read among points so close that the parabola through three of them is exact to more
// digits than are told.
ResponseCurve About(const TheoryPair& pair, double hz) {
  constexpr int Points = 24;
  constexpr double Apart = 5e-4;
  std::vector<double> near;
  for (int i = -Points; i <= Points; ++i) near.push_back(hz * (1.0 + i * Apart));
  return pair.At(near, ReadSignals::AtItsSamples);
}

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
  if (!model_.Stable()) throw LinearFault("the loop is unstable: it has no response");
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

std::vector<double> TheoryPair::Frequencies(double from, double to, int perDecade) const {
  std::vector<double> hz;
  const int count = static_cast<int>(perDecade * std::log10(to / from));
  hz.reserve(static_cast<std::size_t>(count) + 2);
  for (int i = 0; i <= count; ++i) hz.push_back(from * std::pow(10.0, 1.0 * i / perDecade));
  hz.push_back(to);
  std::vector<Root> roots = Poles(both_);
  for (const Index output : {0, 1}) {
    const auto zeros = Zeros(both_, output);
    roots.insert(roots.end(), zeros.begin(), zeros.end());
  }
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
  ResponseCurve curve = WholeResponse(model, pair);
  UnwrapPhase(curve);
  Margins margins = FindMargins(curve, ReadAs::Closed);
  if (margins.Peaking) {
    const Margins near = FindMargins(About(pair, margins.Peaking->Hz), ReadAs::Closed);
    if (near.Peaking) margins.Peaking = near.Peaking;
  }
  return margins;
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
  const auto opened = [&loop](ResponseCurve curve) {
    if (loop.FromClosed) OpenFromClosed(curve);
    return curve;
  };
  theory.Open = opened(WholeResponse(linear, pair));
  std::erase_if(theory.Open, [](const ResponsePoint& p) { return p.Gain > HighestGain; });
  UnwrapPhase(theory.Open);
  theory.Read = FindMargins(theory.Open, ReadAs::Open);
  if (auto& peak = theory.Read.Sensitivity) {
    const Margins near = FindMargins(opened(About(pair, peak->Hz)), ReadAs::Open);
    if (near.Sensitivity) peak = near.Sensitivity;
  }
  return theory;
}

}  // namespace torvane
