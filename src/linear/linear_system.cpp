#include "linear/linear_system.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace torvane {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXcd;
using Eigen::VectorXd;

// Marks all that a non-zero entry leads to: along columns from what drives, or back along rows.
std::vector<bool> Spread(const MatrixXd& leads, std::vector<bool> marked) {
  for (bool more = true; more;) {
    more = false;
    for (Index from = 0; from < leads.cols(); ++from) {
      if (!marked[static_cast<std::size_t>(from)]) continue;
      for (Index to = 0; to < leads.rows(); ++to) {
        const auto at = static_cast<std::size_t>(to);
        if (!marked[at] && leads(to, from) != 0.0) marked[at] = more = true;
      }
    }
  }
  return marked;
}

std::vector<bool> NonZero(const VectorXd& values) {
  std::vector<bool> marked;
  for (const double value : values) marked.push_back(value != 0.0);
  return marked;
}

std::vector<Index> Both(const std::vector<bool>& a, const std::vector<bool>& b) {
  std::vector<Index> kept;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] && b[i]) kept.push_back(static_cast<Index>(i));
  }
  return kept;
}

// Of a sum of terms; less is what rounding leaves of nothing.
constexpr double Nothing = 1e-10;

// Scales states so that rows and columns are of like size, after Osborne: eigenvalues stay, their
// rounding errors shrink.
VectorXd Balance(const MatrixXd& a) {
  MatrixXd scaled = a.cwiseAbs();
  VectorXd scales = VectorXd::Ones(a.rows());
  for (int pass = 0; pass < 20; ++pass) {
    for (Index i = 0; i < a.rows(); ++i) {
      const double column = scaled.col(i).sum() - scaled(i, i);
      const double row = scaled.row(i).sum() - scaled(i, i);
      if (column == 0.0 || row == 0.0) continue;
      const double factor = std::exp2(std::round(0.5 * std::log2(row / column)));
      scaled.col(i) *= factor;
      scaled.row(i) /= factor;
      scales[i] *= factor;
    }
  }
  return scales;
}

LinearSystem Balanced(const LinearSystem& system) {
  const VectorXd scales = Balance(system.A);
  const VectorXd inverse = scales.cwiseInverse();
  return {inverse.asDiagonal() * system.A * scales.asDiagonal(), inverse.cwiseProduct(system.B),
          system.C * scales.asDiagonal(), system.D, system.Ts};
}

MatrixXd Snapped(const MatrixXd& sums, const MatrixXd& terms) {
  return (sums.array().abs() > Nothing * terms.array()).select(sums, 0.0);
}

MatrixXd DifferenceOf(const MatrixXd& a, const MatrixXd& b) {
  return Snapped(a - b, a.cwiseAbs() + b.cwiseAbs());
}

MatrixXd WithProduct(const MatrixXd& a, const MatrixXd& b, const MatrixXd& c) {
  return Snapped(a + b * c, a.cwiseAbs() + b.cwiseAbs() * c.cwiseAbs());
}

/// Finds the system that one of the outputs drives, by eliminations that keep what is exactly 0.
class Inversion {
 public:
  explicit Inversion(const LinearSystem& system)
      : states_(system.Order()),
        rows_(states_ + system.Outputs(), states_),
        direct_(rows_.rows()),
        ts_(system.Ts) {
    rows_ << system.A, system.C;
    direct_ << system.B, system.D;
    for (Index i = 0; i < states_; ++i) free_.push_back(i);
  }

  std::optional<LinearSystem> DrivenBy(Index output) {
    Index last = states_ + output;
    while (direct_[last] == 0.0) {
      const auto replaced = ReplaceState(rows_.row(last));
      if (!replaced) return std::nullopt;
      last = *replaced;
    }
    const double answer = direct_[last];
    const Eigen::RowVectorXd told = rows_.row(last) / answer;
    rows_ = DifferenceOf(rows_, direct_ * told);
    direct_ /= answer;
    for (auto state = chain_.rbegin(); state != chain_.rend(); ++state) {
      if ((direct_.tail(rows_.rows() - states_).array() != 0.0).any()) return std::nullopt;
      TakeEarlier(*state);
    }
    std::vector<Index> outputs;
    for (Index i = states_; i < rows_.rows(); ++i) outputs.push_back(i);
    return LinearSystem{rows_(free_, free_), direct_(free_), rows_(outputs, free_),
                        direct_(outputs), ts_};
  }

 private:
  // What the row shows becomes a state instead of the one of which it shows most.
  std::optional<Index> ReplaceState(const Eigen::RowVectorXd& shown) {
    const auto gone = std::max_element(free_.begin(), free_.end(), [&](Index a, Index b) {
      return std::abs(shown[a]) < std::abs(shown[b]);
    });
    if (gone == free_.end() || shown[*gone] == 0.0) return std::nullopt;
    const Index state = *gone;
    free_.erase(gone);
    chain_.push_back(state);
    rows_.row(state) = WithProduct(MatrixXd::Zero(1, states_), shown, rows_.topRows(states_));
    direct_.row(state) = WithProduct(MatrixXd::Zero(1, 1), shown, direct_.head(states_));
    Eigen::RowVectorXd others = shown;
    others[state] = 0.0;
    const VectorXd share = rows_.col(state) / shown[state];
    rows_ = DifferenceOf(rows_, share * others);
    rows_.col(state) = share;
    return state;
  }

