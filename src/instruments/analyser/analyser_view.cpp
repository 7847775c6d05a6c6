// What an analyser's view makes of its responses.

#include <cmath>
#include <utility>

#include "instruments/analyser/analyser.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

void FrequencyAnalyser::ChangeAxes(Touches touches, const std::function<void()>& change,
                                   const Caption& caption) {
  Change(
      [&] {
        change();
        if (touches == Touches::View) {
          for (int slot = 0; slot <= TheorySlot; ++slot) See(slot);
        }
        if (touches != Touches::Cursors) MarkStale();
      },
      caption);
}

void FrequencyAnalyser::See(int slot) {
  ResponseSlot& trace = SlotOf(slot);
  trace.Seen.reset();
  if (View().Derives() && !OutputOnly()) trace.Seen = trace.Held.Seen(View());
  if (View().Unwrapped && (slot == 0 || slot == TheorySlot)) TurnTheory();
}

void FrequencyAnalyser::SetTheory(PairTheory theory) {
  for (ResponsePoint& point : theory.Curve) point.Phase = OneTurn(point.Phase + phaseAdd_);
  Response response(ResponseSource::Computed, "Theory", std::move(theory.Curve), false);
  response.SetSubject({input_->Name(), output_->Name(), theory.AccurateUpTo, phaseAdd_});
  response.Doubt(std::move(theory.Notes));
  const bool tells =
      theory.Fault != theoryFault_ || response.Doubts() != ResponseAt(TheorySlot).Doubts();
  ResponseSlot slot;
  slot.Held = std::move(response);
  SlotOf(TheorySlot) = std::move(slot);
  theoryFault_ = std::move(theory.Fault);
  See(TheorySlot);
  tells ? Changed() : MarkStale();
}

void FrequencyAnalyser::DropTheory() {
  SlotOf(TheorySlot) = {};
  theoryFault_.clear();
}

void FrequencyAnalyser::TurnTheory() {
  ResponseSlot& theory = SlotOf(TheorySlot);
  if (!theory.Seen || !HasData(0)) return;
  for (const ResponsePoint& point : ShownResponse(0).Curve()) {
    const auto phase = theory.Seen->Read(ResponseQuantity::Phase, point.Hz);
    if (!point.Trusted() || !phase) continue;
    theory.Seen->TurnBy(std::round((point.Phase - *phase) / Turn));
    return;
  }
}

std::optional<double> FrequencyAnalyser::Read(ResponseQuantity quantity, int slot,
                                              double hz) const {
  if (slot < 0 || slot > TheorySlot || !HasData(slot)) return std::nullopt;
  return ShownResponse(slot).Read(quantity, hz);
}

}  // namespace torvane
