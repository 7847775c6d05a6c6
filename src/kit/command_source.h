#pragma once

#include "core/bench.h"
#include "instruments/generator/wave.h"
#include "kit/analysers.h"

namespace torvane {

/// Where a loop's command comes from: the FFT analyser while it measures, else the swept-sine
/// analyser while it sweeps, else the generator; what the meters excite is added. None of them
/// moves within a step.
class CommandSource {
 public:
  CommandSource(const ZelBenchTop& bench, const ZelWave& generator, const Analysers& analysers)
      : bench_(bench), generator_(generator), analysers_(analysers) {}

  /// Asks whether an instrument has a part in the command; nothing changes that within a run.
  void BeginRun() {
    metersExcite_ = bench_.MetersExcite();
    excited_ = analysers_.Fft.Measuring() || analysers_.Swept.Measuring() ||
               !bench_.Instruments(InstrumentKind::Meter).empty();
  }

  /// Takes the command of the step that begins at t.
  void BeginStep(double t) {
    value_ = generator_.Output();
    if (excited_) [[unlikely]] {
      value_ = Excited(t);
    }
  }

  double Value() const { return value_; }

 private:
  double Excited(double now) const {
    const double meters = metersExcite_ ? bench_.MeterExcitation(now) : 0.0;
    if (analysers_.Fft.Measuring()) return analysers_.Fft.Excitation(now) + meters;
    if (analysers_.Swept.Measuring()) return analysers_.Swept.Excitation(now) + meters;
    return generator_.Output() + meters;
  }

  const ZelBenchTop& bench_;
  const ZelWave& generator_;
  const Analysers& analysers_;
  bool excited_ = false;
  bool metersExcite_ = false;
  double value_ = 0.0;
};

}  // namespace torvane
