#include "linear/linearize.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "core/bench.h"
#include "core/constant.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "kit/sources_at_rest.h"
#include "linear/linear_fault.h"
#include "linear/loop_probe.h"
#include "linear/slope.h"

namespace torvane {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// Of a slope, between two sizes of step; what lies beyond is no slope.
constexpr double Smooth = 1e-3;
// Longer periods would take seconds to follow, step by step.
constexpr int MostSteps = 4000;
// A point stands still when nothing moves by more of its scale.
constexpr double Still = 1e-7;
constexpr int MostTries = 20;

std::vector<std::string> MakeLinear(ZelModel& model) {
  std::vector<std::string> notes;
  const ZelBenchTop& bench = model.Bench();
  RestSources(bench);
  const auto loop = LoopOnBench(bench);
  if (!loop) return notes;
  for (const auto& [constant, value] : loop->Linear) {
    if (constant->Value() == value) continue;
    constant->Set(value);
    notes.push_back("the linear model has " + constant->Name() + " at " + constant->DisplayText());
  }
  return notes;
}

std::vector<Index> OfferedSignals(const ZelBenchTop& bench) {
  std::vector<Index> offered;
  const auto& variables = bench.Variables();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    if (!variables[i]->Internal()) offered.push_back(static_cast<Index>(i));
  }
  return offered;
}

std::vector<std::string> Names(const ZelBenchTop& bench, const std::vector<Index>& signals) {
  std::vector<std::string> names;
  names.reserve(signals.size());
  for (const Index i : signals) names.push_back(bench.VarAt(static_cast<int>(i))->Name());
  return names;
}

/// Finds a model's linear model with a probe on it.
class Linearization {
 public:
  explicit Linearization(ZelModel& model)
      : notes_(MakeLinear(model)),
        probe_(model),
        signals_(OfferedSignals(model.Bench())),
        names_(Names(model.Bench(), signals_)) {}

  LinearModel Run() {
    LinearModel found = probe_.Periods().empty() ? Continuous() : Sampled();
    found.Notes = std::move(notes_);
    return found;
  }

 private:
  using Follow = std::function<VectorXd(double)>;

  // What follows when a number is moved, or the command excited, from the point marked.
  Follow Moved(Index number, const std::function<VectorXd()>& goOn) {
    return [this, number, goOn](double by) {
      probe_.GoBack(mark_);
      probe_.Move(number, by);
      return goOn();
    };
  }
  Follow Excited(const std::function<VectorXd()>& goOn) {
    return [this, goOn](double by) {
      probe_.GoBack(mark_);
      probe_.Excite(by);
      VectorXd followed = goOn();
      probe_.Excite(0.0);
      return followed;
    };
  }

  // The slopes of everything with each of the first numbers, and by which steps they were found.
  MatrixXd SlopesWith(Index numbers, const std::function<VectorXd()>& goOn,
                      std::vector<Slope>& slopes) {
    slopes.clear();
    for (Index i = 0; i < numbers; ++i) {
      slopes.push_back(FindSlope(Moved(i, goOn), probe_.Scale(i)));
    }
    MatrixXd all(numbers > 0 ? slopes.front().Value.size() : goOn().size(), numbers);
    for (Index i = 0; i < numbers; ++i) all.col(i) = slopes[static_cast<std::size_t>(i)].Value;
    return all;
  }

  void Judge(const std::vector<Slope>& slopes) {
    const auto rough = std::any_of(slopes.begin(), slopes.end(),
                                   [](const Slope& s) { return s.Disagreement > Smooth; });
    const auto bent = std::any_of(slopes.begin(), slopes.end(), [](const Slope& s) {
      return s.Disagreement <= Smooth && s.Bend > Smooth;
    });
    if (rough) {
      notes_.emplace_back(
          "the loop is not smooth where it stands: what it rounds, or where it sticks, is gone "
          "around");
    }
    if (bent) {
      notes_.emplace_back("the loop stands at a limit: its slope is the mean of both sides'");
    }
  }

  // Moves the numbers by what takes `drift` out of them, again and again; `slopes` has the drift's.
  // An integrator beside the loop may drift on: what it drifts by moves nothing else.
  void FindPoint(Index numbers, const std::function<VectorXd()>& drift) {
    std::vector<Slope> slopes;
    for (int tries = 0; tries < MostTries; ++tries) {
      probe_.GoBack(mark_);
      const VectorXd rest = drift();
      if (!rest.allFinite()) break;
      if (Small(rest, numbers)) return;
      MatrixXd change = SlopesWith(numbers, drift, slopes);
      if (Small(change * rest, numbers)) return;
      // What nothing moves, a generator's value, is not the point's to choose.
      for (Index i = 0; i < numbers; ++i) {
        if (change.row(i).isZero(0.0)) change.col(i).setZero();
      }
      const VectorXd by = change.completeOrthogonalDecomposition().solve(-rest);
      probe_.GoBack(mark_);
      VectorXd point = probe_.Numbers();
      point.head(numbers) += by;
      probe_.SetNumbers(point);
      mark_ = probe_.Here();
    }
    throw LinearFault(
        "the loop does not stand still with its generators at their offsets: it has no operating "
        "point");
  }

