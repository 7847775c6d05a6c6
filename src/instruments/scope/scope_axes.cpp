// Which channels a scope shows, and on which scales.

#include <algorithm>
#include <cmath>
#include <optional>

#include "core/messages.h"
#include "instruments/scope/scope.h"

namespace torvane {

namespace {

struct Extremes {
  double Low;
  double High;
};

// Over the points on the screen; nothing for a screen without a finite point.
std::optional<Extremes> ScreenExtremes(const ScopeMemory& memory, const ZelChannel& channel) {
  std::optional<Extremes> found;
  for (int k = 0; k < memory.PointCount(); ++k) {
    const double value = channel.ScreenValue(memory.PointIndex(k));
    if (!std::isfinite(value)) continue;
    if (!found) found = Extremes{value, value};
    found->Low = std::min(found->Low, value);
    found->High = std::max(found->High, value);
  }
  return found;
}

// Beyond these a screen's time, or a pixel, would not be a number any more.
constexpr double SmallestScale = 1e-100;
constexpr double LargestScale = 1e100;

bool UsableScale(double scale) {
  return std::isfinite(scale) && scale != 0.0;
}

double LimitedScale(double scale) {
  return std::copysign(std::clamp(std::abs(scale), SmallestScale, LargestScale), scale);
}

}  // namespace

ZelChannel* ZelScope::FindChannel(const std::string& name) {
  if (TimeChannel().Name() == name) return &TimeChannel();
  for (const auto& channel : Channels()) {
    if (channel->Name() == name) return channel.get();
  }
  return nullptr;
}

ZelChannel& ZelScope::FirstDisplayedChannel() const {
  for (const auto& channel : Channels()) {
    if (channel->Displayed) return *channel;
  }
  return Channels().empty() ? TimeChannel() : *Channels().front();
}

const ZelChannel* ZelScope::HorizontalChannel() const {
  return FindHorizontal();
}

ZelChannel* ZelScope::HorizontalChannel() {
  return FindHorizontal();
}

ZelChannel* ZelScope::FindHorizontal() const {
  if (TimeChannel().IsHorizontal) return &TimeChannel();
  for (const auto& channel : Channels()) {
    if (channel->IsHorizontal) return channel.get();
  }
  Error("Internal Error: No Horiz Channel");
  return nullptr;
}

void ZelScope::SetHorizontalChannel(ZelChannel& channel) {
  TimeChannel().IsHorizontal = false;
  for (const auto& other : Channels()) other->IsHorizontal = false;
  channel.IsHorizontal = true;
  ComputePixels(channel);
}

void ZelScope::SetDisplayed(ZelChannel& channel, bool displayed) {
  channel.Displayed = displayed;
  AssignColours();
  ComputePixels(channel);
}

void ZelScope::AssignColours() {
  int displayed = 0;
  for (const auto& channel : Channels()) {
    if (displayed == TraceColourCount) channel->Displayed = false;
    channel->Colour = channel->Displayed ? displayed++ : -1;
  }
  needsRedraw_ = true;
}

void ZelScope::ComputePixels(ZelChannel& channel) {
  channel.ComputePixels();
  needsRedraw_ = true;
}

bool ZelScope::SetVerticalScale(ZelChannel& channel, double scale) {
  if (!UsableScale(scale)) {
    Error("Scale cannot be set to zero");
    return false;
  }
  channel.Vertical.Scale = LimitedScale(scale);
  ComputePixels(channel);
  return true;
}

void ZelScope::SetVerticalOffset(ZelChannel& channel, double offset) {
  if (!std::isfinite(offset)) return;
  channel.Vertical.Offset = offset;
  ComputePixels(channel);
}

bool ZelScope::SetHorizontalScale(ZelChannel& channel, double scale) {
  if (!UsableScale(scale)) {
    Error("Horizontal scale cannot be set to zero");
    return false;
  }
  channel.Horizontal.Scale = LimitedScale(scale);
  if (&channel == &TimeChannel()) SetSampleInterval();
  ComputePixels(channel);
  return true;
}

void ZelScope::SetHorizontalOffset(ZelChannel& channel, double offset) {
  if (!std::isfinite(offset)) return;
  channel.Horizontal.Offset = offset;
  ComputePixels(channel);
}

void ZelScope::AutoVertical(ZelChannel& channel) {
  const auto extremes = ScreenExtremes(memory_, channel).value_or(Extremes{0.0, 0.0});
  const double largest = std::max(std::abs(extremes.Low), std::abs(extremes.High));
  const double scale = channel.Signal().Multiplier() * largest / (VerticalDivisions / 2);
  if (UsableScale(scale)) channel.Vertical.Scale = scale;
  channel.Vertical.Offset = 0.0;
  ComputePixels(channel);
}

void ZelScope::FillVertical(ZelChannel& channel) {
  const auto extremes = ScreenExtremes(memory_, channel).value_or(Extremes{0.0, 0.0});
  const double multiplier = channel.Signal().Multiplier();
  const double scale = (extremes.High - extremes.Low) * multiplier / VerticalDivisions;
  if (!UsableScale(scale)) {
    Note("Cannot Fill because Max = Min");
    return;
  }
  channel.Vertical.Scale = scale;
  channel.Vertical.Offset = -(extremes.High + extremes.Low) * 0.5 * multiplier;
  ComputePixels(channel);
}

}  // namespace torvane
