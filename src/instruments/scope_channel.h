#pragma once

#include <string>
#include <vector>

#include "core/variable.h"

namespace torvane {

/// Scale and offset of one axis: a value v is drawn (v * multiplier + Offset) / Scale divisions
/// from the centre. The scale may be negative but never 0.
struct AxisScale {
  double Scale = 1.0;
  double Offset = 0.0;
};

/// One recorded signal of a scope: a history ring, the screen's values and their pixels.
/// Samples are kept in single precision.
class ZelChannel {
 public:
  ZelChannel(Variable& variable, int ringLength, int screenLength);
  virtual ~ZelChannel() = default;

  const std::string& Name() const { return variable_.Name(); }
  Variable& Signal() const { return variable_; }
  int ScreenLength() const { return static_cast<int>(screen_.size()); }

  AxisScale Vertical;
  AxisScale Horizontal;
  bool Displayed = false;
  bool IsHorizontal = false;
  int Colour = -1;  ///< index into TraceColours() while displayed

  void Store(int ringIndex);
  void StoreToScreen(int ringIndex, int screenIndex);
  void CopyToScreen(int ringIndex, int screenIndex);

  float RingValue(int index) const { return ring_[static_cast<std::size_t>(index)]; }
  float ScreenValue(int index) const { return screen_[static_cast<std::size_t>(index)]; }
  void SetScreenValue(int index, float value) { screen_[static_cast<std::size_t>(index)] = value; }
  int YPixel(int index) const { return yPixels_[static_cast<std::size_t>(index)]; }
  int XPixel(int index) const { return xPixels_[static_cast<std::size_t>(index)]; }

  void SetScreenSize(int width, int height);
  void ComputeY(int index);
  virtual void ComputeX(int index);
  /// The screen is circular; tells where it starts now.
  virtual void SetStartIndex(int /*index*/) {}

 protected:
  int width_ = 0;
  int height_ = 0;
  std::vector<float> ring_;
  std::vector<float> screen_;
  std::vector<int> xPixels_;

 private:
  Variable& variable_;
  std::vector<int> yPixels_;
};

/// The time axis: X is measured from the time at the screen's start. Its history begins with
/// plausible negative times, for screens that reach back before time 0.
class ZelTimeChannel : public ZelChannel {
 public:
  ZelTimeChannel(Variable& timeVar, int ringLength, int screenLength);
  void ComputeX(int index) override;
  void SetStartIndex(int index) override;

 private:
  double startTime_ = 0.0;
};

/// Name and colour (0xRRGGBB) of a trace; the k-th displayed channel has colour k.
struct TraceColour {
  const char* Label;
  unsigned Rgb;
};
inline constexpr int TraceColourCount = 8;
const TraceColour& TraceColourAt(int index);

}  // namespace torvane
