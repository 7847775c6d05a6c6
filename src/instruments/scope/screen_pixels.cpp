#include "instruments/scope/screen_pixels.h"

#include "core/messages.h"

namespace torvane {

namespace {

// Vertical pixels have no upper limit of their own. This one keeps a diverging signal within what
// an integer, and the difference of two, can hold.
constexpr double FarthestPixel = 1e9;

// From the centre; scales that were made to fit a trace miss it by a rounding.
constexpr double EdgeDivision = ZelScope::VerticalDivisions / 2 * (1 + 1e-9);

// Truncates to a pixel within low..high; what is not a number becomes the lower limit.
int LimitedPixel(double pixel, double low, double high) {
  const double raised = pixel > low ? pixel : low;
  return static_cast<int>(raised < high ? raised : high);
}

}  // namespace

int ScreenPixels::Y(const ZelChannel& channel, double value) const {
  if (height_ == 0) {
    Error("Internal Error: ScreenHeight not initialized");
    return 0;
  }
  const AxisScale& axis = channel.Vertical();
  const double shown = value * channel.Signal().Multiplier();
  const double y = -((shown + axis.Offset) / axis.Scale) * height_ * 0.125 + height_ / 2;
  return LimitedPixel(y, -FarthestPixel, height_ - 2);
}

int ScreenPixels::Beyond(const ZelChannel& channel, double value) {
  const AxisScale& axis = channel.Vertical();
  const double divisions = (value * channel.Signal().Multiplier() + axis.Offset) / axis.Scale;
  return divisions > EdgeDivision ? 1 : divisions < -EdgeDivision ? -1 : 0;
}

int ScreenPixels::X(const ZelChannel& channel, double value) const {
  if (width_ == 0 || height_ == 0) {
    Error("Internal Error: ScreenDimensions not initialized");
    return 0;
  }
  const AxisScale& axis = channel.Horizontal();
  const double shown = value * channel.Signal().Multiplier();
  const double x = ((shown + axis.Offset) / axis.Scale) * width_ * 0.1 + width_ / 2;
  return LimitedPixel(x, 0, width_ - 1);
}

int ScreenPixels::TimeX(const ZelChannel& time, double value, double start) const {
  if (width_ == 0 || height_ == 0) {
    Error("Internal Error: Uninit ScreenDimension");
    return 0;
  }
  const double multiplier = time.Signal().Multiplier();
  const double x =
      ((value * multiplier - start * multiplier) / time.Horizontal().Scale) * width_ * 0.1;
  return LimitedPixel(x, 1, width_ - 2);
}

void ScreenPixels::XOfPoints(const ZelScope& scope, const ScopeScreen& screen, int first,
                             std::vector<int>& pixels) const {
  pixels.clear();
  const auto begin = static_cast<std::size_t>(first);
  if (!scope.XYMode()) {
    for (std::size_t i = begin; i < screen.Time.size(); ++i) {
      pixels.push_back(TimeX(scope.TimeChannel(), screen.Time[i], screen.Left));
    }
    return;
  }
  for (std::size_t k = 0; k < scope.Channels().size(); ++k) {
    const ZelChannel& channel = *scope.Channels()[k];
    if (!channel.IsHorizontal()) continue;
    const std::vector<float>& values = screen.Values[k];
    for (std::size_t i = begin; i < values.size(); ++i) pixels.push_back(X(channel, values[i]));
  }
}

}  // namespace torvane
