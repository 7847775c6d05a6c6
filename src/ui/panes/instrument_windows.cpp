#include "ui/panes/instrument_windows.h"

#include "ui/panes/scope_window.h"
#include "ui/panes/wave_gen_window.h"

namespace torvane {

std::vector<std::unique_ptr<InstrumentPane>> MakeInstrumentPanes(ZelBenchTop& bench) {
  std::vector<std::unique_ptr<InstrumentPane>> panes;
  for (Instrument* instrument : bench.Instruments(InstrumentKind::Scope)) {
    panes.push_back(std::make_unique<TZelScopeF>(static_cast<ZelScope&>(*instrument), bench));
  }
  for (Instrument* instrument : bench.Instruments(InstrumentKind::WaveGenerator)) {
    panes.push_back(std::make_unique<TZelWaveGenF>(static_cast<ZelWave&>(*instrument)));
  }
  return panes;
}

}  // namespace torvane
