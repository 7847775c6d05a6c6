#include "linear/stability.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace torvane {

namespace {

using Eigen::MatrixXcd;
using Eigen::MatrixXd;
using Eigen::VectorXcd;

constexpr double Undamped = 1e-6;  // a damping within it is none
constexpr double Same = 1e-5;      // of poles, relative to their size

bool Lasts(const Root& pole) {
  return pole.Hz == 0.0 || std::abs(pole.Damping) <= Undamped;
}

bool Grows(const Root& pole) {
  return !Lasts(pole) && pole.Damping < 0.0;
}

VectorXcd LargestColumn(const MatrixXcd& m) {
  Eigen::Index largest = 0;
  m.colwise().squaredNorm().maxCoeff(&largest);
  return m.col(largest).normalized();
}

// Whether two poles that lie close together are two. `kept` has no more than what they last in, in
// which `off`, the system less one of them, is a matrix of two by two: how far apart they are is
// its discriminant, in which rounding is far smaller than in poles that were found one by one.
bool AreDistinct(const MatrixXcd& off, const MatrixXcd& kept) {
  const VectorXcd first = LargestColumn(kept);
  MatrixXcd q(kept.rows(), 2);
  q << first, LargestColumn(kept - first * (first.adjoint() * kept).eval());
  const MatrixXcd both = q.adjoint() * off * q;
  const std::complex<double> half = 0.5 * (both(0, 0) - both(1, 1));
  const double apart = std::abs(half * half + both(0, 1) * both(1, 0));
  const double rounding = 100.0 * static_cast<double>(off.rows()) *
                          std::numeric_limits<double>::epsilon() * off.norm() * both.norm();
  return apart > rounding;
}

// Whether what lasts at that pole grows with time. (I - h (A - p I))^-1 has what decays vanish when
// h is long, and keeps what lasts; to double its power then doubles what a chain adds up, and
// nothing else. In a sampled system A / p - I has the part of A - p I.
bool IsChained(const LinearSystem& system, const Root& pole, const std::vector<Root>& poles) {
  constexpr double Long = 10.0;        // times as long as the slowest takes
  constexpr double Doubled = 1.5;      // between what stays and what doubles
  constexpr double Negligible = 1e-6;  // of the sum that an entry comes from
  const bool sampled = system.Ts > 0.0;
  double slowest = std::numeric_limits<double>::infinity();
  int alike = 0;
  for (const Root& other : poles) {
    const double apart = std::abs(other.Value - pole.Value);
    if (apart > Same * std::abs(pole.Value)) {
      slowest = std::min(slowest, apart);
    } else {
      ++alike;
    }
  }
  if (alike < 2) return false;
  const auto unit = MatrixXcd::Identity(system.Order(), system.Order());
  const MatrixXcd a = system.A.cast<std::complex<double>>();
  const MatrixXcd off =
      sampled ? MatrixXcd(a / pole.Value - unit) : MatrixXcd(a - pole.Value * unit);
  const double h = std::isfinite(slowest) ? Long / slowest : 1.0;
  MatrixXcd power = (unit - h * off).inverse();
  for (int i = 0; i < 3; ++i) power = (power * power).eval();
  const auto fourth = [](const MatrixXcd& m) -> MatrixXcd { return m * m * (m * m); };
  if (alike == 2 && AreDistinct(off, fourth(power))) return false;  // they beat, slowly
  const MatrixXd before = power.cwiseAbs();
  const MatrixXd after = (power * power).cwiseAbs();
  return (after.array() > Doubled * before.array() &&
          after.array() > Negligible * (before * before).array())
      .any();
}

// Integrators are undamped too.
std::string LimitText(const std::vector<Root>& poles, std::ptrdiff_t lasting) {
  const bool integrators = std::ranges::count(poles, 0.0, &Root::Hz) == lasting;
  return "At the limit of stability: all poles decay but " +
         (lasting == 1
              ? "an integrator."
              : std::to_string(lasting) + (integrators ? " integrators." : " undamped ones."));
}

}  // namespace

Stability StabilityOf(const LinearSystem& system) {
  using enum Stability::Verdict;
  const std::vector<Root> poles = Poles(system);
  if (poles.empty()) return {NoPoles, "No poles: the command moves no state of the loop."};
  if (const auto growing = std::ranges::count_if(poles, Grows); growing > 0) {
    return {Unstable, "Unstable: " + std::to_string(growing) + " of " +
                          std::to_string(poles.size()) +
                          (growing == 1 ? " poles grows." : " poles grow.")};
  }
  const auto lasting = std::ranges::count_if(poles, Lasts);
  if (lasting == 0) return {Stable, "Stable: all poles decay."};
  for (const Root& pole : poles) {
    if (!Lasts(pole) || pole.Value.imag() < 0.0 || !IsChained(system, pole, poles)) continue;
    const std::string kind = pole.Hz == 0.0 ? "integrators" : "undamped poles";
    return {Unstable, "Unstable: " + kind + " in a chain, whose output grows."};
  }
  return {Limit, LimitText(poles, lasting)};
}

}  // namespace torvane
