#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/loop_parts.h"
#include "models/factories.h"

namespace torvane {

namespace {

/// Continuous PI loop around an integrating plant, with a power converter of limited bandwidth and
/// output and a filter in the feedback.
///
///     Command - Feedback = Error -> KP (1 + KI/s) -> limit -> Control -> power converter -> Power
///     Power -> G/s -> Response -> filter -> Feedback
class MAnalogPI final : public FusedModel<MAnalogPI> {
 public:
  explicit MAnalogPI(const std::string& name);

  struct Loop {
    double command = 0, error = 0, power = 0, feedback = 0, control = 0;
    State response, errorInt;
    LowPass2 powerConverter{900, Butterworth};
    LowPass2 feedbackFilter{900, Butterworth};
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(source_, s.response, s.errorInt, s.powerConverter, s.feedbackFilter,
                    generator_);
  }

 private:
  Constant kp_{Bench(), "KP", "", Adjustable(0.6, 0, 1000000),
               "Proportional gain: Control per Error"};
  Constant ki_{Bench(), "KI", "", Adjustable(100, 0, 10000),
               "Integral gain: below it the integral takes over (rad/s)"};
  Constant g_{Bench(), "G", "", Adjustable(500, 0.1, 100000),
              "Gain of the plant: Response rises by G times Power a second"};
  Constant powerHz_{Bench(), "Power", "Hz", Adjustable(800, 50, 2000),
                    "Bandwidth of the power converter"};
  Constant feedbackHz_{Bench(), "Feedback", "Hz", Adjustable(350, 50, 2000),
                       "Bandwidth of the feedback filter"};
  Constant sat_{Bench(), "Sat", "", Adjustable(100, 1, 10000), "Largest magnitude of Control"};
  Constant windUp_{Bench(), "Wind-up", "%", Adjustable(120, 100, 10000),
                   "Level past which the integral gives way, as a part of Sat"};

  Signals signals_{
      Bench(),
      {{loop_.command, "Command", "", Shown(10, 20), "Command of the loop"},
       {loop_.error, "Error", "", Hidden(10), "Error: Command less Feedback"},
       {loop_.power, "Power", "", Hidden(10), "Output of the power converter"},
       {loop_.feedback, "Feedback", "", Hidden(10), "Response as it is measured"},
       {loop_.control, "Control", "", Shown(10, -20), "Output of the controller, limited to Sat"},
       {loop_.response, "Response", "", Shown(10, 20), "Output of the plant"},
       {loop_.errorInt, "ErrorInt", "", Hidden(0.1), "Integral of Error"}}};
  OnBench<LowPass2> powerConverter_{Bench(), loop_.powerConverter};
  OnBench<LowPass2> feedbackFilter_{Bench(), loop_.feedbackFilter};

  Analysers analysers_{Bench(), 13, {.Amplitude = 2}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 10}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MAnalogPI::MAnalogPI(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX03-01.bmp", "BWTX03-01.txt");
  analysers_.AddSetup("Closed", "Command", "Response");
  analysers_.AddSetup("Open", "Error", "Feedback");
  analysers_.SetLoop(nullptr, [] { return ModelLoop{.Input = "Error", .Output = "Feedback"}; });
}

void MAnalogPI::HandOnChanges() {
  HandOn(powerHz_, [&](double hz) { loop_.powerConverter.SetFrequency(hz); });
  HandOn(feedbackHz_, [&](double hz) { loop_.feedbackFilter.SetFrequency(hz); });
}

void MAnalogPI::Equations(Loop& s, double /*t*/) {
  s.command = source_.Value();
  s.error = s.command - s.feedback;
  s.errorInt.Derivative = s.error;
  const double unlimited = (ki_.Value() * s.errorInt + s.error) * kp_.Value();
  const double windUp = sat_.Value() * windUp_.Value() * 0.01;
  s.control = LimitWithAntiWindUp(unlimited, s.error, s.errorInt, kp_.Value(), ki_.Value(),
                                  sat_.Value(), windUp);
  s.powerConverter.SetInput(s.control);
  s.power = s.powerConverter.Output();
  s.response.Derivative = g_.Value() * s.power;
  s.feedbackFilter.SetInput(s.response);
  s.feedback = s.feedbackFilter.Output();
}

}  // namespace

std::unique_ptr<ZelModel> MakeAnalogPI(const std::string& name) {
  return std::make_unique<MAnalogPI>(name);
}

}  // namespace torvane
