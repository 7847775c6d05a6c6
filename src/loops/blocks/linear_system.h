#pragma once

#include <cstddef>
#include <vector>

namespace torvane::loops {

/// A linear system of one input and one output:
///
///     x' = A x + B u,    y = C x + D u
///
/// x' is the slope of x, or its value at the next sample.
struct LinearSystem {
  std::vector<double> A;  ///< row by row
  std::vector<double> B;
  std::vector<double> C;
  double D = 0.0;

  std::size_t Order() const { return B.size(); }
  /// C x + D u.
  double Output(const double* x, double u) const {
    double y = D * u;
    for (std::size_t i = 0; i < C.size(); ++i) y += C[i] * x[i];
    return y;
  }
  /// A x + B u.
  void Move(const double* x, double u, double* moved) const;
};

/// The system b/a, both in descending powers of s or z, in controllable form; a must not begin with
/// 0 and have no fewer items than b.
LinearSystem FromTransferFunction(std::vector<double> b, std::vector<double> a);

/// The polynomial with these roots, in descending powers: each row is a real and an imaginary part,
/// and one that is not real has its conjugate in another row.
std::vector<double> FromRoots(const std::vector<double>& rows);
/// Whether each root that is not real has its conjugate.
bool ArePaired(const std::vector<double>& rows);

}  // namespace torvane::loops
