#include "core/constant.h"
#include "core/numeric.h"
#include "instruments/scope/scope.h"
#include "library/d_controller.h"
#include "library/wave.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

// Class memory: the three previous outputs and the sign of the dither.
struct Memory {
  double Y1 = 0.0;
  double Y2 = 0.0;
  double Y3 = 0.0;
  double Sign = 1.0;
};
Memory memory;

/// Sampled low-pass with a triple pole and quantised arithmetic: shows limit cycles, and how dither
/// breaks them.
///
///     Input -> (1 - p)^3 / (1 - p/z)^3, each product in whole counts -> + dither -> Output
class MLimitCycles final : public ZelModel {
 public:
  explicit MLimitCycles(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override { memory = {}; }

 private:
  friend class FusedSolver<MLimitCycles>;

  enum Quantising { Float, Round, Truncate };

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(s.clock, generator_); }
  void Sample(Loop& s);
  double Filtered(double x) const;

  FusedSolver<MLimitCycles>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MLimitCycles>>(Bench(), 1e-5, *this));

  Constant pole_{Bench(), "Pole", "", 0.85, 0.001, 0.999};
  Constant tSample_{Bench(), "TSample", "Sec", 0.001, 0.0001, 100};
  Constant res_{Bench(), "Res", "Counts", 0.001, 1e-7, 100};
  Constant dither_{Bench(), "Dither", "Counts", 0, 0, 10000};
  Constant quantize_{Bench(), "Quantize?", {"Float", "Round", "Truncate"}, Round};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    Loop(ZelBenchTop& bench, double period) : OnBench(bench), clock(bench, period) {}

    Variable input{Bench(), "Input", "", Shown(0.1, -0.6)};
    Variable output{Bench(), "Output", "", Shown(0.1, -0.6)};
    ZelDController clock;
  };
  Loop loop_{Bench(), tSample_.Default()};

  // Between these levels the filter circles after each edge.
  ZelWave generator_{
      Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 3, .Amplitude = 0.2, .Offset = 0.7}};
  ZelScope scope_{Bench(), "MainScope"};
};

MLimitCycles::MLimitCycles(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX05-02.bmp", "BWTX05-02.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.05);
  scope_.Trigger().SetLevel(generator_.Settings().Offset);
}

double MLimitCycles::Filtered(double x) const {
  const double p = pole_.Value();
  const double in = (1.0 - p) * (1.0 - p) * (1.0 - p) * x;
  const double back1 = 3.0 * p * memory.Y1;
  const double back2 = 3.0 * p * p * memory.Y2;
  const double back3 = p * p * p * memory.Y3;
  if (quantize_.Choice() == Float) return in + back1 - back2 + back3;

  // The input term is truncated in both quantised forms.
  const double res = res_.Value();
  const auto quantise = quantize_.Choice() == Round ? RoundToStep : FloorToStep;
  return FloorToStep(in, res) + quantise(back1, res) - quantise(back2, res) + quantise(back3, res) +
         dither_.Value() * res * memory.Sign;
}

void MLimitCycles::Sample(Loop& s) {
  s.input.Value = generator_.Output();
  s.output.Value = Filtered(s.input.Value);
  memory.Y3 = memory.Y2;
  memory.Y2 = memory.Y1;
  // A run that overflowed must not carry on into the next one.
  memory.Y1 = std::isfinite(s.output.Value) ? s.output.Value : 0.0;
  memory.Sign = -memory.Sign;
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
