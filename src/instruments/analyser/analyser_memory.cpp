// What a slot of an analyser holds: its own measurement, or a response from elsewhere.

#include <algorithm>
#include <utility>

#include "core/messages.h"
#include "instruments/analyser/analyser.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

void FrequencyAnalyser::LoadMemory(int slot, ResponseCurve curve, std::string name) {
  if (slot < 1 || slot >= SlotCount || curve.empty()) return;
  auto loaded = std::make_unique<Loaded>();
  for (ResponsePoint& point : curve) {
    point.Phase = OneTurn(point.Phase);
    loaded->Frequencies.push_back(point.Hz);
  }
  loaded->Curve = std::move(curve);
  loaded->Name = std::move(name);
  loaded_[static_cast<std::size_t>(slot)] = std::move(loaded);
  traces_[static_cast<std::size_t>(slot)] = {true, true};
  Changed();
}

const std::string& FrequencyAnalyser::LoadedFrom(int slot) const {
  static const std::string nowhere;
  const Loaded* loaded = LoadedAt(slot);
  return loaded ? loaded->Name : nowhere;
}

double FrequencyAnalyser::LoadedValue(int slot, int index, double ResponsePoint::*value) const {
  const ResponseCurve& curve = LoadedAt(slot)->Curve;
  if (index < 0 || static_cast<std::size_t>(index) >= curve.size()) return 0.0;
  return curve[static_cast<std::size_t>(index)].*value;
}

bool FrequencyAnalyser::HasData(int slot) const {
  return LoadedAt(slot) ? TraceAt(slot).Enabled : HasRecord(slot);
}

FrequencyAnalyser::Range FrequencyAnalyser::DataRange(int slot) const {
  const Loaded* loaded = LoadedAt(slot);
  if (!loaded) return RecordRange(slot);
  return {loaded->Frequencies.front(), loaded->Frequencies.back()};
}

double FrequencyAnalyser::IndexAt(int slot, double hz) const {
  const Loaded* loaded = LoadedAt(slot);
  return loaded ? IndexAmong(loaded->Frequencies, hz) : RecordIndexAt(slot, hz);
}

FrequencyAnalyser::Indices FrequencyAnalyser::Points(int slot) const {
  const Loaded* loaded = LoadedAt(slot);
  if (!loaded) return RecordPoints(slot);
  return {0, static_cast<int>(loaded->Curve.size())};
}

double FrequencyAnalyser::PointHz(int slot, int index) const {
  return LoadedAt(slot) ? LoadedValue(slot, index, &ResponsePoint::Hz) : RecordHz(slot, index);
}

bool FrequencyAnalyser::Excited(int slot, int index) const {
  const Loaded* loaded = LoadedAt(slot);
  if (!loaded) return OutputOnly() || RecordExcited(slot, index);
  return index >= 0 && static_cast<std::size_t>(index) < loaded->Curve.size() &&
         loaded->Curve[static_cast<std::size_t>(index)].Excited;
}

bool FrequencyAnalyser::HasCoherence(int slot) const {
  if (const Loaded* loaded = LoadedAt(slot)) {
    return std::any_of(loaded->Curve.begin(), loaded->Curve.end(),
                       [](const ResponsePoint& point) { return point.Coherence < 1.0; });
  }
  return !OutputOnly() && output_ && output_->Coherence(slot, 0).has_value();
}

// A loop's input is moved by what else acts on the loop, as its output is.
double FrequencyAnalyser::Coherence(int slot, int index) const {
  if (LoadedAt(slot)) return LoadedValue(slot, index, &ResponsePoint::Coherence);
  if (OutputOnly() || !input_ || !output_) return 1.0;
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
