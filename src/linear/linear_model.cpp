#include "linear/linear_model.h"

#include <Eigen/Dense>
#include <algorithm>
#include <numbers>
#include <numeric>
#include <utility>

namespace torvane {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXcd;
using Eigen::VectorXd;

// Over the whole period with the command held, and what shows after its first step.
LinearSystem OverPeriod(const std::vector<LinearModel::StepMap>& steps, const MatrixXd& shown,
                        double step) {
  const Index n = shown.cols();
  MatrixXd a = MatrixXd::Identity(n, n);
  VectorXd b = VectorXd::Zero(n);
  for (const auto& map : steps) {
    b = map.A * b + map.B;
    a = map.A * a;
  }
  return {std::move(a), std::move(b), shown * steps.front().A, shown * steps.front().B,
          static_cast<double>(steps.size()) * step};
}

}  // namespace

LinearModel::LinearModel(std::vector<std::string> signals, LinearSystem system)
    : signals_(std::move(signals)), system_(std::move(system)) {}

LinearModel::LinearModel(std::vector<std::string> signals, std::vector<StepMap> steps,
                         MatrixXd shown, double step)
    : signals_(std::move(signals)),
      system_(OverPeriod(steps, shown, step)),
      steps_(std::move(steps)),
      shown_(std::move(shown)),
      step_(step) {}

std::optional<Index> LinearModel::Find(const std::string& signal) const {
  const auto found = std::find(signals_.begin(), signals_.end(), signal);
  if (found == signals_.end()) return std::nullopt;
  return found - signals_.begin();
}

std::vector<Root> LinearModel::Poles() const {
  std::vector<Index> all(signals_.size());
  std::iota(all.begin(), all.end(), 0);
  return torvane::Poles(system_.Reduced(all));
}

bool LinearModel::Stable() const {
  const std::vector<Root> poles = Poles();
  return std::all_of(poles.begin(), poles.end(),
                     [](const Root& pole) { return pole.Damping > 0.0; });
}

// With the command e^(j w t) what is carried repeats from period to period but for its turn
// e^(j w T). A step takes the command of the time at which it begins, and shows what it has carried
// at its end.
VectorXcd LinearModel::ToSine(double hz) const {
  if (!Sampled()) return system_.ResponseAt(hz);
  using Complex = std::complex<double>;
  const Complex turn = std::exp(Complex(0.0, (2.0 * std::numbers::pi) * hz * step_));
  const Index n = shown_.cols();
  VectorXcd forced = VectorXcd::Zero(n);
  Complex command = 1.0;
  for (const StepMap& map : steps_) {
    forced = (map.A * forced + map.B * command).eval();
    command *= turn;
  }
  const Eigen::MatrixXcd pencil =
      command * Eigen::MatrixXcd::Identity(n, n) - system_.A.cast<Complex>();
  VectorXcd carried = pencil.partialPivLu().solve(forced);
  VectorXcd sum = VectorXcd::Zero(n);
  command = 1.0;
  for (const StepMap& map : steps_) {
    carried = (map.A * carried + map.B * command).eval();
    command *= turn;
    sum += carried / command;
  }
  return shown_ * sum / static_cast<double>(steps_.size());
}

}  // namespace torvane
