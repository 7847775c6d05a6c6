#pragma once

#include <Eigen/Core>
#include <complex>
#include <optional>
#include <string>
#include <vector>

namespace torvane {

/// A linear system with one input:
///
///     dx/dt = A x + B u, or x at the next sample = A x + B u
///     y     = C x + D u
struct LinearSystem {
  Eigen::MatrixXd A;
  Eigen::VectorXd B;
  Eigen::MatrixXd C;  ///< a row an output
  Eigen::VectorXd D;
  double Ts = 0.0;  ///< between samples, seconds; 0 in a continuous system

  Eigen::Index Order() const { return A.rows(); }
  Eigen::Index Outputs() const { return C.rows(); }

  /// All outputs to e^(j 2 pi hz t), which a sampled system sees held from sample to sample.
  Eigen::VectorXcd ResponseAt(double hz) const;

  /// The states that the input reaches and that show in one of the outputs.
  std::vector<Eigen::Index> Between(const std::vector<Eigen::Index>& outputs) const;
  /// Only the given outputs, and only those states.
  LinearSystem Reduced(const std::vector<Eigen::Index>& outputs) const;

  /// What leads from output `from` to the others: the system with that output for its input. The
  /// outputs' responses are divided by that one's. Nothing when `from` does not follow the input
  /// at all, or an output follows it sooner than `from` does.
  std::optional<LinearSystem> Seen(Eigen::Index from) const;
};

/// One pole or zero.
struct Root {
  std::complex<double> Value;  ///< 1/s, or in the z plane
  double Hz = 0.0;             ///< natural frequency
  double Damping = 0.0;  ///< 1 for a real root in the left half or a positive one in the circle
};

/// Sorted by frequency, the upper one of a pair first. A pole of a sampled system within 1e-3 of
/// z = 0 is a delay of one sample: its frequency is infinite and its damping 1. One that differs
/// from an integrator by no more than rounding can, 1e-5 a sample, is an integrator.
std::vector<Root> Poles(const LinearSystem& system);
/// Of one output; as poles.
std::vector<Root> Zeros(const LinearSystem& system, Eigen::Index output);
/// Takes out pairs of a pole and a zero that cancel each other.
void Cancel(std::vector<Root>& poles, std::vector<Root>& zeros);

}  // namespace torvane
