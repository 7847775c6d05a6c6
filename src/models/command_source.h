#pragma once

#include "core/bench.h"
#include "instruments/fft_analyser.h"
#include "instruments/swept_sine_analyser.h"
#include "library/wave.h"

namespace torvane {

/// The two analysers of a model: FFT and, hidden until it is asked for, swept sine.
struct Analysers {
  /// maxOrder: largest record of the FFT analyser, as a power of two.
  Analysers(ZelBenchTop& bench, int maxOrder)
      : Fft(bench, maxOrder), Swept(bench, "MainSweptDSA") {}

  ZelXfer Fft;
  ZelSweptDSA Swept;
};

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