  bool Small(const VectorXd& values, Index numbers) const {
    for (Index i = 0; i < numbers; ++i) {
      if (std::abs(values[i]) > Still * probe_.Scale(i)) return false;
    }
    return true;
  }

  LinearModel Continuous() {
    // A generator's value reaches the loop through two steps.
    probe_.Go(2);
    mark_ = probe_.Here();
    const Index n = probe_.StateCount();
    const auto slopes = [this]() -> VectorXd {
      probe_.Evaluate();
      return probe_.Slopes();
    };
    FindPoint(n, slopes);
    const auto everything = [this]() -> VectorXd {
      probe_.Evaluate();
      VectorXd all(probe_.StateCount() + static_cast<Index>(signals_.size()));
      all << probe_.Slopes(), probe_.Signals()(signals_);
      return all;
    };
    std::vector<Slope> found;
    const MatrixXd byState = SlopesWith(n, everything, found);
    found.push_back(FindSlope(Excited(everything), 1.0));
    Judge(found);
    const VectorXd& byCommand = found.back().Value;
    const Index m = static_cast<Index>(signals_.size());
    return {names_,
            {byState.topRows(n), byCommand.head(n), byState.bottomRows(m), byCommand.tail(m), 0.0}};
  }

  int StepsInPeriod() {
    const std::vector<double>& periods = probe_.Periods();
    const double period = *std::max_element(periods.begin(), periods.end());
    for (const double other : periods) {
      const double ratio = period / other;
      if (std::abs(ratio - std::round(ratio)) > 1e-6 * ratio) {
        throw LinearFault("the loop's sample times of " + FormatGeneral(period, 6, 1) + " s and " +
                          FormatGeneral(other, 6, 1) + " s have no common multiple among them");
      }
    }
    const double steps = period / probe_.Step();
    if (steps > MostSteps) {
      throw LinearFault("a sample time of " + FormatGeneral(period, 6, 1) + " s is more than " +
                        std::to_string(MostSteps) + " steps of the solver");
    }
    if (std::abs(steps - std::round(steps)) > 1e-3) {
      notes_.push_back("the sample time counts as " + FormatGeneral(std::round(steps), 6, 1) +
                       " whole steps of the solver");
    }
    return std::max(1, static_cast<int>(std::lround(steps)));
  }

  // From one sample on the loop repeats what it does with every sample.
  LinearModel Sampled() {
    const int steps = StepsInPeriod();
    probe_.Go(steps);
    mark_ = probe_.Here();
    const Index n = probe_.Count();
    const auto period = [this, steps] {
      probe_.Go(steps);
      return probe_.Numbers();
    };
    FindPoint(n, [this, steps]() -> VectorXd {
      const VectorXd before = probe_.Numbers();
      probe_.Go(steps);
      return probe_.Numbers() - before;
    });
    std::vector<Slope> found;
    SlopesWith(n, period, found);
    found.push_back(FindSlope(Excited(period), 1.0));
    Judge(found);
    std::vector<LinearModel::StepMap> maps;
    for (int i = 0; i < steps; ++i) {
      maps.push_back(MapOfStep(found));
      probe_.GoBack(mark_);
      probe_.Go(1);
      mark_ = probe_.Here();
    }
    return {names_, maps, Shown(), probe_.Step()};
  }

  LinearModel::StepMap MapOfStep(const std::vector<Slope>& found) {
    const auto step = [this] {
      probe_.Go(1);
      return probe_.Numbers();
    };
    const Index n = probe_.Count();
    LinearModel::StepMap map{MatrixXd(n, n), SlopeAt(Excited(step), found.back().Step)};
    for (Index i = 0; i < n; ++i) {
      map.A.col(i) = SlopeAt(Moved(i, step), found[static_cast<std::size_t>(i)].Step);
    }
    return map;
  }

  // What instruments show of each signal, of the numbers that are carried.
  MatrixXd Shown() {
    probe_.GoBack(mark_);
    std::vector<Slope> found;
    return SlopesWith(
        probe_.Count(), [this]() -> VectorXd { return probe_.Signals()(signals_); }, found);
  }

  std::vector<std::string> notes_;
  LoopProbe probe_;
  std::vector<Index> signals_;
  std::vector<std::string> names_;
  LoopProbe::Mark mark_;
};

}  // namespace

LinearModel Linearize(ZelModel& model) {
  return Linearization(model).Run();
}

}  // namespace torvane
