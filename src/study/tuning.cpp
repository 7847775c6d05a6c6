#include "study/tuning.h"

#include <nlopt.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <memory>

#include "core/text.h"
#include "study/study_fault.h"

namespace torvane {

std::vector<const Requirement*> TuningGoal::Unmet(const RunReadings& readings) const {
  std::vector<const Requirement*> unmet;
  for (const Requirement& requirement : Requirements) {
    if (!requirement.Met(readings)) unmet.push_back(&requirement);
  }
  return unmet;
}

bool TuningGoal::Met(const RunReadings& readings) const {
  return Unmet(readings).empty() && (!Best || readings.*Best->Value);
}

namespace {

constexpr int SettingDigits = 4;
// Of all runs: a region is found by then that the second search refines.
constexpr double FirstSearch = 0.5;

// With few digits, but within the range.
std::string ValueAt(const StudyRange& range, double share) {
  const double least = std::min(range.From, range.To);
  const double most = std::max(range.From, range.To);
  const auto value =
      ParseNumber(FormatGeneral(ParseNumber(range.At(share)).value_or(least), SettingDigits, 1));
  return FormatShortest(std::clamp(value.value_or(least), least, most));
}

// Keeps its order and fits 0 to 1.
double Squeezed(double x) {
  return 0.5 + 0.5 * x / (1.0 + std::abs(x));
}

/// How bad a run is: below 1 when it meets the requirements, by its measure; above, by what it
/// misses, most of all where there is nothing to measure.
double Badness(const TuningGoal& goal, const RunReadings& readings) {
  double missed = 0.0;
  for (const Requirement& requirement : goal.Requirements) {
    const auto by = requirement.Missed(readings);
    missed += by ? *by / (1.0 + *by) : 1.0;
  }
  const double most = 1.0 + static_cast<double>(goal.Requirements.size());
  if (missed > 0.0) return std::min(1.0 + missed, most);
  if (!goal.Best) return 0.0;
  const auto& value = readings.*goal.Best->Value;
  if (!value) return most + 1.0;
  return Squeezed(goal.Best->MoreIsBetter ? -*value : *value);
}

/// One search, which both algorithms ask for its runs.
class Search {
 public:
  explicit Search(const TuningSearch& search) : search_(search) {}

  Tuning Run() {
    const auto n = static_cast<unsigned>(search_.Ranges.size());
    std::vector<double> point(n, 0.5);
    Minimise(NLOPT_GN_DIRECT_L, point, static_cast<int>(FirstSearch * search_.MostRuns));
    point = bestPoint_;
    Minimise(NLOPT_LN_SBPLX, point, search_.MostRuns);
    return best_;
  }

 private:
  using Optimiser = std::unique_ptr<nlopt_opt_s, decltype(&nlopt_destroy)>;

  // From a point of the unit cube, until so many runs have been made.
  void Minimise(nlopt_algorithm algorithm, std::vector<double>& point, int runs) {
    if (ended_ || runs_ >= runs) return;
    until_ = runs;
    const Optimiser optimiser(nlopt_create(algorithm, static_cast<unsigned>(point.size())),
                              &nlopt_destroy);
    optimiser_ = optimiser.get();
    nlopt_set_lower_bounds1(optimiser_, 0.0);
    nlopt_set_upper_bounds1(optimiser_, 1.0);
    nlopt_set_min_objective(optimiser_, &Search::Ask, this);
    nlopt_set_initial_step1(optimiser_, 0.1);
    nlopt_set_xtol_abs1(optimiser_, 1e-4);
    // Points that were tried before cost nothing, but must not go on for ever.
    nlopt_set_maxeval(optimiser_, 20 * search_.MostRuns);
    double badness = 0.0;
    nlopt_optimize(optimiser_, point.data(), &badness);
    optimiser_ = nullptr;
    if (failure_) std::rethrow_exception(failure_);
  }

  static double Ask(unsigned n, const double* point, double* /*gradient*/, void* self) {
    return static_cast<Search*>(self)->BadnessAt({point, point + n});
  }

  // No exception may pass through the optimiser.
  double BadnessAt(const std::vector<double>& point) {
    try {
      return Tried(point);
    } catch (...) {
      failure_ = std::current_exception();
      nlopt_force_stop(optimiser_);
      return std::numeric_limits<double>::max();
    }
  }

  double Tried(const std::vector<double>& point) {
    std::vector<std::string> values;
    for (std::size_t i = 0; i < point.size(); ++i) {
      values.push_back(ValueAt(search_.Ranges[i], point[i]));
    }
    const auto known = known_.find(values);
    if (known != known_.end()) return known->second;
    Tuning tuning = search_.Measure(values);
    const double badness = Badness(search_.Goal, tuning.Readings);
    known_.emplace(values, badness);
    ++runs_;
    if (runs_ == 1 || badness < leastBadness_) {
      leastBadness_ = badness;
      best_ = std::move(tuning);
      bestPoint_ = point;
    }
    ended_ = !search_.GoOn(runs_, best_);
    if (ended_ || runs_ >= until_) nlopt_force_stop(optimiser_);
    return badness;
  }

  const TuningSearch& search_;
  nlopt_opt optimiser_ = nullptr;
  std::map<std::vector<std::string>, double> known_;
  int runs_ = 0;
  int until_ = 0;
  bool ended_ = false;
  double leastBadness_ = 0.0;
  Tuning best_;
  std::vector<double> bestPoint_;
  std::exception_ptr failure_;
};

}  // namespace

Tuning Tune(const TuningSearch& search) {
  if (search.Ranges.empty()) throw StudyFault("a tuning needs constants to vary");
  return Search(search).Run();
}

}  // namespace torvane
