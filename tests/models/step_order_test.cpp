#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "library/low_pass2.h"
#include "models/loop.h"
#include "support/bare_model.h"

// How near the continuous loop 3-1 comes to the equations that it stands for.

namespace torvane {
namespace {

constexpr double KP = 0.6;
constexpr double KI = 100.0;
constexpr double G = 500.0;
constexpr double Command = 10.0;
constexpr double End = 0.004;  // on the way up, where the response moves fastest
constexpr double Zeta = 0.707;

/// The six linear equations without lag: the response, the integral of the error, and position and
/// rate of the two second-order filters.
using State = std::array<double, 6>;

State Slopes(const State& x) {
  const double w1 = 2.0 * 3.1415926 * 800.0;
  const double w2 = 2.0 * 3.1415926 * 350.0;
  const double error = Command - x[4];
  const double control = (KI * x[1] + error) * KP;
  return {G * x[2], error,
          x[3],     w1 * w1 * (control - x[2]) - 2.0 * Zeta * w1 * x[3],
          x[5],     w2 * w2 * (x[0] - x[4]) - 2.0 * Zeta * w2 * x[5]};
}

State Add(State x, double h, const State& slope) {
  for (std::size_t i = 0; i < x.size(); ++i) x[i] += h * slope[i];
  return x;
}

/// The response to a step of the command. With 20 000 steps of a fourth-order method the error is
/// far below all that is compared with it.
double ExactResponse() {
  constexpr int Steps = 20000;
  constexpr double h = End / Steps;
  State x{};
  for (int k = 0; k < Steps; ++k) {
    const State k1 = Slopes(x);
    const State k2 = Slopes(Add(x, 0.5 * h, k1));
    const State k3 = Slopes(Add(x, 0.5 * h, k2));
    const State k4 = Slopes(Add(x, h, k3));
    for (std::size_t i = 0; i < x.size(); ++i) {
      x[i] += h / 6.0 * (k1[i] + 2.0 * k2[i] + 2.0 * k3[i] + k4[i]);
    }
  }
  return x[0];
}

/// 3-1 from the library's blocks, without limits, at any step.
double BlockResponse(double step) {
  test::BareModel model(step);
  StateVariable response(model.Bench(), "Response", "", 0.0);
  StateVariable integral(model.Bench(), "ErrorInt", "", 0.0);
  ZelLowPass2 power(model.Bench(), 800.0, Zeta);
  ZelLowPass2 feedback(model.Bench(), 350.0, Zeta);
  double fed = 0.0;
  model.Loop = [&](double) {
    const double error = Command - fed;
    integral.Derivative = error;
    power.SetInput((KI * integral.Value + error) * KP);
    response.Derivative = G * power.Output();
    feedback.SetInput(response.Value);
    fed = feedback.Output();
  };
  // Short of the end by half a step: the sum of steps may not reach it.
  model.Solver().RunUntil(End - 0.5 * step);
  return response.Value;
}

TEST(StepOrder, TheContinuousLoopApproachesItsEquationsInFirstOrder) {
  const double exact = ExactResponse();
  const auto error = [&](double step) { return BlockResponse(step) - exact; };
  // Two blocks in the loop lag by an evaluation, half a step at most. The response moves by up to
  // G KP command = 3000 a second while the converter follows, 0.03 in a step: that is the bound.
  EXPECT_LT(std::abs(error(1e-5)), 1e-5 * G * KP * Command);
  // Halving the step halves the error; what is left of the second order is a thousandth
  // of it here.
  for (const double step : {2e-5, 1e-5, 5e-6}) {
    EXPECT_NEAR(error(step) / error(0.5 * step), 2.0, 0.01) << step;
  }

  // The model does the same at its own step, to the bit.
  test::Loop model("3-1 PI Controller", {{"Sat", "10000"}});
  model.Generate(Command);
  model.Run(End - 0.5e-5);
  EXPECT_EQ(model["Response"], BlockResponse(1e-5));
}

}  // namespace
}  // namespace torvane
