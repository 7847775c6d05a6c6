#include "instruments/analyser/analyser_channel.h"

namespace torvane {

std::string AnalyserChannel::Label() const {
  if (variable_.Unit().empty()) return variable_.Name();
  return variable_.Name() + " (" + variable_.Unit() + ")";
}

std::optional<double> AnalyserChannel::Coherence(int slot, int index) const {
  const std::vector<float>& coherences = coherences_[static_cast<std::size_t>(slot)];
  if (index < 0 || static_cast<std::size_t>(index) >= coherences.size()) return std::nullopt;
  return coherences[static_cast<std::size_t>(index)];
}

}  // namespace torvane
