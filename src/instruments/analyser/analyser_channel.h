#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/variable.h"

namespace torvane {

/// A signal that an analyser measures, with what was measured in slot 0 (the current measurement)
/// and slots 1 to 4 (memories).
class AnalyserChannel {
 public:
  static constexpr int SlotCount = 5;

  explicit AnalyserChannel(const Variable& variable) : variable_(variable) {}
  AnalyserChannel(const AnalyserChannel&) = delete;
  AnalyserChannel& operator=(const AnalyserChannel&) = delete;
  virtual ~AnalyserChannel() = default;

  const std::string& Name() const { return variable_.Name(); }
  /// The name with the unit, for lists.
  std::string Label() const;

  /// Gain in dB and phase in degrees, in (-270, 90], of one bin or point of a slot. An index out of
  /// range is reported and reads 0.
  virtual double Gain(int slot, int index) = 0;
  virtual double Phase(int slot, int index) = 0;

  /// The share of the signal that the excitation explains, 0 to 1, where a slot's measurement was
  /// averaged; nothing elsewhere.
  std::optional<double> Coherence(int slot, int index) const;

 protected:
  const Variable& Signal() const { return variable_; }

  /// By bin or point; empty for a measurement that was not averaged.
  std::vector<float>& Coherences(int slot) { return coherences_[static_cast<std::size_t>(slot)]; }

 private:
  const Variable& variable_;
  std::array<std::vector<float>, SlotCount> coherences_;
};

}  // namespace torvane
