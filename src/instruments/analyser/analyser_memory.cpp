// What a slot of an analyser holds: its own measurement, or a response from elsewhere.

#include <algorithm>
#include <string>
#include <utility>

#include "core/messages.h"
#include "instruments/analyser/analyser.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

void FrequencyAnalyser::LoadMemory(int slot, ResponseCurve curve, std::string name) {
  if (slot < 1 || slot >= SlotCount || curve.empty()) return;
  for (ResponsePoint& point : curve) point.Phase = OneTurn(point.Phase);
  const bool hasCoherence = std::any_of(
      curve.begin(), curve.end(), [](const ResponsePoint& point) { return point.Coherence < 1.0; });
  Hold(slot, {ResponseSource::Loaded, std::move(name), std::move(curve), hasCoherence}, {});
}

void FrequencyAnalyser::LoadMemory(int slot, Response response, TraceOrigin origin) {
  if (slot > 0 && slot < SlotCount) Hold(slot, std::move(response), std::move(origin));
}

void FrequencyAnalyser::Hold(int slot, Response response, TraceOrigin origin) {
  ResponseSlot held;
  held.Enabled = held.Shown = true;
  held.Record.Origin = std::move(origin);
  held.Held = std::move(response);
  SlotOf(slot) = std::move(held);
  See(slot);
  Changed();
}

bool FrequencyAnalyser::CopyFrom(const FrequencyAnalyser& other, int slot,
                                 const std::string& title) {
  if (!other.HasData(0) || other.OutputOnly()) {
    Note("There is no measurement to store.");
    return false;
  }
  const Response& from = other.ResponseAt(0);
  const ResponseSubject& of = from.Subject();
  LoadMemory(slot, from.Loaded(title + " " + of.Output + " / " + of.Input), other.Origin(0));
  return true;
}

std::string FrequencyAnalyser::SlotName(int slot) {
  if (slot == TheorySlot) return "Theory";
  return slot == 0 ? "Current" : "Memory " + std::to_string(slot);
}

FrequencyAnalyser::Trace FrequencyAnalyser::TraceAt(int slot) const {
  if (slot == TheorySlot) return {ShowsTheory(), ShowsTheory()};
  return away_ ? Trace() : KeptTrace(slot);
}

FrequencyAnalyser::Trace FrequencyAnalyser::KeptTrace(int slot) const {
  const ResponseSlot& trace = SlotAt(slot);
  if (trace.Dropped && slot > 0) return {};
  return {trace.Enabled, trace.Shown};
}

bool FrequencyAnalyser::HasData(int slot) const {
  const ResponseSlot& trace = SlotAt(slot);
  return !trace.Held.Empty() && !trace.Dropped &&
         (slot == 0 || slot == TheorySlot || trace.Enabled);
}

void FrequencyAnalyser::MakeResponse(int slot) {
  ResponseSlot& trace = SlotOf(slot);
  if (trace.Dropped) return;
  if (trace.Held.Source() == ResponseSource::Measured) trace.Held = Measured(slot);
  See(slot);
  MarkStale();
}

void FrequencyAnalyser::MakeResponses() {
  for (int slot = 0; slot <= TheorySlot; ++slot) MakeResponse(slot);
}

Response FrequencyAnalyser::Measured(int slot) const {
  const MeasuredRecord& record = RecordOf(slot);
  if (!input_ || !output_ || !record.Whole()) return {};
  if (!OutputOnly() && !record.TellsResponse()) return {};
  const int end = RecordEnd(slot);
  ResponseCurve points;
  points.reserve(static_cast<std::size_t>(end));
  for (int index = 0; index < end; ++index) {
    const double gain = Difference(&AnalyserChannel::Gain, slot, index);
    const bool power = OutputOnly() || record.Excited[static_cast<std::size_t>(index)];
    points.push_back({RecordHz(slot, index), gain, WrappedPhase(slot, index),
                      Coherence(slot, index), power && gain > NoGain});
  }
  const bool hasCoherence = !OutputOnly() && output_->Coherence(slot, 0).has_value();
  Response response(ResponseSource::Measured, {}, std::move(points), hasCoherence, record.Bins);
  response.SetSubject({input_->Name(), output_->Name(), record.AccurateUpTo, phaseAdd_});
  std::vector<std::string> doubts = record.Doubts;
  if (!OutputOnly()) {
    for (std::string& doubt : PairDoubts(slot)) doubts.push_back(std::move(doubt));
  }
  response.Doubt(std::move(doubts));
  return response;
}

void FrequencyAnalyser::ClearCurrent() {
  ResponseSlot& current = SlotOf(0);
  current.Dropped = false;
  current.Record = {};
  current.Held = {};
  current.Seen.reset();
  MarkStale();
}

void FrequencyAnalyser::DropMeasurements() {
  for (ResponseSlot& slot : slots_) slot.Dropped = slot.Held.Source() == ResponseSource::Measured;
}

void FrequencyAnalyser::TakeUpMeasurements(const BinSpacing& bins) {
  for (int slot = 0; slot < SlotCount; ++slot) {
    if (!SlotAt(slot).Dropped || RecordOf(slot).Bins != bins) continue;
    SlotOf(slot).Dropped = false;
    MakeResponse(slot);
  }
  Changed();
}

std::vector<std::string> FrequencyAnalyser::ShownDoubts() const {
  std::vector<std::string> doubts;
  for (int slot = 0; slot <= TheorySlot; ++slot) {
    if (!TraceAt(slot).Shown || !HasData(slot)) continue;
    const std::string name = SlotName(slot) + ": ";
    for (const std::string& doubt : ResponseAt(slot).Doubts()) {
      doubts.push_back(name);
      doubts.back() += doubt;
    }
  }
  if (ShowsTheory() && !theoryFault_.empty()) doubts.push_back("No theory: " + theoryFault_ + ".");
  return doubts;
}

// A loop's input is moved by what else acts on the loop, as its output is.
double FrequencyAnalyser::Coherence(int slot, int index) const {
  if (OutputOnly()) return 1.0;
  return std::min(input_->Coherence(slot, index).value_or(1.0),
                  output_->Coherence(slot, index).value_or(1.0));
}

SetupFinding FrequencyAnalyser::AveragesRefusal() {
  return {SetupFinding::Kind::Refusal, "Averages must be 1 to " + std::to_string(MaxAverages), {}};
}

void FrequencyAnalyser::SetAverages(int count) {
  if (!CanAverage(count)) {
    Error(AveragesRefusal().Text);
  } else {
    Store(averages_, count, "Averages");
  }
}

std::vector<std::string> FrequencyAnalyser::Warnings() const {
  for (const InstrumentKind kind : {InstrumentKind::FftAnalyser, InstrumentKind::SweptSine}) {
    for (const Instrument* other : bench_.Instruments(kind)) {
      if (other == this || !other->Measuring() || !Measuring()) continue;
      return {"Two analysers measure at once: only one of them excites the model."};
    }
  }
  return {};
}

}  // namespace torvane
