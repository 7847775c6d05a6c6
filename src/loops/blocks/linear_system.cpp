#include "loops/blocks/linear_system.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace torvane::loops {

void LinearSystem::Move(const double* x, double u, double* moved) const {
  const std::size_t order = Order();
  for (std::size_t row = 0; row < order; ++row) {
    double sum = B[row] * u;
    for (std::size_t i = 0; i < order; ++i) sum += A[row * order + i] * x[i];
    moved[row] = sum;
  }
}

LinearSystem FromTransferFunction(std::vector<double> b, std::vector<double> a) {
  const std::size_t order = a.size() - 1;
  b.insert(b.begin(), a.size() - b.size(), 0.0);
  const double leading = a.front();
  for (double& coefficient : a) coefficient /= leading;
  for (double& coefficient : b) coefficient /= leading;

  // x[0] is the highest of the states: x0' = u - a1 x0 - a2 x1 ..., x1' = x0 and so on.
  LinearSystem system;
  system.A.assign(order * order, 0.0);
  system.B.assign(order, 0.0);
  system.C.assign(order, 0.0);
  system.D = b.front();
  for (std::size_t i = 0; i < order; ++i) {
    system.A[i] = -a[i + 1];
    if (i > 0) system.A[i * order + i - 1] = 1.0;
    system.C[i] = b[i + 1] - b.front() * a[i + 1];
  }
  if (order > 0) system.B.front() = 1.0;
  return system;
}

namespace {

std::vector<std::complex<double>> ComplexFromRoots(const std::vector<double>& rows) {
  std::vector<std::complex<double>> polynomial{1.0};
  for (std::size_t row = 0; row + 1 < rows.size(); row += 2) {
    const std::complex<double> root(rows[row], rows[row + 1]);
    polynomial.emplace_back(0.0);
    for (std::size_t i = polynomial.size() - 1; i > 0; --i) {
      polynomial[i] -= root * polynomial[i - 1];
    }
  }
  return polynomial;
}

}  // namespace

std::vector<double> FromRoots(const std::vector<double>& rows) {
  std::vector<double> real;
  for (const std::complex<double>& coefficient : ComplexFromRoots(rows)) {
    real.push_back(coefficient.real());
  }
  return real;
}

bool ArePaired(const std::vector<double>& rows) {
  constexpr double Rounding = 1e-9;
  std::vector<std::complex<double>> alone;
  for (std::size_t row = 0; row + 1 < rows.size(); row += 2) {
    const std::complex<double> root(rows[row], rows[row + 1]);
    if (root.imag() == 0.0) continue;
    const auto other = std::find_if(alone.begin(), alone.end(), [&](const auto& one) {
      return std::abs(one - std::conj(root)) <= Rounding * std::abs(root);
    });
    if (other == alone.end()) {
      alone.push_back(root);
    } else {
      alone.erase(other);
    }
  }
  return alone.empty();
}

}  // namespace torvane::loops
