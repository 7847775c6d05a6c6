#include "ui/panes/instrument_windows.h"

#include <utility>

#include "ui/panes/analyser/swept_window.h"
#include "ui/panes/analyser/xfer_window.h"
#include "ui/panes/meter_window.h"
#include "ui/panes/scope/scope_window.h"
#include "ui/panes/wave_gen_window.h"

namespace torvane {

std::unique_ptr<InstrumentPane> MakeInstrumentPane(Instrument& instrument, ZelBenchTop& bench) {
  switch (instrument.Kind()) {
    case InstrumentKind::Scope:
      return std::make_unique<ScopeWindow>(static_cast<ZelScope&>(instrument), bench);
    case InstrumentKind::WaveGenerator:
      return std::make_unique<WaveGenWindow>(static_cast<ZelWave&>(instrument));
    case InstrumentKind::Meter:
      return std::make_unique<MeterWindow>(static_cast<ZelMeter&>(instrument), bench);
    case InstrumentKind::FftAnalyser:
      return std::make_unique<XferWindow>(static_cast<ZelXfer&>(instrument), bench);
    case InstrumentKind::SweptSine:
      return std::make_unique<SweptWindow>(static_cast<ZelSweptDSA&>(instrument), bench);
  }
  return nullptr;
}

std::vector<std::unique_ptr<InstrumentPane>> MakeInstrumentPanes(ZelBenchTop& bench) {
  std::vector<std::unique_ptr<InstrumentPane>> panes;
  for (const InstrumentKind kind : AllInstrumentKinds) {
    for (Instrument* instrument : bench.Instruments(kind)) {
      if (auto pane = MakeInstrumentPane(*instrument, bench)) panes.push_back(std::move(pane));
    }
  }
  return panes;
}

}  // namespace torvane
