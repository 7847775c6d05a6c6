#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "core/variable.h"

namespace torvane {

/// Scale and offset of one axis: a value v is drawn (v * multiplier + Offset) / Scale divisions
/// from the centre. The scale may be negative but never 0.
struct AxisScale {
  double Scale = 1.0;
  double Offset = 0.0;

  bool operator==(const AxisScale&) const = default;
};

/// A signal that a scope records, and how the scope shows it. Its settings are the scope's to
/// change.
class ZelChannel {
 public:
  explicit ZelChannel(Variable& variable)
      : vertical_{variable.DefaultScale(), variable.DefaultOffset()},
        horizontal_(vertical_),
        displayed_(variable.ShownByDefault()),
        variable_(variable) {}
  ZelChannel(const ZelChannel&) = delete;
  ZelChannel& operator=(const ZelChannel&) = delete;

  const std::string& Name() const { return variable_.Name(); }
  Variable& Signal() const { return variable_; }

  const AxisScale& Vertical() const { return vertical_; }
  const AxisScale& Horizontal() const { return horizontal_; }
  /// The trace is shown.
  bool Displayed() const { return displayed_; }
  /// This is the X axis.
  bool IsHorizontal() const { return isHorizontal_; }
  /// Index for TraceColourAt() while displayed.
  int Colour() const { return colour_; }

 private:
  friend class ZelScope;

  AxisScale vertical_;
  AxisScale horizontal_;
  bool displayed_;
  bool isHorizontal_ = false;
  int colour_ = -1;
  Variable& variable_;
};

/// A channel with its recording: a history ring, and two screens, of which one can be filled while
/// the other is kept.
template <typename Sample>
class RecordedChannel : public ZelChannel {
 public:
  static constexpr std::size_t ScreenCount = 2;

  /// A ring shorter than a screen is raised to the screen's length.
  RecordedChannel(Variable& variable, int ringLength, int screenLength)
      : ZelChannel(variable), ring_(Slot(ringLength < screenLength ? screenLength : ringLength)) {
    for (auto& screen : screens_) screen.resize(Slot(screenLength));
  }

  /// Stores the signal's present value, and gives what is stored.
  Sample Store(int ringIndex) {
    return ring_[Slot(ringIndex)] = static_cast<Sample>(Signal().Value);
  }
  /// Stores values that were sampled before, those of the given rows, from ringIndex on round the
  /// ring; into a screen as well, from index on round it, unless that is negative.
  void StoreAll(const double* values, std::span<const int> rows, int ringIndex, std::size_t screen,
                int index) {
    for (const int row : rows) {
      const auto sample = static_cast<Sample>(values[row]);
      ring_[Slot(ringIndex)] = sample;
      if (++ringIndex == static_cast<int>(ring_.size())) ringIndex = 0;
      if (index < 0) continue;
      screens_[screen][Slot(index)] = sample;
      if (++index == static_cast<int>(screens_[screen].size())) index = 0;
    }
  }
  void CopyToScreen(int ringIndex, std::size_t screen, int index) {
    screens_[screen][Slot(index)] = ring_[Slot(ringIndex)];
  }

  Sample RingValue(int index) const { return ring_[Slot(index)]; }
  Sample ScreenValue(std::size_t screen, int index) const { return screens_[screen][Slot(index)]; }

 protected:
  static std::size_t Slot(int index) { return static_cast<std::size_t>(index); }

  std::vector<Sample> ring_;

 private:
  std::array<std::vector<Sample>, ScreenCount> screens_;
};

/// Signals are kept in single precision.
using SignalChannel = RecordedChannel<float>;

/// The time axis. Times are kept as they are, for single precision would lose the samples' spacing
/// after a minute. Its history begins with plausible negative times, for screens that reach back
/// before time 0.
class ZelTimeChannel : public RecordedChannel<double> {
 public:
  ZelTimeChannel(Variable& timeVar, int ringLength, int screenLength)
      : RecordedChannel(timeVar, ringLength, screenLength) {
    FillHistory(Horizontal().Scale, screenLength);
  }

  /// The history of negative times, spaced for the given scale; to be called before any sample.
  void FillHistory(double scale, int screenLength);
};

/// Name and colour (0xRRGGBB) of a trace; the k-th displayed channel has colour k.
struct TraceColour {
  const char* Label;
  unsigned Rgb;
};
inline constexpr int TraceColourCount = 8;
/// Of the index-th displayed channel, from 0 to TraceColourCount - 1.
const TraceColour& TraceColourAt(int index);

}  // namespace torvane
