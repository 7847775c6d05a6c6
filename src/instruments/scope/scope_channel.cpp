#include "instruments/scope/scope_channel.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/messages.h"

namespace torvane {

namespace {

// Vertical pixels have no upper limit of their own. This one keeps a diverging signal within what
// an integer, and the difference of two, can hold.
constexpr double FarthestPixel = 1e9;

// Truncates to a pixel within low..high; what is not a number becomes the lower limit.
int LimitedPixel(double pixel, double low, double high) {
  const double raised = pixel > low ? pixel : low;
  return static_cast<int>(raised < high ? raised : high);
}

constexpr std::array<TraceColour, TraceColourCount> TraceColours = {{
    {"Blk", 0x000000},
    {"Blue", 0x0000FF},
    {"Mrn", 0x800000},
    {"Teal", 0x008080},
    {"Red", 0xFF0000},
    {"Purp", 0x800080},
    {"Grn", 0x008000},
    {"Gray", 0x808080},
}};

}  // namespace

ZelChannel::ZelChannel(Variable& variable, int ringLength, int screenLength)
    : Vertical{variable.DefaultScale(), variable.DefaultOffset()},
      Horizontal{variable.DefaultScale(), variable.DefaultOffset()},
      Displayed(variable.ShownByDefault()),
      ring_(Slot(std::max(ringLength, screenLength))),
      screen_(Slot(screenLength)),
      xPixels_(Slot(screenLength)),
      variable_(variable),
      yPixels_(Slot(screenLength)) {}

void ZelChannel::SetScreenSize(int width, int height) {
  width_ = width;
  height_ = height;
}

void ZelChannel::ComputeY(int index) {
  if (height_ == 0) {
    Error("Internal Error: ScreenHeight not initialized");
    return;
  }
  const double value = screen_[Slot(index)] * variable_.Multiplier();
  const double y = -((value + Vertical.Offset) / Vertical.Scale) * height_ * 0.125 + height_ / 2;
  yPixels_[Slot(index)] = LimitedPixel(y, -FarthestPixel, height_ - 2);
}

void ZelChannel::ComputeX(int index) {
  if (width_ == 0 || height_ == 0) {
    Error("Internal Error: ScreenDimensions not initialized");
    return;
  }
  const double value = screen_[Slot(index)] * variable_.Multiplier();
  const double x = ((value + Horizontal.Offset) / Horizontal.Scale) * width_ * 0.1 + width_ / 2;
  xPixels_[Slot(index)] = LimitedPixel(x, 0, width_ - 1);
}

void ZelChannel::ComputePixels() {
  for (int i = 0; i < ScreenLength(); ++i) {
    if (Displayed) ComputeY(i);
    if (IsHorizontal) ComputeX(i);
  }
}

ZelTimeChannel::ZelTimeChannel(Variable& timeVar, int ringLength, int screenLength)
    : ZelChannel(timeVar, ringLength, screenLength) {
  IsHorizontal = true;
  const int ringSize = RingLength();
  const double screenTime = std::abs(Horizontal.Scale) * 10;
  for (int i = 0; i < ringSize; ++i) {
    ring_[Slot(i)] = static_cast<float>((i - ringSize) * screenTime / screenLength);
  }
}

void ZelTimeChannel::ComputeX(int index) {
  ComputeXRange(index, index + 1);
}

void ZelTimeChannel::SetStartIndex(int index) {
  startTime_ = screen_[Slot(index)] * Signal().Multiplier();
  ComputeXRange(0, ScreenLength());
}

void ZelTimeChannel::ComputeXRange(int first, int end) {
  if (width_ == 0 || height_ == 0) {
    Error("Internal Error: Uninit ScreenDimension");
    return;
  }
  // A rolling screen runs this over all of its points every few samples, so nothing that the loop
  // stores may alias what it reads.
  const double multiplier = Signal().Multiplier();
  const double start = startTime_;
  const double scale = Horizontal.Scale;
  const double width = width_;
  const double high = width_ - 2;
  const float* const values = screen_.data();
  int* const pixels = xPixels_.data();
  for (int i = first; i < end; ++i) {
    pixels[i] = LimitedPixel(((values[i] * multiplier - start) / scale) * width * 0.1, 1, high);
  }
}

const TraceColour& TraceColourAt(int index) {
  return TraceColours.at(static_cast<std::size_t>(index));
}

}  // namespace torvane
