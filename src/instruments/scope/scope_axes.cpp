// Which channels a scope shows, and on which scales.

#include <algorithm>
#include <cmath>

#include "core/messages.h"
#include "core/numeric.h"
#include "core/text.h"
#include "instruments/scope/scope.h"

namespace torvane {

namespace {

struct ValueRange {
  double Low;
  double High;
};

// Over the points of a sweep; 0 for one without points.
ValueRange SweepRange(const ZelScope& scope, const SignalChannel& channel, ScopeSweep sweep) {
  ScopeScreen screen;
  scope.CopyScreen(sweep, screen);
  for (std::size_t i = 0; i < screen.Values.size(); ++i) {
    if (scope.Channels()[i].get() != &channel || screen.Values[i].empty()) continue;
    const auto [low, high] = std::minmax_element(screen.Values[i].begin(), screen.Values[i].end());
    return {*low, *high};
  }
  return {0.0, 0.0};
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
    if (channel->Displayed()) return *channel;
  }
  if (Channels().empty()) return TimeChannel();
  return *Channels().front();
}

std::vector<std::size_t> ZelScope::DisplayedChannels() const {
  std::vector<std::size_t> displayed;
  for (std::size_t i = 0; i < Channels().size(); ++i) {
    if (!Channels()[i]->Displayed()) continue;
    // One trace more than the colours is let through before it is reported.
    if (displayed.size() > TraceColourCount) Error("Internal Error: Too many displayed channels");
    displayed.push_back(i);
  }
  return displayed;
}

const ZelChannel* ZelScope::HorizontalChannel() const {
  return FindHorizontal();
}

ZelChannel* ZelScope::HorizontalChannel() {
  return FindHorizontal();
}

ZelChannel* ZelScope::FindHorizontal() const {
  if (TimeChannel().IsHorizontal()) return &TimeChannel();
  for (const auto& channel : Channels()) {
    if (channel->IsHorizontal()) return channel.get();
  }
  Error("Internal Error: No Horiz Channel");
  return nullptr;
}

void ZelScope::SetHorizontalChannel(ZelChannel& channel) {
  const auto change = [&] {
    TimeChannel().isHorizontal_ = false;
    for (const auto& other : Channels()) other->isHorizontal_ = false;
    channel.isHorizontal_ = true;
    needsRedraw_ = true;
  };
  Change(change, [&] { return "X Axis = " + channel.Name(); });
}

void ZelScope::SetDisplayed(ZelChannel& channel, bool displayed) {
  const auto change = [&] {
    channel.displayed_ = displayed;
    AssignColours();
  };
  Change(change, [&] { return (displayed ? "Show " : "Hide ") + channel.Name(); });
}

void ZelScope::AssignColours() {
  int displayed = 0;
  std::array<bool, TraceColourCount> taken{};
  for (const auto& channel : Channels()) {
    if (channel->displayed_ && ++displayed > TraceColourCount) channel->displayed_ = false;
    if (!channel->displayed_) channel->colour_ = -1;
    if (channel->colour_ >= 0) taken.at(static_cast<std::size_t>(channel->colour_)) = true;
  }
  for (const auto& channel : Channels()) {
    if (!channel->displayed_ || channel->colour_ >= 0) continue;
    const auto free = std::find(taken.begin(), taken.end(), false);
    *free = true;
    channel->colour_ = static_cast<int>(free - taken.begin());
  }
  needsRedraw_ = true;
}

void ZelScope::ChangeAxis(AxisScale& axis, const AxisScale& value, const std::string& caption) {
  const auto change = [&] {
    axis = {LimitedScale(value.Scale), WithoutMinusZero(value.Offset)};
    needsRedraw_ = true;
    if (&axis == &TimeChannel().horizontal_) SetSampleInterval();
  };
  Change(change, [&] { return caption; });
}

bool ZelScope::SetVerticalScale(ZelChannel& channel, double scale) {
  if (!UsableScale(scale)) {
    Error("Scale cannot be set to zero");
    return false;
  }
  ChangeAxis(channel.vertical_, {scale, channel.Vertical().Offset},
             channel.Name() + " Scale = " + FormatEdit(LimitedScale(scale)));
  return true;
}

void ZelScope::SetVerticalOffset(ZelChannel& channel, double offset) {
  if (!std::isfinite(offset)) return;
  ChangeAxis(channel.vertical_, {channel.Vertical().Scale, offset},
             channel.Name() + " Offset = " + FormatEdit(WithoutMinusZero(offset)));
}

bool ZelScope::SetHorizontalScale(ZelChannel& channel, double scale) {
  if (!UsableScale(scale)) {
    Error("Horizontal scale cannot be set to zero");
    return false;
  }
  ChangeAxis(channel.horizontal_, {scale, channel.Horizontal().Offset},
             "Horizontal Scale = " + FormatEdit(LimitedScale(scale)));
  return true;
}

void ZelScope::SetHorizontalOffset(ZelChannel& channel, double offset) {
  if (!std::isfinite(offset)) return;
  const auto change = [&] {
    channel.horizontal_.Offset = WithoutMinusZero(offset);
    needsRedraw_ = true;
  };
  Change(change, [&] { return "Horizontal Offset = " + FormatEdit(channel.Horizontal().Offset); });
}

void ZelScope::AutoScale(AxisScale& axis, SignalChannel& channel, int divisions, ScopeSweep sweep,
                         const std::string& caption) {
  const auto [low, high] = SweepRange(*this, channel, sweep);
  const double largest = std::max(std::abs(low), std::abs(high));
  const double scale = channel.Signal().Multiplier() * largest / (divisions / 2);
  ChangeAxis(axis, {UsableScale(scale) ? scale : axis.Scale, 0.0}, caption + channel.Name());
}

void ZelScope::AutoVertical(SignalChannel& channel, ScopeSweep sweep) {
  AutoScale(channel.vertical_, channel, VerticalDivisions, sweep, "Auto Scale of ");
}

void ZelScope::AutoHorizontal(SignalChannel& channel, ScopeSweep sweep) {
  AutoScale(channel.horizontal_, channel, HorizontalDivisions, sweep, "Horizontal Auto Scale of ");
}

void ZelScope::FillVertical(SignalChannel& channel, ScopeSweep sweep) {
  const auto [low, high] = SweepRange(*this, channel, sweep);
  const double multiplier = channel.Signal().Multiplier();
  const double scale = (high - low) * multiplier / VerticalDivisions;
  if (!UsableScale(scale)) {
    Note("Cannot Fill because Max = Min");
    return;
  }
  ChangeAxis(channel.vertical_, {scale, -(high + low) * 0.5 * multiplier},
             "Fill Screen with " + channel.Name());
}

}  // namespace torvane
