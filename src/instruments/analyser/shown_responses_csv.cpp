#include "instruments/analyser/shown_responses_csv.h"

#include <optional>
#include <vector>

#include "core/csv.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"

namespace torvane {

namespace {

std::vector<int> ShownSlots(const FrequencyAnalyser& analyser) {
  std::vector<int> slots;
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    if (analyser.TraceAt(slot).Shown && analyser.HasData(slot)) slots.push_back(slot);
  }
  return slots;
}

std::string FieldOf(const std::optional<double>& value) {
  return value ? FormatShortest(*value) : std::string();
}

}  // namespace

std::string ShownResponsesCsv(FrequencyAnalyser& analyser) {
  const std::vector<int> slots = ShownSlots(analyser);
  const bool coherence = !slots.empty() && analyser.HasCoherence(slots.front());
  std::vector<std::string> line{"Frequency", "Gain", "Phase"};
  if (coherence) line.emplace_back("Coherence");
  for (std::size_t i = 1; i < slots.size(); ++i) {
    const std::string name = "Memory " + std::to_string(slots[i]);
    line.insert(line.end(), {name + " Gain", name + " Phase"});
  }
  std::string text = CsvLine(line);
  if (slots.empty()) return text;
  const int first = slots.front();
  const FrequencyAnalyser::Indices points = analyser.Points(first);
  for (int index = points.First; index < points.End; ++index) {
    const double hz = analyser.PointHz(first, index);
    line = {FormatShortest(hz), FormatShortest(analyser.GainOf(first, index)),
            FormatShortest(analyser.PhaseOf(first, index))};
    if (coherence) line.push_back(FormatShortest(analyser.Coherence(first, index)));
    for (std::size_t i = 1; i < slots.size(); ++i) {
      line.push_back(FieldOf(analyser.GainRead(slots[i], hz)));
      line.push_back(FieldOf(analyser.PhaseRead(slots[i], hz)));
    }
    text += CsvLine(line);
  }
  return text;
}

}  // namespace torvane
