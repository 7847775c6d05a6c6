#include "kit/sources_at_rest.h"

#include "core/bench.h"
#include "instruments/generator/wave.h"
#include "instruments/meter/meter.h"

namespace torvane {

void RestSources(const ZelBenchTop& bench) {
  for (Instrument* const generator : bench.Instruments(InstrumentKind::WaveGenerator)) {
    dynamic_cast<ZelWave&>(*generator).SetAmplitude(0.0);
  }
  for (Instrument* const meter : bench.Instruments(InstrumentKind::Meter)) {
    dynamic_cast<ZelMeter&>(*meter).SetUseExcitation(false);
  }
}

}  // namespace torvane
