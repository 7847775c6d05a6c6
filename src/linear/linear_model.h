#pragma once

#include <Eigen/Core>
#include <optional>
#include <string>
#include <vector>

#include "linear/linear_system.h"

namespace torvane {

/// What a model does to small changes of its command, about a point at which it stands still: from
/// the command's excitation to every signal, in the units that instruments show. A continuous loop
/// is described by its equations, exactly; a loop that samples by what it carries from one of its
/// samples to the next, exactly too, steps of the solver included.
class LinearModel {
 public:
  /// One step of the solver: what it carries afterwards of what it carried before and of the
  /// command.
  struct StepMap {
    Eigen::MatrixXd A;
    Eigen::VectorXd B;
  };

  /// Continuous.
  LinearModel(std::vector<std::string> signals, LinearSystem system);
  /// Sampled: the maps of all steps of a period, the first of them the one that samples; `shown`
  /// gives what instruments show of what a step carries.
  LinearModel(std::vector<std::string> signals, std::vector<StepMap> steps, Eigen::MatrixXd shown,
              double step);

  /// Outputs of the system, in its order.
  const std::vector<std::string>& Signals() const { return signals_; }
  /// The signal's place; nothing when there is none of that name.
  std::optional<Eigen::Index> Find(const std::string& signal) const;

  bool Sampled() const { return system_.Ts > 0.0; }
  /// Of a sampled loop: the command is held from sample to sample, and signals are read in the step
  /// after a sample.
  const LinearSystem& System() const { return system_; }

  /// Every signal's response to a sine in the command. That of a sampled loop is taken over all
  /// steps of a period, as a sweep that samples every step takes it.
  Eigen::VectorXcd ToSine(double hz) const;

  /// The poles of everything that the command moves and signals show.
  std::vector<Root> Poles() const;
  /// They all decay, but for integrators.
  bool Stable() const;

  /// What the linear model goes around, a sentence each.
  std::vector<std::string> Notes;

 private:
  std::vector<std::string> signals_;
  LinearSystem system_;
  std::vector<StepMap> steps_;
  Eigen::MatrixXd shown_;
  double step_ = 0.0;
};

}  // namespace torvane
