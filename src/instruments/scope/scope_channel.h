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
  /// A ring shorter than the screen is raised to the screen's length.
  ZelChannel(Variable& variable, int ringLength, int screenLength);
  ZelChannel(const ZelChannel&) = delete;
  ZelChannel& operator=(const ZelChannel&) = delete;
  virtual ~ZelChannel() = default;

  const std::string& Name() const { return variable_.Name(); }
  Variable& Signal() const { return variable_; }
  int ScreenLength() const { return static_cast<int>(screen_.size()); }
  int RingLength() const { return static_cast<int>(ring_.size()); }

  AxisScale Vertical;
  AxisScale Horizontal;
  bool Displayed = false;
  bool IsHorizontal = false;
  int Colour = -1;  ///< index for TraceColourAt() while displayed

  void Store(int ringIndex) { ring_[Slot(ringIndex)] = static_cast<float>(variable_.Value); }
  void StoreToScreen(int ringIndex, int screenIndex) {
    Store(ringIndex);
    CopyToScreen(ringIndex, screenIndex);
  }
  void CopyToScreen(int ringIndex, int screenIndex) {
    screen_[Slot(screenIndex)] = ring_[Slot(ringIndex)];
  }

  float RingValue(int index) const { return ring_[Slot(index)]; }
  float ScreenValue(int index) const { return screen_[Slot(index)]; }
  void SetScreenValue(int index, float value) { screen_[Slot(index)] = value; }

  /// Pixel of a screen point from the top edge: y = -((v m + offset) / scale) H / 8 + H div 2,
  /// truncated, at most H - 2. It may lie far above the screen, and does for what is not a number.
  int YPixel(int index) const { return yPixels_[Slot(index)]; }

  /// Pixel of a screen point from the left edge when this is the X axis:
  /// x = ((v m + offset) / scale) W / 10 + W div 2, truncated, within 0..W - 1.
  int XPixel(int index) const { return xPixels_[Slot(index)]; }

  /// Pixels of the paint area; to be told before any pixel is computed.
  void SetScreenSize(int width, int height);
  void ComputeY(int index);
  virtual void ComputeX(int index);
  /// Every point anew: the Y of a displayed channel, the X of the X axis.
  void ComputePixels();
  /// The screen is circular; tells where it starts now.
  virtual void SetStartIndex(int /*index*/) {}

 protected:
  static std::size_t Slot(int index) { return static_cast<std::size_t>(index); }

  int width_ = 0;
  int height_ = 0;
  std::vector<float> ring_;
  std::vector<float> screen_;
  std::vector<int> xPixels_;

 private:
  Variable& variable_;
  std::vector<int> yPixels_;
};

/// The time axis: X is measured from the time at the screen's start,
/// x = ((v m - t0) / scale) W / 10, truncated, within 1..W - 2. Its history begins with plausible
/// negative times, for screens that reach back before time 0.
class ZelTimeChannel : public ZelChannel {
 public:
  ZelTimeChannel(Variable& timeVar, int ringLength, int screenLength);
  void ComputeX(int index) override;
  /// Every X is computed anew, for each is measured from the start.
  void SetStartIndex(int index) override;

 private:
  void ComputeXRange(int first, int end);

  double startTime_ = 0.0;  // as displayed
};

/// Name and colour (0xRRGGBB) of a trace; the k-th displayed channel has colour k.
struct TraceColour {
  const char* Label;
  unsigned Rgb;
};
inline constexpr int TraceColourCount = 8;
const TraceColour& TraceColourAt(int index);

}  // namespace torvane
