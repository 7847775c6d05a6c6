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
  for (int slot = 0; slot <= FrequencyAnalyser::TheorySlot; ++slot) {
    if (analyser.TraceAt(slot).Shown && analyser.HasData(slot)) slots.push_back(slot);
  }
  return slots;
}

std::string FieldOf(const std::optional<double>& value) {
  return value ? FormatShortest(*value) : std::string();
}

}  // namespace

std::string ShownResponsesCsv(const FrequencyAnalyser& analyser) {
  const std::vector<int> slots = ShownSlots(analyser);
  const bool coherence = !slots.empty() && analyser.HasCoherence(slots.front());
  std::vector<std::string> line{"Frequency", "Gain", "Phase"};
  if (coherence) line.emplace_back("Coherence");
  for (std::size_t i = 1; i < slots.size(); ++i) {
    const std::string name = FrequencyAnalyser::SlotName(slots[i]);
    line.insert(line.end(), {name + " Gain", name + " Phase"});
  }
  std::string text;
  for (const std::string& doubt : analyser.ShownDoubts()) text += "# " + doubt + "\n";
  text += CsvLine(line);
  if (slots.empty()) return text;
  const Response& first = analyser.ShownResponse(slots.front());
  for (const ResponsePoint& point : first.Curve()) {
    line = {FormatShortest(point.Hz), FormatShortest(point.Gain), FormatShortest(point.Phase)};
    if (coherence) line.push_back(FormatShortest(point.Coherence));
    for (std::size_t i = 1; i < slots.size(); ++i) {
      line.push_back(FieldOf(analyser.GainRead(slots[i], point.Hz)));
      line.push_back(FieldOf(analyser.PhaseRead(slots[i], point.Hz)));
    }
    text += CsvLine(line);
  }
  return text;
}

}  // namespace torvane
