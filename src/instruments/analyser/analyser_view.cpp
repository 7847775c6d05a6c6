// What an analyser's view makes of its responses.

#include "instruments/analyser/analyser.h"

namespace torvane {

void FrequencyAnalyser::SetView(const ResponseView& view) {
  if (responseView_ == view) return;
  Change(
      [&] {
        responseView_ = view;
        for (int slot = 0; slot < SlotCount; ++slot) See(slot);
        MarkStale();
      },
      [] { return "View"; });
}

void FrequencyAnalyser::See(int slot) {
  ResponseSlot& trace = SlotOf(slot);
  trace.Seen.reset();
  if (responseView_.Derives() && !OutputOnly()) trace.Seen = trace.Held.Seen(responseView_);
}

std::optional<double> FrequencyAnalyser::Read(ResponseQuantity quantity, int slot,
                                              double hz) const {
  if (slot < 0 || slot >= SlotCount || !HasData(slot)) return std::nullopt;
  return ShownResponse(slot).Read(quantity, hz);
}

}  // namespace torvane
