#include <cmath>
#include <functional>

#include "loops/shipped.h"

// What each block that is no built-in model's computes, beside its closed form. The library's
// filters, controllers and mechanism are tested by the twins.

namespace torvane::loops {
namespace {

struct BlockCase {
  const char* Name;
  const char* Declaration;  ///< of "b", with t as its input
  std::function<double(double t)> Expected;
  double Tolerance;
};
void PrintTo(const BlockCase& block, std::ostream* stream) {
  *stream << block.Name;
}

double Sampled(double t, double period) {
  return std::floor(t / period + 1e-9) * period;
}

class BlockTest : public testing::TestWithParam<BlockCase> {};

TEST_P(BlockTest, ComputesItsClosedForm) {
  const LoopReading reading =
      ReadLoop(std::string("model B Real x = b.y; Torvane.") + GetParam().Declaration +
               "; annotation(experiment(Interval = 0.001)); end B;");
  for (const Problem& problem : reading.Problems) ADD_FAILURE() << problem.Text;
  ASSERT_TRUE(reading.Plan);
  const auto model = MakeLoop("B", reading.Plan);
  for (int step = 1; step <= 3000; ++step) {
    model->Solver().RunUntil((step - 0.5) * 0.001);
    // A signal is as the step's last evaluation left it.
    const double t = step * 0.001;
    ASSERT_NEAR(model->Bench().FindVar("x")->Value, GetParam().Expected(t), GetParam().Tolerance)
        << t;
  }
}

// A ramp through 1/(s + 2), (s + 3)/((s + 1)(s + 2)) = 2/(s + 1) - 1/(s + 2), and a resonance.
double Lag(double t, double a) {
  return (t - (1 - std::exp(-a * t)) / a) / a;
}
// A signal is what the last stage of a step computed, which is right to the step's third power.
constexpr double Stage = 1e-9;
constexpr double Rounding = 1e-11;

std::vector<BlockCase> Cases() {
  return {
      BlockCase{"TransferFunction", "Continuous.TransferFunction b(u = time, b = {3}, a = {3, 6})",
                [](double t) { return Lag(t, 2); }, Stage},
      BlockCase{"Biproper", "Continuous.TransferFunction b(u = time, b = {1, 3}, a = {1, 2})",
                [](double t) { return t + Lag(t, 2); }, Stage},
      BlockCase{"ZerosAndPoles",
                "Continuous.ZerosAndPoles b(u = time, zeros = {{-3, 0}}, "
                "poles = {{-1, 0}, {-2, 0}}, k = 1)",
                [](double t) { return 2 * Lag(t, 1) - Lag(t, 2); }, Stage},
      BlockCase{"StateSpace",
                "Continuous.StateSpace b(u = time, A = {{-1, 0}, {0, -2}}, B = {2, 1}, "
                "C = {1, -1}, D = 0.5)",
                [](double t) { return 2 * Lag(t, 1) - Lag(t, 2) + 0.5 * t; }, Stage},
      BlockCase{"DeadTime", "Continuous.DeadTime b(u = time, T = 0.7503)",
                [](double t) { return std::max(0.0, t - 0.7503); }, 2e-3},
      BlockCase{"Limiter", "Nonlinear.Limiter b(u = time, yMax = 2, yMin = 0.5)",
                [](double t) { return std::clamp(t, 0.5, 2.0); }, Rounding},
      BlockCase{"DeadZone", "Nonlinear.DeadZone b(u = time - 1.5, uMax = 1, uMin = -0.5)",
                [](double t) { return std::max(0.0, t - 2.5) + std::min(0.0, t - 1); }, Rounding},
      BlockCase{"Quantiser", "Nonlinear.Quantiser b(u = time + 0.0003, step = 0.25)",
                [](double t) { return std::floor((t + 0.0003) / 0.25 + 0.5) * 0.25; }, Rounding},
      BlockCase{"Table", "Nonlinear.Table b(u = time, table = {{0.5, 1}, {1, 3}, {2, -1}})",
                [](double t) {
                  if (t < 0.5) return 1.0;
                  if (t < 1) return 1 + 4 * (t - 0.5);
                  return t < 2 ? 3 - 4 * (t - 1) : -1.0;
                },
                1e-9},
      // Following a ramp of 1/s at 0.5/s.
      BlockCase{"SlewRateLimiter", "Nonlinear.SlewRateLimiter b(u = time, rising = 0.5, Td = 0.01)",
                [](double t) { return 0.5 * t; }, 0.006},
      BlockCase{"ZeroOrderHold",
                "Discrete.ZeroOrderHold b(u = time, samplePeriod = 0.1, delay = 0.0253)",
                [](double t) { return std::max(0.0, Sampled(t - 0.0258, 0.1)); }, 1e-3},
      // y(k + 1) = 0.5 y(k) + u(k), with u = 1.
      BlockCase{"SampledTransferFunction",
                "Discrete.TransferFunction b(u = 1, b = {1}, a = {1, -0.5}, samplePeriod = 0.1)",
                [](double t) { return 2 - 2 * std::pow(0.5, std::floor((t - 5e-4) / 0.1)); },
                Rounding},
      BlockCase{"UnitDelay", "Discrete.UnitDelay b(u = time, samplePeriod = 0.1)",
                [](double t) { return std::max(0.0, Sampled(t - 1e-3, 0.1) - 0.1); }, 1.6e-3},
  };
}

INSTANTIATE_TEST_SUITE_P(Blocks, BlockTest, testing::ValuesIn(Cases()),
                         [](const auto& block) { return block.param.Name; });

}  // namespace
}  // namespace torvane::loops
