#include "core/constant.h"
#include "core/numeric.h"
#include "instruments/generator/wave.h"
#include "instruments/scope/scope.h"
#include "kit/fused_model.h"
#include "kit/loop_parts.h"
#include "library/d_controller.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MLimitCyclesMemory {
  double Y1 = 0.0;  ///< the three previous outputs
  double Y2 = 0.0;
  double Y3 = 0.0;
  double Sign = 1.0;  ///< of the dither

  void Carry(Carried& carried) {
    carried.Number(Y1);
    carried.Number(Y2);
    carried.Number(Y3);
    carried.Keep(Sign);
  }
};

/// Sampled low-pass with a triple pole and quantised arithmetic: shows limit cycles, and how dither
/// breaks them.
///
///     Input -> (1 - p)^3 / (1 - p/z)^3, each product in whole counts -> + dither -> Output
class MLimitCycles final : public FusedModel<MLimitCycles, MLimitCyclesMemory> {
 public:
  explicit MLimitCycles(const std::string& name);

  enum Quantising { Float, Round, Truncate };

  struct Loop {
    double input = 0, output = 0;
    ControllerClock clock;
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(s.clock, generator_); }

 private:
  void Sample(Loop& s);
  double Filtered(double x) const;

  Constant pole_{Bench(), "Pole", "", Adjustable(0.85, 0.001, 0.999),
                 "The filter's triple pole, per sample"};
  Constant tSample_{Bench(), "TSample", "Sec", Adjustable(0.001, 0.0001, 100),
                    "Time between two samples"};
  Constant res_{Bench(), "Res", "Counts", Adjustable(0.001, 1e-7, 100),
                "Smallest step of the filter's numbers"};
  Constant dither_{Bench(), "Dither", "Counts", Adjustable(0, 0, 10000),
                   "Size of the alternating dither, in steps of Res"};
  Constant quantize_{
      Bench(),
      "Quantize?",
      {"Float", "Round", "Truncate"},
      Round,
      "How the filter's terms become multiples of Res: not at all, to the nearest, down"};

  Signals signals_{Bench(),
                   {{loop_.input, "Input", "", Shown(0.1, -0.6), "The generator as sampled"},
                    {loop_.output, "Output", "", Shown(0.1, -0.6), "Output of the filter"}}};
  ZelDController clock_{Bench(), tSample_.Default(), &loop_.clock};

  // Between these levels the filter circles after each edge.
  ZelWave generator_{
      Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 3, .Amplitude = 0.2, .Offset = 0.7}};
  ZelScope scope_{Bench(), "MainScope"};
};

MLimitCycles::MLimitCycles(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX05-02.bmp", "BWTX05-02.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.05);
  scope_.Trigger().SetLevel(generator_.Settings().Offset);
}

double MLimitCycles::Filtered(double x) const {
  const double p = pole_.Value();
  const double in = (1.0 - p) * (1.0 - p) * (1.0 - p) * x;
  const double back1 = 3.0 * p * memory_.Y1;
  const double back2 = 3.0 * p * p * memory_.Y2;
  const double back3 = p * p * p * memory_.Y3;
  if (quantize_.Choice() == Float) return in + back1 - back2 + back3;

  // The input term is truncated in both quantised forms.
  const double res = res_.Value();
  const auto quantise = quantize_.Choice() == Round ? RoundToStep : FloorToStep;
  return FloorToStep(in, res) + quantise(back1, res) - quantise(back2, res) + quantise(back3, res) +
         dither_.Value() * res * memory_.Sign;
}

void MLimitCycles::Sample(Loop& s) {
  s.input = generator_.Output();
  s.output = Filtered(s.input);
  memory_.Y3 = memory_.Y2;
  memory_.Y2 = memory_.Y1;
  // A run that overflowed must not carry on into the next one.
  memory_.Y1 = std::isfinite(s.output) ? s.output : 0.0;
  memory_.Sign = -memory_.Sign;
}

void MLimitCycles::HandOnChanges() {
  HandOn(tSample_, [&](double period) { loop_.clock.SetPeriod(period); });
}

void MLimitCycles::Equations(Loop& s, double /*t*/) {
  if (s.clock.SampleDue()) Sample(s);
}

}  // namespace

std::unique_ptr<ZelModel> MakeLimitCycles(const std::string& name) {
  return std::make_unique<MLimitCycles>(name);
}

}  // namespace torvane
