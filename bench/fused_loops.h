#pragma once

#include <array>
#include <cmath>

#include "fused_rk4.h"

namespace torvane::bench {

// Model loops with their default constants as an expert would write them by hand: one flat
// structure, no registry, no virtual calls. They follow the models' equations in the same order and
// give the same trajectories to the bit, which the benchmark checks before it measures.

/// "3-1 PI Controller".
class FusedAnalogPI {
 public:
  static constexpr const char* Model = "3-1 PI Controller";
  static constexpr double Step = 1e-5;

  void RunStep() {
    FusedStep(x_, t_, Step, [this](double, const auto& x, auto& dx) { Evaluate(x, dx); });
    if (pendingSet_) {
      x_[ErrorInt] = pending_;
      pendingSet_ = false;
    }
    wave_.EndStep(t_ + Step);
    command_ = wave_.Value;
    t_ += Step;
  }
  double Output() const { return x_[Response]; }

 private:
  enum { Response, ErrorInt, P1, P2, F1, F2, Count };
  using State = std::array<double, Count>;

  void Evaluate(const State& x, State& dx) {
    const double error = command_ - feedback_;
    dx[ErrorInt] = error;
    double control = (100.0 * x[ErrorInt] + error) * 0.6;
    constexpr double sat = 100.0;
    constexpr double windUp = sat * 120.0 * 0.01;
    if (control > sat) {
      if (control > windUp) Pend((windUp / 0.6 - error) / 100.0, x[ErrorInt], 1.0);
      control = sat;
    } else if (control < -sat) {
      if (control < -windUp) Pend((-windUp / 0.6 - error) / 100.0, x[ErrorInt], -1.0);
      control = -sat;
    }
    dx[Response] = 500.0 * powerOut_;
    feedback_ = feedbackOut_;
    dx[P1] = x[P2];
    dx[P2] = power_.OmegaSquared * (control - x[P1]) - power_.TwoZetaOmega * x[P2];
    powerOut_ = x[P1];
    dx[F1] = x[F2];
    dx[F2] = filter_.OmegaSquared * (x[Response] - x[F1]) - filter_.TwoZetaOmega * x[F2];
    feedbackOut_ = x[F1];
  }
  void Pend(double bound, double integral, double side) {
    if (side * integral > side * bound) {
      pending_ = bound;
      pendingSet_ = true;
    }
  }

  State x_{};
  double t_ = 0.0;
  double command_ = 0.0;
  double feedback_ = 0.0;
  double powerOut_ = 0.0;
  double feedbackOut_ = 0.0;
  double pending_ = 0.0;
  bool pendingSet_ = false;
  FusedLowPass2 power_ = FusedLowPass2::At(800, 0.707);
  FusedLowPass2 filter_ = FusedLowPass2::At(350, 0.707);
  FusedSquare wave_{25, 10};
};

/// Sampled loop parts: the clock's tick and the controller's limit.
struct FusedClock {
  double Period;
  double Next = 0.0;
  bool Due = false;
  void Tick(double t) {
    Due = t >= Next;
    if (Due) Next += Period;
  }
};

inline double FusedLimit(double u, double error, double kvp, double& integrator) {
  constexpr double level = 20.0 * 1.2;
  if (u > level) {
    integrator = level / kvp - error;
  } else if (u < -level) {
    integrator = -level / kvp - error;
  }
  return u > 20.0 ? 20.0 : (u < -20.0 ? -20.0 : u);
}

/// "2-1 PI+ Controller".
class FusedPiPlus {
 public:
  static constexpr const char* Model = "2-1 PI+ Controller";
  static constexpr double Step = 1e-5;

  void RunStep() {
    FusedStep(x_, t_, Step, [this](double t, const auto& x, auto& dx) { Evaluate(t, x, dx); });
    wave_.EndStep(t_ + Step);
    command_ = wave_.Value * 0.10471975333333333;
    t_ += Step;
  }
  double Output() const { return x_[VM]; }

