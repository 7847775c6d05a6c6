#pragma once

#include <string>

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

 protected:
  const Variable& Signal() const { return variable_; }

 private:
  const Variable& variable_;
};

}  // namespace torvane
