#pragma once

#include <Eigen/Core>
#include <optional>
#include <string>
#include <vector>

#include "linear/linear_system.h"
#include "linear/stability.h"

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
  LinearModel(std::vector<std::string> names, LinearSystem system);
  /// Sampled: the maps of all steps of a period, the first of them the one that samples; `shown`
  /// gives what instruments show of what a step carries.
  LinearModel(std::vector<std::string> names, const std::vector<StepMap>& steps,
              const Eigen::MatrixXd& shown, double step);

  /// Outputs of the system, in its order.
  const std::vector<std::string>& Signals() const { return signals_; }
  /// The signal's place; nothing when there is none of that name.
  std::optional<Eigen::Index> Find(const std::string& signal) const;

  bool Sampled() const { return system_.Ts > 0.0; }
  /// Of the solver, seconds; of a sampled loop.
  double Step() const { return step_; }
  /// Of a sampled loop: the command is held from sample to sample, and signals are read in the step
  /// after a sample.
  const LinearSystem& System() const { return system_; }

  /// A signal of a sampled loop goes on between samples: in the system it is read late.
  bool Moves(Eigen::Index signal) const { return moves_[static_cast<std::size_t>(signal)]; }

  /// The responses of those signals to a sine in the command. That of a sampled loop is taken over
  /// all steps of a period, as a sweep that samples every step takes it.
  Eigen::VectorXcd ToSine(double hz, const std::vector<Eigen::Index>& of) const;

  /// The poles of everything that the command moves and signals show.
  std::vector<Root> Poles() const;
  /// By those poles.
  torvane::Stability Stability() const;
  /// A sine in the command becomes one in the signals: nothing grows or rings on by itself.
  /// Integrators, in a chain too, have a response.
  bool HasResponse() const;

  /// What the linear model goes around, a sentence each.
  std::vector<std::string> Notes;

 private:
  /// Everything that the command moves and signals show.
  LinearSystem Moved() const;

  /// A step of the numbers alone that a later one depends on, and what shows at its end.
  struct ShownStep {
    Eigen::MatrixXd A;
    Eigen::VectorXd B;
    Eigen::MatrixXd C;
    Eigen::VectorXd D;
  };

  std::vector<std::string> signals_;
  std::vector<bool> moves_;
  LinearSystem system_;
  std::vector<ShownStep> steps_;
  Eigen::MatrixXd period_;  ///< of what they carry
  double step_ = 0.0;
};

}  // namespace torvane
