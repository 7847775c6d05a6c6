#pragma once

#include <functional>

#include "core/model.h"

namespace torvane::test {

/// Model with a time variable, a solver and no loop of its own: the test builds blocks on its bench
/// and says what an evaluation does.
class BareModel final : public ZelModel {
 public:
  explicit BareModel(double step = 1e-3, const DisplayDefaults& time = {})
      : ZelModel("Bare", step), time_(Bench(), "Time", "sec", time) {}

  void Derivatives(double t) override {
    if (Loop) Loop(t);
  }

  /// The signal of that name; the test fails loudly when there is none.
  Variable& Signal(const std::string& name) { return *Bench().FindVar(name); }
  double Slope(const std::string& state) {
    return dynamic_cast<StateVariable&>(Signal(state)).Derivative;
  }

  std::function<void(double t)> Loop;

 private:
  TimeVariable time_;
};

}  // namespace torvane::test
