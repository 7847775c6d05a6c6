#pragma once

#include <array>
#include <boost/numeric/odeint/stepper/runge_kutta4.hpp>
#include <cmath>

namespace torvane::bench {

/// The continuous part of "3-1 PI Controller" with default constants for Boost.odeint: the same
/// equations without the lag of one evaluation, as its systems are plain functions of state and
/// time.
class OdeintAnalogPI {
 public:
  using State = std::array<double, 6>;
  static constexpr double Step = 1e-5;

  void RunStep() {
    stepper_.do_step(Slopes, x_, t_, Step);
    t_ += Step;
  }
  double Output() const { return x_[0]; }

 private:
  // Response, ErrorInt, power converter (2), feedback filter (2).
  static void Slopes(const State& x, State& dx, double t) {
    constexpr double powerOmega = 800.0 * 2.0 * 3.1415926;
    constexpr double filterOmega = 350.0 * 2.0 * 3.1415926;
    constexpr double zeta = 0.707;
    const double cycles = t * 25.0;
    const double command = cycles - std::floor(cycles) < 0.5 ? 10.0 : -10.0;
    const double error = command - x[4];
    double control = (100.0 * x[1] + error) * 0.6;
    control = control > 100.0 ? 100.0 : (control < -100.0 ? -100.0 : control);
    dx[0] = 500.0 * x[2];
    dx[1] = error;
    dx[2] = x[3];
    dx[3] = powerOmega * powerOmega * (control - x[2]) - 2.0 * zeta * powerOmega * x[3];
    dx[4] = x[5];
    dx[5] = filterOmega * filterOmega * (x[0] - x[4]) - 2.0 * zeta * filterOmega * x[5];
  }

  boost::numeric::odeint::runge_kutta4<State> stepper_;
  State x_{};
  double t_ = 0.0;
};

}  // namespace torvane::bench
