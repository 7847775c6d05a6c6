#pragma once

#include <memory>
#include <vector>

#include "core/bench.h"
#include "ui/panes/instrument_pane.h"

namespace torvane {

/// A window for the instrument; nullptr for kinds that have none.
std::unique_ptr<InstrumentPane> MakeInstrumentPane(Instrument& instrument, ZelBenchTop& bench);

/// Windows for the instruments that the bench lists, in the order in which they are laid out. Kinds
/// that have no window are passed over.
std::vector<std::unique_ptr<InstrumentPane>> MakeInstrumentPanes(ZelBenchTop& bench);

}  // namespace torvane