 private:
  enum { VM, PM, L1, L2, Count };
  using State = std::array<double, Count>;

  void Evaluate(double t, const State& x, State& dx) {
    if (clock_.Due) Sample(x[PM]);
    dx[VM] = loopOut_ * 1.0 / 0.002;
    dx[PM] = x[VM];
    dx[L1] = x[L2];
    dx[L2] = loop_.OmegaSquared * (loop_.U - x[L1]) - loop_.TwoZetaOmega * x[L2];
    loopOut_ = x[L1];
    clock_.Tick(t);
  }
  void Sample(double position) {
    constexpr double period = 0.00025;
    constexpr double kvi = 100.0;
    constexpr double kvp = 0.72;
    const double direct = 0.01 * 65.0;
    const double feedback = (position - previousPM_) / period;
    previousPM_ = position;
    filtered_ = ((direct + kvi * period) * command_ + filtered_ - direct * previousCommand_) /
                (kvi * period + 1.0);
    previousCommand_ = command_;
    const double error = filtered_ - feedback;
    integrator_ += error * period * kvi;
    loop_.U = FusedLimit((error + integrator_) * kvp + 0.0, error, kvp, integrator_);
  }

  State x_{};
  double t_ = 0.0;
  double command_ = 0.0;
  double previousPM_ = 0.0;
  double filtered_ = 0.0;
  double previousCommand_ = 0.0;
  double integrator_ = 0.0;
  double loopOut_ = 0.0;
  FusedClock clock_{0.00025};
  FusedLowPass2 loop_ = FusedLowPass2::At(800, 0.707);
  FusedSquare wave_{25, 20};
};

/// "6-1 PID Controller".
class FusedPid {
 public:
  static constexpr const char* Model = "6-1 PID Controller";
  static constexpr double Step = 1e-5;

  void RunStep() {
    FusedStep(x_, t_, Step, [this](double t, const auto& x, auto& dx) { Evaluate(t, x, dx); });
    wave_.EndStep(t_ + Step);
    command_ = wave_.Value * 0.10471975333333333;
    t_ += Step;
  }
  double Output() const { return x_[VM]; }

 private:
  enum { VM, PM, L1, L2, Count };
  using State = std::array<double, Count>;

  void Evaluate(double t, const State& x, State& dx) {
    if (clock_.Due) Sample(t, x[VM]);
    if (t >= outputInstant_) loop_.U = current_;
    dx[VM] = loopOut_ * 1.0 / 0.002;
    dx[PM] = x[VM];
    dx[L1] = x[L2];
    dx[L2] = loop_.OmegaSquared * (loop_.U - x[L1]) - loop_.TwoZetaOmega * x[L2];
    loopOut_ = x[L1];
    clock_.Tick(t);
  }
  void Sample(double t, double feedback) {
    constexpr double period = 0.00025;
    constexpr double kvi = 100.0;
    constexpr double kvp = 0.72;
    const double a = std::exp(-kvi * period);
    filtered_ = (1.0 - a) * command_ + a * filtered_;
    const double error = 1.0 * command_ + (1.0 - 1.0) * filtered_ - feedback;
    const double d = (error - previousError_) * 0.0 / period;
    previousError_ = error;
    const double b = std::exp(-6.2831852 * 2000.0 * period);
    derivative_ = (1.0 - b) * d + b * derivative_;
    integrator_ += error * period * kvi;
    current_ = FusedLimit((error + integrator_ + derivative_) * kvp + 0.0, error, kvp, integrator_);
    outputInstant_ = t + 0.01 * 65.0 * period;
  }

