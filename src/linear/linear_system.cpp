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

}  // namespace

VectorXcd LinearSystem::ResponseAt(double hz) const {
  const std::complex<double> s(0.0, (2.0 * std::numbers::pi) * hz);
  const std::complex<double> root = Ts > 0.0 ? std::exp(s * Ts) : s;
  const Eigen::MatrixXcd pencil =
      root * Eigen::MatrixXcd::Identity(Order(), Order()) - A.cast<std::complex<double>>();
  const VectorXcd states = pencil.partialPivLu().solve(B.cast<std::complex<double>>());
  return C.cast<std::complex<double>>() * states + D.cast<std::complex<double>>();
}

LinearSystem LinearSystem::Reduced(const std::vector<Index>& outputs) const {
  const MatrixXd rows = C(outputs, Eigen::all);
  const auto reached = Spread(A, NonZero(B));
  const auto shown = Spread(A.transpose(), NonZero(rows.cwiseAbs().colwise().sum().transpose()));
  const std::vector<Index> kept = Both(reached, shown);
  return {A(kept, kept), B(kept), rows(Eigen::all, kept), D(outputs), Ts};
}

// Every output is taken as many samples, or derivatives, later as `from` needs to answer the input;
// from there the input can be told from the state and that output.
std::optional<LinearSystem> LinearSystem::Seen(Index from) const {
  MatrixXd rows = C;
  VectorXd direct = D;
  for (Index later = 0; later <= Order(); ++later) {
    const double answer = direct[from];
    if (answer != 0.0) {
      const VectorXd share = direct / answer;
      const Eigen::RowVectorXd back = rows.row(from);
      return LinearSystem{A - B * back / answer, B / answer, rows - share * back, share, Ts};
    }
    if ((direct.array() != 0.0).any()) return std::nullopt;
    direct = rows * B;
    rows = rows * A;
  }
  return std::nullopt;
}

namespace {

constexpr double Deadbeat = 1e-3;
constexpr double Rest = 1e-9;

// What rounding makes of an integrator is one: `fast` is the fastest root's size.
Root RootAt(std::complex<double> value, double ts, double fast) {
  Root root{value, 0.0, 1.0};
  if (ts > 0.0 && std::abs(value) < Deadbeat) {
    root.Hz = std::numeric_limits<double>::infinity();
    return root;
  }
  const bool still = ts > 0.0 ? std::abs(value - 1.0) < Rest : std::abs(value) < Rest * fast;
  if (still) {
    root.Value = ts > 0.0 ? 1.0 : 0.0;
    return root;
  }
  const std::complex<double> s = ts > 0.0 ? std::log(value) / ts : value;
  root.Hz = std::abs(s) / (2.0 * std::numbers::pi);
  root.Damping = -s.real() / std::abs(s);
  return root;
}

std::vector<Root> Sorted(const VectorXcd& values, double ts) {
  std::vector<Root> roots;
  const double fast = values.size() > 0 ? values.cwiseAbs().maxCoeff() : 0.0;
  for (const auto& value : values) roots.push_back(RootAt(value, ts, fast));
  std::sort(roots.begin(), roots.end(), [](const Root& a, const Root& b) {
    return std::abs(a.Hz - b.Hz) > 1e-9 * std::abs(a.Hz) ? a.Hz < b.Hz
                                                         : a.Value.imag() > b.Value.imag();
  });
  return roots;
}

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

MatrixXd Scaled(const MatrixXd& a, const VectorXd& scales) {
  return scales.cwiseInverse().asDiagonal() * a * scales.asDiagonal();
}

}  // namespace

std::vector<Root> Poles(const LinearSystem& system) {
  if (system.Order() == 0) return {};
  const MatrixXd balanced = Scaled(system.A, Balance(system.A));
  return Sorted(Eigen::EigenSolver<MatrixXd>(balanced, false).eigenvalues(), system.Ts);
}

// The finite eigenvalues of the pencil [A - s, B; C, D].
std::vector<Root> Zeros(const LinearSystem& system, Index output) {
  const Index n = system.Order();
  const VectorXd scales = Balance(system.A);
  MatrixXd left = MatrixXd::Zero(n + 1, n + 1);
  VectorXd b = scales.cwiseInverse().cwiseProduct(system.B);
  Eigen::RowVectorXd c = system.C.row(output) * scales.asDiagonal();
  const double bSize = b.norm();
  const double cSize = c.norm();
  if (bSize == 0.0 || (cSize == 0.0 && system.D[output] == 0.0)) return {};
  left.topLeftCorner(n, n) = Scaled(system.A, scales);
  const double size = std::max(left.topLeftCorner(n, n).norm(), 1e-300);
  const double bScale = size / bSize;
  const double cScale = cSize > 0.0 ? size / cSize : 1.0;
  left.topRightCorner(n, 1) = b * bScale;
  left.bottomLeftCorner(1, n) = c * cScale;
  left(n, n) = system.D[output] * bScale * cScale;
  MatrixXd right = MatrixXd::Zero(n + 1, n + 1);
  right.topLeftCorner(n, n).setIdentity();
  const Eigen::GeneralizedEigenSolver<MatrixXd> solver(left, right, false);
  std::vector<std::complex<double>> finite;
  for (Index i = 0; i <= n; ++i) {
    const std::complex<double> value = solver.alphas()[i] / solver.betas()[i];
    // A double zero at infinity comes back as one very far away.
    if (std::abs(value) < 1e6 * size) finite.push_back(value);
  }
  return Sorted(Eigen::Map<VectorXcd>(finite.data(), static_cast<Index>(finite.size())), system.Ts);
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
