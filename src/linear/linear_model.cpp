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

using ComplexRows = Eigen::Matrix<double, Eigen::Dynamic, 2>;

// The numbers through which the command shows, whichever step leads on.
std::vector<Index> CarriedNumbers(const std::vector<LinearModel::StepMap>& steps,
                                  const MatrixXd& shown) {
  const Index n = shown.cols();
  LinearSystem ways{MatrixXd::Zero(n, n), VectorXd::Zero(n), shown.cwiseAbs(), {}, 0.0};
  for (const auto& map : steps) {
    ways.A += map.A.cwiseAbs();
    ways.B += map.B.cwiseAbs();
  }
  ways.C = ways.C * ways.A;
  std::vector<Index> all(static_cast<std::size_t>(shown.rows()));
  std::iota(all.begin(), all.end(), 0);
  return ways.Between(all);
}

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

// What the last step of a period still changes is not held.
std::vector<bool> MovingSignals(const std::vector<LinearModel::StepMap>& steps,
                                const MatrixXd& shown) {
  constexpr double Nothing = 1e-9;
  MatrixXd before = MatrixXd::Identity(shown.cols(), shown.cols());
  for (std::size_t i = 0; i + 1 < steps.size(); ++i) before = (steps[i].A * before).eval();
  const MatrixXd first = shown * before;
  const MatrixXd last = shown * steps.back().A * before;
  std::vector<bool> moves;
  for (Index k = 0; k < shown.rows(); ++k) {
    const double size = last.row(k).cwiseAbs().sum() + first.row(k).cwiseAbs().sum();
    moves.push_back(steps.size() > 1 &&
                    (last.row(k) - first.row(k)).cwiseAbs().maxCoeff() > Nothing * size);
  }
  return moves;
}

}  // namespace

LinearModel::LinearModel(std::vector<std::string> names, LinearSystem system)
    : signals_(std::move(names)), moves_(signals_.size(), false), system_(std::move(system)) {}

LinearModel::LinearModel(std::vector<std::string> names, const std::vector<StepMap>& steps,
                         const MatrixXd& shown, double step)
    : signals_(std::move(names)),
      moves_(MovingSignals(steps, shown)),
      system_(OverPeriod(steps, shown, step)),
      step_(step) {
  const std::vector<Index> carried = CarriedNumbers(steps, shown);
  for (const StepMap& map : steps) {
    steps_.push_back({map.A(carried, carried), map.B(carried), shown * map.A(Eigen::all, carried),
                      shown * map.B});
  }
  period_ = system_.A(carried, carried);
}

std::optional<Index> LinearModel::Find(const std::string& signal) const {
  const auto found = std::find(signals_.begin(), signals_.end(), signal);
  if (found == signals_.end()) return std::nullopt;
  return found - signals_.begin();
}

LinearSystem LinearModel::Moved() const {
  std::vector<Index> all(signals_.size());
  std::iota(all.begin(), all.end(), 0);
  return system_.Reduced(all);
}

std::vector<Root> LinearModel::Poles() const {
  return torvane::Poles(Moved());
}

Stability LinearModel::Stability() const {
  return StabilityOf(Moved());
}

bool LinearModel::HasResponse() const {
  const std::vector<Root> poles = Poles();
  return std::all_of(poles.begin(), poles.end(),
                     [](const Root& pole) { return pole.Damping > 0.0; });
}

// With the command e^(j w t) what is carried repeats from period to period but for its turn
// e^(j w T). A step takes the command of the time at which it begins, and shows what it has carried
// at its end. A complex number is a row of two here, so that all products are of real numbers.
VectorXcd LinearModel::ToSine(double hz, const std::vector<Index>& of) const {
  if (!Sampled()) return system_.ResponseAt(hz)(of);
  using Complex = std::complex<double>;
  const Complex turn = std::exp(Complex(0.0, (2.0 * std::numbers::pi) * hz * step_));
  const Index n = steps_.front().A.rows();
  ComplexRows carried = ComplexRows::Zero(n, 2);
  ComplexRows next(n, 2);
  const auto go = [&](const ShownStep& map, const Complex& command) {
    next.noalias() = map.A.lazyProduct(carried);
    next.col(0) += command.real() * map.B;
    next.col(1) += command.imag() * map.B;
    carried.swap(next);
  };
  Complex command = 1.0;
  for (const ShownStep& map : steps_) {
    go(map, command);
    command *= turn;
  }
  const Eigen::MatrixXcd pencil = command * Eigen::MatrixXcd::Identity(n, n) - period_;
  const VectorXcd forced = carried.col(0) + Complex(0.0, 1.0) * carried.col(1);
  const VectorXcd begin = pencil.partialPivLu().solve(forced);
  carried << begin.real(), begin.imag();
  VectorXcd sum = VectorXcd::Zero(static_cast<Index>(of.size()));
  command = 1.0;
  for (const ShownStep& map : steps_) {
    const Complex after = command * turn;
    for (Index i = 0; i < sum.size(); ++i) {
      const Index signal = of[static_cast<std::size_t>(i)];
      const Complex shown(map.C.row(signal).dot(carried.col(0)),
                          map.C.row(signal).dot(carried.col(1)));
      sum[i] += (shown + map.D[signal] * command) / after;
    }
    go(map, command);
    command = after;
  }
  return sum / static_cast<double>(steps_.size());
}

}  // namespace torvane
