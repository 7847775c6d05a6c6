#include "instruments/scope/scope.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

/// Continuous PI loop around an integrating plant, with a power converter of limited bandwidth and
/// output and a filter in the feedback.
///
///     Command - Feedback = Error -> KP (1 + KI/s) -> limit -> Control -> power converter -> Power
///     Power -> G/s -> Response -> filter -> Feedback
class MAnalogPI final : public ZelModel {
 public:
  explicit MAnalogPI(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }

 private:
  friend class FusedSolver<MAnalogPI>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(source_, s.response, s.errorInt, s.powerConverter, s.feedbackFilter,
                    generator_);
  }

  FusedSolver<MAnalogPI>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MAnalogPI>>(Bench(), 1e-5, *this));

  Constant kp_{Bench(), "KP", "", 0.6, 0, 1000000};
  Constant ki_{Bench(), "KI", "", 100, 0, 10000};
  Constant g_{Bench(), "G", "", 500, 0.1, 100000};
  Constant powerHz_{Bench(), "Power", "Hz", 800, 50, 2000};
  Constant feedbackHz_{Bench(), "Feedback", "Hz", 350, 50, 2000};
  Constant sat_{Bench(), "Sat", "", 100, 1, 10000};
  Constant windUp_{Bench(), "Wind-up", "%", 120, 100, 10000};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    using OnBench::OnBench;

    Variable command{Bench(), "Command", "", Shown(10, 20)};
    Variable error{Bench(), "Error", "", Hidden(10)};
    Variable power{Bench(), "Power", "", Hidden(10)};
    Variable feedback{Bench(), "Feedback", "", Hidden(10)};
    Variable control{Bench(), "Control", "", Shown(10, -20)};
    StateVariable response{Bench(), "Response", "", 0, Shown(10, 20)};
    StateVariable errorInt{Bench(), "ErrorInt", "", 0, Hidden(0.1)};
    ZelLowPass2 powerConverter{Bench(), 900, Butterworth};
    ZelLowPass2 feedbackFilter{Bench(), 900, Butterworth};
  };
  Loop loop_{Bench()};

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

void MAnalogPI::HandOnChanges() {
  HandOn(powerHz_, [&](double hz) { loop_.powerConverter.SetFrequency(hz); });
  HandOn(feedbackHz_, [&](double hz) { loop_.feedbackFilter.SetFrequency(hz); });
}

void MAnalogPI::Equations(Loop& s, double /*t*/) {
  s.command.Value = source_.Value();
  s.error.Value = s.command.Value - s.feedback.Value;
  s.errorInt.Derivative = s.error.Value;
  const double unlimited = (ki_.Value() * s.errorInt.Value + s.error.Value) * kp_.Value();
  const double windUp = sat_.Value() * windUp_.Value() * 0.01;
  s.control.Value = LimitWithAntiWindUp(unlimited, s.error.Value, s.errorInt, kp_.Value(),
                                        ki_.Value(), sat_.Value(), windUp);
  s.powerConverter.SetInput(s.control.Value);
  s.power.Value = s.powerConverter.Output();
  s.response.Derivative = g_.Value() * s.power.Value;
  s.feedbackFilter.SetInput(s.response.Value);
  s.feedback.Value = s.feedbackFilter.Output();
}

}  // namespace

std::unique_ptr<ZelModel> MakeAnalogPI(const std::string& name) {
  return std::make_unique<MAnalogPI>(name);
}

}  // namespace torvane