  State x_{};
  double t_ = 0.0;
  double command_ = 0.0;
  double current_ = 0.0;
  double outputInstant_ = 0.0;
  double filtered_ = 0.0;
  double previousError_ = 0.0;
  double derivative_ = 0.0;
  double integrator_ = 0.0;
  double loopOut_ = 0.0;
  FusedClock clock_{0.00025, 0.0};
  FusedLowPass2 loop_ = FusedLowPass2::At(800, 0.707);
  FusedSquare wave_{25, 20};
};

/// "15-1 Resonance".
class FusedResonance {
 public:
  static constexpr const char* Model = "15-1 Resonance";
  static constexpr double Step = 5e-5;

  FusedResonance() {
    constexpr double omega = 6.2831852 * 800.0;
    const double root = omega * std::sqrt(1.0 - 0.707 * 0.707) * Period;
    a1_ = -2.0 * std::exp(-(0.707 * omega * Period)) * std::cos(root);
    a2_ = std::exp(-2.0 * 0.707 * omega * Period);
    b0_ = 1.0 + a1_ + a2_;
  }

  void RunStep() {
    FusedStep(x_, t_, Step, [this](double t, const auto& x, auto& dx) { Evaluate(t, x, dx); });
    wave_.EndStep(t_ + Step);
    command_ = wave_.Value * 0.10471975333333333;
    t_ += Step;
  }
  double Output() const { return x_[VL]; }

 private:
  enum { VM, PM, VL, PL, L1, L2, Count };
  using State = std::array<double, Count>;
  static constexpr double Period = 0.00025;

  void Evaluate(double t, const State& x, State& dx) {
    if (clock_.Due) Sample(t);
    if (t >= outputInstant_) loop_.U = current_;
    const double torque = 1.0 * loopOut_;
    // The sampled positions are copies of the mechanism's outputs and so lag once more.
    motorPosition_ = motorOut_;
    loadPosition_ = loadOut_;
    const double shaft = (x[VM] - 1.0 * x[VL]) * 0.5 + (x[PM] - 1.0 * x[PL]) * 2000.0;
    dx[VM] = (torque - shaft) / 0.0002;
    dx[PM] = x[VM];
    dx[VL] = shaft / 0.0018;
    dx[PL] = x[VL];
    motorOut_ = x[PM];
    loadOut_ = x[PL];
    dx[L1] = x[L2];
    dx[L2] = loop_.OmegaSquared * (loop_.U - x[L1]) - loop_.TwoZetaOmega * x[L2];
    loopOut_ = x[L1];
    clock_.Tick(t);
  }
  void Sample(double t) {
    constexpr double kvp = 0.72;
    const double motor = (motorPosition_ - previousPM_) / Period;
    const double load = (loadPosition_ - previousPL_) / Period;
    previousPM_ = motorPosition_;
    previousPL_ = loadPosition_;
    const double feedback = 1.0 * motor + (1.0 - 1.0) * load;
    const double error = 0.01 * 100.0 * command_ - feedback;  // no integral gain
    current_ = FusedLimit((error + 0.0) * kvp + 0.0, error, kvp, unused_);
    current_ -= (motor - load) * 0.0;
    const double y = b0_ * current_ - a1_ * y1_ - a2_ * y2_;
    y2_ = y1_;
    y1_ = y;
    current_ = y;
    outputInstant_ = t + 0.01 * 65.0 * Period;
  }

  State x_{};
  double t_ = 0.0;
  double command_ = 0.0;
  double current_ = 0.0;
  double outputInstant_ = 0.0;
  double previousPM_ = 0.0;
  double previousPL_ = 0.0;
  double motorPosition_ = 0.0;
  double loadPosition_ = 0.0;
  double motorOut_ = 0.0;
  double loadOut_ = 0.0;
  double loopOut_ = 0.0;
  double unused_ = 0.0;
  double a1_;
  double a2_;
  double b0_;
  double y1_ = 0.0;
  double y2_ = 0.0;
  FusedClock clock_{Period};
  FusedLowPass2 loop_ = FusedLowPass2::At(800, 0.707);
  FusedSquare wave_{25, 20};
};

}  // namespace torvane::bench