  // The driving signal is the state's next value: from here on the state itself drives, and the
  // others count without what the signal has added to them.
  void TakeEarlier(Index state) {
    VectorXd added = VectorXd::Zero(states_);
    added(free_) = direct_(free_);
    direct_ = WithProduct(rows_.col(state), rows_, added);
  }

  Index states_;
  MatrixXd rows_;    ///< of the states' next values, or slopes, and of the outputs, by states
  VectorXd direct_;  ///< of the same, by what drives
  double ts_;
  std::vector<Index> free_;   ///< states that are still those of the system
  std::vector<Index> chain_;  ///< states that the output and its next values have replaced
};

}  // namespace

VectorXcd LinearSystem::ResponseAt(double hz) const {
  const std::complex<double> s(0.0, (2.0 * std::numbers::pi) * hz);
  const std::complex<double> root = Ts > 0.0 ? std::exp(s * Ts) : s;
  const Eigen::MatrixXcd pencil =
      root * Eigen::MatrixXcd::Identity(Order(), Order()) - A.cast<std::complex<double>>();
  const VectorXcd states = pencil.partialPivLu().solve(B.cast<std::complex<double>>());
  return C.cast<std::complex<double>>() * states + D.cast<std::complex<double>>();
}

std::vector<Index> LinearSystem::Between(const std::vector<Index>& outputs) const {
  const VectorXd rows = C(outputs, Eigen::all).cwiseAbs().colwise().sum().transpose();
  return Both(Spread(A, NonZero(B)), Spread(A.transpose(), NonZero(rows)));
}

LinearSystem LinearSystem::Reduced(const std::vector<Index>& outputs) const {
  const std::vector<Index> kept = Between(outputs);
  return {A(kept, kept), B(kept), C(outputs, kept), D(outputs), Ts};
}

std::optional<LinearSystem> LinearSystem::Seen(Index from) const {
  return Inversion(Balanced(*this)).DrivenBy(from);
}

namespace {

constexpr double Deadbeat = 1e-3;
// From an integrator, a sample and, of the fastest root, in a continuous system.
constexpr double RestPerSample = 1e-5;
constexpr double RestOfFastest = 1e-9;

Root RootAt(std::complex<double> value, double ts, double fastest) {
  Root root{value, 0.0, 1.0};
  if (ts > 0.0 && std::abs(value) < Deadbeat) {
    root.Value = 0.0;
    root.Hz = std::numeric_limits<double>::infinity();
    return root;
  }
  const bool still = ts > 0.0 ? std::abs(value - 1.0) <= RestPerSample
                              : std::abs(value) <= RestOfFastest * fastest;
  if (still) {
    root.Value = ts > 0.0 ? 1.0 : 0.0;
    return root;
  }
  const std::complex<double> s = ts > 0.0 ? std::log(value) / ts : value;
  root.Hz = std::abs(s) / (2.0 * std::numbers::pi);
  root.Damping = -s.real() / std::abs(s);
  return root;
}

std::vector<Root> RootsOf(const MatrixXd& a, double ts) {
  if (a.rows() == 0) return {};
  const VectorXcd values = Eigen::EigenSolver<MatrixXd>(a, false).eigenvalues();
  const double fastest = values.cwiseAbs().maxCoeff();
  std::vector<Root> roots;
  for (const auto& value : values) roots.push_back(RootAt(value, ts, fastest));
  std::sort(roots.begin(), roots.end(), [](const Root& one, const Root& other) {
    return one.Hz != other.Hz ? one.Hz < other.Hz : one.Value.imag() > other.Value.imag();
  });
  return roots;
}

}  // namespace

std::vector<Root> Poles(const LinearSystem& system) {
  return RootsOf(Balanced(system).A, system.Ts);
}

// How the states move while the output is held at 0.
std::vector<Root> Zeros(const LinearSystem& system, Index output) {
  const auto held = system.Reduced({output}).Seen(0);
  return held ? RootsOf(Balanced(*held).A, system.Ts) : std::vector<Root>();
}

void Cancel(std::vector<Root>& poles, std::vector<Root>& zeros) {
  constexpr double Same = 1e-6;
  for (auto zero = zeros.begin(); zero != zeros.end();) {
    const auto pole = std::find_if(poles.begin(), poles.end(), [&](const Root& root) {
      return std::abs(root.Value - zero->Value) <= Same * std::max(1e-3, std::abs(zero->Value));
    });
    if (pole == poles.end()) {
      ++zero;
    } else {
      poles.erase(pole);
      zero = zeros.erase(zero);
    }
  }
}

}  // namespace torvane
