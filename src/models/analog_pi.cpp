#include "instruments/scope/scope.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

/// Continuous PI loop around an integrating plant, with a power converter of limited bandwidth and
/// output and a filter in the feedback.
class MAnalogPI final : public ZelModel {
 public:
  explicit MAnalogPI(const std::string& name);
  void Derivatives(double t) override;

  auto States() {
    return std::tuple_cat(std::tie(response_, errorInt_), powerConverter_.States(),
                          feedbackFilter_.States());
  }
  auto Blocks() { return std::tie(powerConverter_, feedbackFilter_, generator_); }

 private:
  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MAnalogPI>>(Bench(), 1e-5, *this));

  Constant kp_{Bench(), "KP", "", 0.6, 0, 1000000};
  Constant ki_{Bench(), "KI", "", 100, 0, 10000};
  Constant g_{Bench(), "G", "", 500, 0.1, 100000};
  Constant powerHz_{Bench(), "Power", "Hz", 800, 50, 2000};
  Constant feedbackHz_{Bench(), "Feedback", "Hz", 350, 50, 2000};
  Constant sat_{Bench(), "Sat", "", 100, 1, 10000};
  Constant windUp_{Bench(), "Wind-up", "%", 120, 100, 10000};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable command_{Bench(), "Command", "", Shown(10, 20)};
  Variable error_{Bench(), "Error", "", Hidden(10)};
  Variable power_{Bench(), "Power", "", Hidden(10)};
  Variable feedback_{Bench(), "Feedback", "", Hidden(10)};
  Variable control_{Bench(), "Control", "", Shown(10, -20)};
  StateVariable response_{Bench(), "Response", "", 0, Shown(10, 20)};
  StateVariable errorInt_{Bench(), "ErrorInt", "", 0, Hidden(0.1)};

  ZelLowPass2 powerConverter_{Bench(), 900, Butterworth};
  ZelLowPass2 feedbackFilter_{Bench(), 900, Butterworth};
  Analysers analysers_{Bench(), 13, {.Amplitude = 2}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 10}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MAnalogPI::MAnalogPI(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX03-01.bmp", "BWTX03-01.txt");
  analysers_.AddSetup("Closed", "Command", "Response");
  analysers_.AddSetup("Open", "Error", "Feedback");
}

void MAnalogPI::Derivatives(double /*t*/) {
  HandOn(powerHz_, [&](double hz) { powerConverter_.SetFrequency(hz); });
  HandOn(feedbackHz_, [&](double hz) { feedbackFilter_.SetFrequency(hz); });
  command_.Value = source_.Value();
  error_.Value = command_.Value - feedback_.Value;
  errorInt_.Derivative = error_.Value;
  const double unlimited = (ki_.Value() * errorInt_.Value + error_.Value) * kp_.Value();
  const double windUp = sat_.Value() * windUp_.Value() * 0.01;
  control_.Value = LimitWithAntiWindUp(unlimited, error_.Value, errorInt_, kp_.Value(), ki_.Value(),
                                       sat_.Value(), windUp);
  powerConverter_.SetInput(control_.Value);
  power_.Value = powerConverter_.Output();
  response_.Derivative = g_.Value() * power_.Value;
  feedbackFilter_.SetInput(response_.Value);
  feedback_.Value = feedbackFilter_.Output();
}

}  // namespace

std::unique_ptr<ZelModel> MakeAnalogPI(const std::string& name) {
  return std::make_unique<MAnalogPI>(name);
}

}  // namespace torvane
