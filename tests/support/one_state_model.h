#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "core/model.h"

namespace torvane::test {

/// Model of the one state "x", whose equation the test gives: dx/dt = f(t, x).
class OneStateModel : public ZelModel {
 public:
  using Equation = std::function<double(double t, double x)>;

  OneStateModel(double step, double initialValue, Equation equation)
      : ZelModel("One state", step),
        X(Bench(), "x", "volts", initialValue),
        equation_(std::move(equation)) {}

  void Derivatives(double t) override { X.Derivative = equation_(t, X.Value); }

  TimeVariable T{Bench(), "Time", "sec", {}};
  Variable First{Bench(), "first", ""};
  StateVariable X;

 private:
  Equation equation_;
};

/// Time-driven object that runs what the test gives.
class OnTime : public TimeDriven {
 public:
  OnTime(ZelBenchTop& bench, std::function<void(double t)> action) : action_(std::move(action)) {
    bench.AddTimeDriven(*this);
  }
  void AtTime(double t) override { action_(t); }

 private:
  std::function<void(double t)> action_;
};

}  // namespace torvane::test
