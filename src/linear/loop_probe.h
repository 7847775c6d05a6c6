#pragma once

#include <Eigen/Core>
#include <cstddef>
#include <memory>
#include <vector>

#include "core/carried.h"
#include "core/model.h"

namespace torvane {

/// A model of one's own that is put back to the same point again and again, each time with a number
/// of what it carries moved a little, to see how it goes on. It keeps its own memory from then on.
class LoopProbe {
 public:
  /// Everything that the model carried at one time.
  using Mark = std::vector<std::byte>;

  explicit LoopProbe(ZelModel& model);
  LoopProbe(const LoopProbe&) = delete;
  LoopProbe& operator=(const LoopProbe&) = delete;
  ~LoopProbe();

  double Step() const { return model_.Solver().Step(); }
  /// Between the samples of each clock, seconds; none in a continuous loop.
  const std::vector<double>& Periods() const { return carried_.Periods(); }

  Mark Here() const;
  void GoBack(const Mark& mark);

  /// The numbers that a step carries on; the states that the solver integrates stand first.
  Eigen::Index Count() const { return static_cast<Eigen::Index>(numbers_.size()); }
  Eigen::Index StateCount() const { return stateCount_; }
  Eigen::VectorXd Numbers() const;
  /// As much as an instrument first shows in a division, where it shows the number; else 1.
  double Scale(Eigen::Index number) const { return scales_[static_cast<std::size_t>(number)]; }
  void Move(Eigen::Index number, double by);
  void SetNumbers(const Eigen::VectorXd& values);

  /// What is added to the model's command from now on.
  void Excite(double value);

  /// Steps the solver so many times. A step that overflows is a LinearFault.
  void Go(int steps);

  /// Evaluates the model at its present time, until its blocks have seen each other's outputs.
  void Evaluate();
  /// Slopes of the states as the last evaluation left them.
  Eigen::VectorXd Slopes() const;
  /// What instruments show of the signals, in the order of the bench.
  Eigen::VectorXd Signals() const;

 private:
  class Injection;
  void FollowStates();

  ZelModel& model_;
  std::unique_ptr<Injection> injection_;
  Carried carried_;
  std::vector<double*> numbers_;
  std::vector<double> scales_;
  Eigen::Index stateCount_;
};

}  // namespace torvane
