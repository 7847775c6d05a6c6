#include <algorithm>
#include <cmath>
#include <functional>

#include "core/constant.h"
#include "instruments/generator/wave.h"
#include "loops/shipped.h"

// Loops that no built-in model is a pattern for, beside closed forms and an integration of their
// own equations that shares nothing with the engine.

namespace torvane::loops {
namespace {

using Row = std::vector<double>;
using Slopes = std::function<Row(const Row&)>;

/// Classical Runge-Kutta with steps far shorter than the loop's.
Row Integrated(Row x, const Slopes& slopes, double duration, double step) {
  const auto moved = [](const Row& from, const Row& along, double by) {
    Row to = from;
    for (std::size_t i = 0; i < to.size(); ++i) to[i] += by * along[i];
    return to;
  };
  for (long left = std::lround(duration / step); left > 0; --left) {
    const Row k1 = slopes(x);
    const Row k2 = slopes(moved(x, k1, step / 2));
    const Row k3 = slopes(moved(x, k2, step / 2));
    const Row k4 = slopes(moved(x, k3, step));
    for (std::size_t i = 0; i < x.size(); ++i) {
      x[i] += step / 6 * (k1[i] + 2 * k2[i] + 2 * k3[i] + k4[i]);
    }
  }
  return x;
}

/// The source gives a step one step of the solver after time 0, and long enough.
std::unique_ptr<ZelModel> Stepped(const std::string& name) {
  auto model = ShippedLoop(name);
  auto* const wave =
      dynamic_cast<ZelWave*>(model->Bench().Instruments(InstrumentKind::WaveGenerator).front());
  wave->SetWaveform(static_cast<int>(Waveform::Square));
  wave->SetFreqHz(1e-6);
  return model;
}

double At(ZelModel& model, double afterStep, const char* signal) {
  const double h = model.Solver().Step();
  model.Solver().RunUntil(afterStep + 0.5 * h);
  return model.Bench().FindVar(signal)->Value;
}

TEST(FurtherLoopsTest, IntegralControlOfADeadTimeGoesByTheMethodOfSteps) {
  const auto model = Stepped("DeadTimePlant");
  const double k = 10;
  const double dead = 0.05;
  for (double t = 0.02; t < 0.5; t += 0.02) {
    double expected = 0;
    double factor = -1;
    for (int n = 1; n * dead < t; ++n) {
      factor *= -k / n;
      expected += factor * std::pow(t - n * dead, n);
    }
    // Between steps the delayed signal goes on straight lines: K^2 h^2 / 8 and less.
    EXPECT_NEAR(At(*model, t, "Response"), expected, 2e-3 * model->Solver().Step() / 1e-4) << t;
  }
}

TEST(FurtherLoopsTest, StateFeedbackIsTheLoopThatItWasPlacedFor) {
  const auto model = Stepped("StateFeedback");
  const double w = 2 * 3.14159265358979 * 5;
  const double zeta = 0.8;
  const double root = std::sqrt(1 - zeta * zeta);
  for (double t = 0.01; t < 0.4; t += 0.01) {
    const double expected = 1 - std::exp(-zeta * w * t) *
                                    (std::cos(root * w * t) + zeta / root * std::sin(root * w * t));
    // The observer begins with the right state, so it is not seen: what is left is the method's.
    EXPECT_NEAR(At(*model, t, "Position"), expected, 1e-6) << t;
  }
}

TEST(FurtherLoopsTest, OwnPidGoesAsItsEquations) {
  const auto model = Stepped("OwnPID");
  // Position, speed, integral, filtered error.
  const Slopes slopes = [](const Row& x) {
    const double error = 0.1 - x[0];
    const double filtering = 500 * (error - x[3]);
    const double wanted = 400 * error + x[2] + 30 * filtering;
    const double force = std::clamp(wanted, -1000.0, 1000.0);
    return Row{x[1], force - 2 * x[1] - 50 * x[0], wanted == force ? 2000 * error : 0, filtering};
  };
  Row x(4, 0.0);
  double now = 0;
  for (const double t : {0.001, 0.01, 0.05, 0.1, 0.3, 0.8}) {
    x = Integrated(x, slopes, t - now, 1e-6);
    now = t;
    // Where the limit ends within a step, the method is of the first order.
    EXPECT_NEAR(At(*model, t, "Position"), x[0], 2e-6) << t;
  }
}

TEST(FurtherLoopsTest, TemperatureLoopGoesAsItsDifferenceEquations) {
  const auto model = Stepped("TemperatureLoop");
  double oven = 20;
  double measured = 20;
  double integral = 0;
  for (int sample = 0; sample < 200; ++sample) {
    // At the first sample the source has not begun.
    const double error = (sample == 0 ? 0 : 120) - measured;
    const double unlimited = 40 * error + integral;
    const double power = std::clamp(unlimited, 0.0, 2000.0);
    if (power == unlimited) integral += 40 * error * 5 / 400;
    // Two first-order lags in a row, exactly.
    const double final = 20 + 0.15 * power;
    const double slow = std::exp(-5 / (0.15 * 5000));
    const double fast = std::exp(-5.0 / 20);
    const double part = 0.15 * 5000 / (0.15 * 5000 - 20);
    measured =
        final + part * (oven - final) * slow + (measured - final - part * (oven - final)) * fast;
    oven = final + (oven - final) * slow;
    // A sample acts from within the step on at which it falls due: 0.4 K/s for some of 0.1 s.
    EXPECT_NEAR(At(*model, 5 * (sample + 1), "Temperature"), oven, 0.03) << sample;
    EXPECT_NEAR(At(*model, 5 * (sample + 1), "Measured"), measured, 0.03) << sample;
  }
}

TEST(FurtherLoopsTest, CascadeWithANotchGoesAsItsEquations) {
  const auto model = Stepped("CascadeNotch");
  const double w = 2 * 3.1415926 * 530;
  const double wc = 2 * 3.1415926 * 1000;
  // Integral, notch (2), current (2), motor and load velocity and position.
  const Slopes slopes = [=](const Row& x) {
    const double error = 60 * (0.1 - x[7]) - x[5];
    const double u = 0.4 * (error + 40 * x[0]);
    const double y = u + x[1];
    const double shaft = 0.05 * (x[5] - x[6]) + 2000 * (x[7] - x[8]);
    return Row{error,
               x[2] - 2 * 0.5 * w * y,
               w * w * (u - y),
               x[4],
               wc * wc * (y - x[3]) - 2 * 0.707 * wc * x[4],
               (x[3] - shaft) / 0.0002,
               shaft / 0.0018,
               x[5],
               x[6]};
  };
  Row x(9, 0.0);
  double now = 0;
  for (double t = 0.005; t < 0.1; t += 0.005) {
    x = Integrated(x, slopes, t - now, 2e-6);
    now = t;
    // Three blocks in a row answer an evaluation late: some 10 us of a loop of 60 rad/s.
    EXPECT_NEAR(At(*model, t, "pL"), x[8], 2e-4) << t;
  }
}

}  // namespace
}  // namespace torvane::loops
