// What an analyser's view makes of its responses.

#include "instruments/analyser/analyser.h"

namespace torvane {

void FrequencyAnalyser::ChangeAxes(Touches touches, const std::function<void()>& change,
                                   const Caption& caption) {
  Change(
      [&] {
        change();
        if (touches == Touches::View) {
          for (int slot = 0; slot < SlotCount; ++slot) See(slot);
        }
        if (touches != Touches::Cursors) MarkStale();
      },
      caption);
}

void FrequencyAnalyser::See(int slot) {
  ResponseSlot& trace = SlotOf(slot);
  trace.Seen.reset();
  if (View().Derives() && !OutputOnly()) trace.Seen = trace.Held.Seen(View());
}

std::optional<double> FrequencyAnalyser::Read(ResponseQuantity quantity, int slot,
                                              double hz) const {
  if (slot < 0 || slot >= SlotCount || !HasData(slot)) return std::nullopt;
  return ShownResponse(slot).Read(quantity, hz);
}

}  // namespace torvane
