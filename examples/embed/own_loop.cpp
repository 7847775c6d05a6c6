// A model class of one's own: a speed loop with a generator, a scope and both analysers on it, run
// and measured as the built-in ones are.

#include <torvane/core/constant.h>
#include <torvane/instruments/scope/scope.h>
#include <torvane/kit/command_source.h>
#include <torvane/kit/fused_model.h>
#include <torvane/kit/loop_parts.h>
#include <torvane/library/low_pass1.h>
#include <torvane/models/catalogue.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <tuple>

#include "measuring.h"
#include "reports.h"

namespace {

using torvane::Adjustable;
using torvane::Constant;
using torvane::LowPass1;
using torvane::Shown;

/// Proportional control of a speed that is measured through a filter.
///
///     Command - Measured = Error -> Gain -> 1/s -> Speed -> filter -> Measured
class SpeedLoop final : public torvane::FusedModel<SpeedLoop> {
 public:
  explicit SpeedLoop(const std::string& name) : FusedModel(name, 1e-5) {
    analysers_.AddSetup("Closed", "Command", "Speed");
    analysers_.AddSetup("Open", "Error", "Measured");
    analysers_.SetLoop(nullptr,
                       [] { return torvane::ModelLoop{.Input = "Error", .Output = "Measured"}; });
  }

  // All that moves in a step: plain numbers, copied as a whole.
  struct Loop {
    double command = 0, error = 0, measured = 0;
    torvane::State speed;
    LowPass1 sensor{100};
  };
  Loop loop_;

  // Constants that changed, once before a run.
  void HandOnChanges() {
    torvane::HandOn(sensorHz_, [this](double hz) { loop_.sensor.SetFrequency(hz); });
  }

  // Four times a step.
  void Equations(Loop& s, double /*t*/) {
    s.command = source_.Value();
    s.measured = s.sensor.Output();
    s.error = s.command - s.measured;
    s.speed.Derivative = gain_.Value() * s.error;
    s.sensor.SetInput(s.speed);
  }

  // What time drives, in the order in which it is registered below.
  auto Parts(Loop& s) { return std::tie(source_, s.speed, s.sensor, generator_); }

 private:
  Constant gain_{Bench(), "Gain", "", Adjustable(200, 0, 10000),
                 "Proportional gain: Speed per second and Error"};
  Constant sensorHz_{Bench(), "Sensor", "Hz", Adjustable(100, 1, 1000), "Bandwidth of the sensor"};
  torvane::Signals signals_{Bench(),
                            {{loop_.command, "Command", "rad/s", Shown(1, 2), "Wanted speed"},
                             {loop_.error, "Error", "rad/s", torvane::Hidden(1), "Error"},
                             {loop_.measured, "Measured", "rad/s", torvane::Hidden(1), "As read"},
                             {loop_.speed, "Speed", "rad/s", Shown(1, 2), "Real speed"}}};
  torvane::OnBench<LowPass1> sensor_{Bench(), loop_.sensor};
  torvane::Analysers analysers_{Bench(), 13};
  torvane::ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 10, .Amplitude = 1}};
  torvane::CommandSource source_{Bench(), generator_, analysers_};
  torvane::ZelScope scope_{Bench(), "MainScope"};
};

}  // namespace

int main() {
  const Reports reports;
  torvane::Catalogue catalogue;
  catalogue.Add({"Speed loop", "own_loop.cpp", std::make_unique<SpeedLoop, const std::string&>});
  const std::unique_ptr<torvane::ZelModel> model = catalogue.Load("Speed loop");
  if (!model) return EXIT_FAILURE;

  const torvane::Margins margins = MeasureMargins(*model, "Error", "Measured", 0.0005);
  Print(margins);
  const auto* const margin = margins.SmallestPhaseMargin();
  if (!margin) return EXIT_FAILURE;

  // |Gain/s / (1 + s/p)| = 1 at the crossing; integrator and sensor lag 90 degrees and atan(w/p).
  const double p = torvane::TwoPi * 100.0;
  const double w = p * std::sqrt((std::sqrt(1.0 + 4.0 * 200.0 * 200.0 / (p * p)) - 1.0) / 2.0);
  const double expected = 90.0 - std::atan(w / p) * torvane::RadToDeg;
  std::cout << "By hand: " << torvane::FormatShortest(expected) << " deg at "
            << torvane::FormatShortest(w / torvane::TwoPi) << " Hz\n";
  const bool good = std::abs(margin->Value - expected) < 0.5 &&
                    std::abs(margin->Hz * torvane::TwoPi / w - 1.0) < 0.01;
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
