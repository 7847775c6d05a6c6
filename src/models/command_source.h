#pragma once

#include "core/bench.h"
#include "library/wave.h"
#include "models/analysers.h"

namespace torvane {

/// Where a loop's command comes from: the FFT analyser while it measures, else the swept-sine
/// analyser while it sweeps, else the generator; what the meters excite is added.
class CommandSource {
 public:
  CommandSource(const ZelBenchTop& bench, const ZelWave& generator, const Analysers& analysers)
      : bench_(bench), generator_(generator), analysers_(analysers) {}

  double Value() const {
    if (analysers_.Fft.Measuring() || analysers_.Swept.Measuring() ||
        !bench_.Instruments(InstrumentKind::Meter).empty()) [[unlikely]] {
      return Excited();
    }
    return generator_.Output();
  }

 private:
  double Excited() const {
    const double now = bench_.Time();
    const double meters = bench_.MeterExcitation();
    if (analysers_.Fft.Measuring()) return analysers_.Fft.Excitation(now) + meters;
    if (analysers_.Swept.Measuring()) return analysers_.Swept.Excitation(now) + meters;
    return generator_.Output() + meters;
  }

  const ZelBenchTop& bench_;
  const ZelWave& generator_;
  const Analysers& analysers_;
};

}  // namespace torvane
