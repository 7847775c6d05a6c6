#include "instruments/scope/scope_memory.h"

#include <algorithm>
#include <cmath>

#include "core/constant.h"
#include "core/messages.h"
#include "core/overflow.h"
#include "instruments/analyser/trace_origin.h"

namespace torvane {

namespace {
constexpr int ShortestScreen = 4;
constexpr int FewestPoints = 2;  // of history at a screen's start, and that roll away
}  // namespace

ScopeMemory::ScopeMemory(ZelBenchTop& bench, Variable& timeVar, int screenLength, int ringLength)
    : bench_(bench),
      screenLength_(std::max(screenLength, ShortestScreen)),
      ringLength_(std::max(ringLength, 2 * screenLength_)),
      ringIndex_(ringLength_ - 1),  // the first sample replaces the oldest
      timeChannel_(std::make_unique<ZelTimeChannel>(timeVar, ringLength_, screenLength_)) {
  for (Variable* variable : bench.Variables()) {
    if (variable->Internal()) continue;
    channels_.push_back(std::make_unique<SignalChannel>(*variable, ringLength_, screenLength_));
  }
}

void ScopeMemory::CopyScreen(ScopeSweep sweep, ScopeScreen& into) const {
  const std::size_t screen = sweep == ScopeSweep::Whole && anyWhole_ ? whole_ : present_;
  const Extent extent = extents_[screen];
  const int count =
      extent.Fill < 0 ? 0 : (extent.Fill - extent.Start + screenLength_) % screenLength_ + 1;
  const auto copy = [&](const auto& channel, auto& values) {
    values.resize(static_cast<std::size_t>(count));
    int index = extent.Start;
    for (auto& value : values) {
      value = channel.ScreenValue(screen, index);
      index = Next(index, screenLength_);
    }
  };
  into.Sweep = extent.Sweep;
  into.EventTime = extent.EventTime;
  into.Origin = extent.Origin;
  copy(*timeChannel_, into.Time);
  into.Left = count > 0 ? into.Time.front() : 0.0;
  into.Values.resize(channels_.size());
  for (std::size_t i = 0; i < channels_.size(); ++i) copy(*channels_[i], into.Values[i]);
}

void ScopeMemory::StoreHistory() {
  const int ringIndex = Next(ringIndex_, ringLength_);
  timeChannel_->Store(ringIndex);
  // Zero times anything finite is zero: another sum tells of a value that is not finite.
  float probe = 0.0F;
  for (const auto& channel : channels_) probe += channel->Store(ringIndex) * 0.0F;
  if (!(probe == 0.0F)) CheckSignals(bench_);
  ringIndex_ = ringIndex;
}

void ScopeMemory::CopyPoint(int ringIndex) {
  const int index = Present().Fill;
  timeChannel_->CopyToScreen(ringIndex, present_, index);
  for (const auto& channel : channels_) channel->CopyToScreen(ringIndex, present_, index);
}

bool ScopeMemory::Advance(bool fill) {
  if (fill && ScreenFull()) {
    Error("Internal Error: Screen Full");
    return false;
  }
  StoreHistory();
  if (!fill) return true;
  Extent& extent = extents_[present_];
  extent.Fill = extent.Fill < 0 ? extent.Start : Next(extent.Fill, screenLength_);
  CopyPoint(ringIndex_);
  return Filled();
}

bool ScopeMemory::Filled() {
  if (!ScreenFull()) return false;
  whole_ = present_;
  anyWhole_ = true;
  return true;
}

int ScopeMemory::FreePoints() const {
  const Extent& extent = Present();
  if (extent.Fill < 0) return screenLength_;
  return (extent.Start - extent.Fill - 1 + screenLength_) % screenLength_;
}

bool ScopeMemory::Advance(const SampleTape& tape, std::span<const int> rows, bool fill) {
  const int ringIndex = Next(ringIndex_, ringLength_);
  Extent& extent = extents_[present_];
  const int index = extent.Fill < 0 ? extent.Start : Next(extent.Fill, screenLength_);
  const auto store = [&](auto& channel, const double* values) {
    channel.StoreAll(values, rows, ringIndex, present_, fill ? index : -1);
  };
  store(*timeChannel_, tape.TimeShown());
  for (const auto& channel : channels_) store(*channel, tape.Values(channel->Signal()));
  const int more = static_cast<int>(rows.size()) - 1;
  ringIndex_ = (ringIndex + more) % ringLength_;
  if (!fill) return true;
  extent.Fill = (index + more) % screenLength_;
  return Filled();
}

// The last complete screen stays as it is.
void ScopeMemory::BeginScreen() {
  const std::uint64_t sweep = SweepCount() + 1;
  if (anyWhole_ && whole_ == present_) present_ = 1 - present_;
  extents_[present_] = {.Sweep = sweep};
  TakeOrigin();
}

// Sweeps share what they have in common: one that begins with the constants of the last allocates
// nothing.
void ScopeMemory::TakeOrigin() {
  const auto value = [](const Constant* constant) { return constant->Value(); };
  if (!origin_ || !std::ranges::equal(bench_.Constants(), constants_, {}, value)) {
    origin_ = std::make_shared<const TraceOrigin>(OriginNow(bench_));
    constants_.clear();
    for (const Constant* constant : bench_.Constants()) constants_.push_back(constant->Value());
  }
  extents_[present_].Origin = origin_;
}

void ScopeMemory::ClearScreen() {
  BeginScreen();
}

void ScopeMemory::StartScreenFromHistory(double percent) {
  const double wanted = std::floor(screenLength_ * percent * 0.01);
  const int count = static_cast<int>(std::clamp<double>(
      wanted > FewestPoints ? wanted : FewestPoints, FewestPoints, screenLength_ - 1));
  BeginScreen();
  int ringIndex = (ringIndex_ - count + ringLength_ + 1) % ringLength_;
  for (int i = 0; i < count; ++i) {
    ++extents_[present_].Fill;
    CopyPoint(ringIndex);
    ringIndex = Next(ringIndex, ringLength_);
  }
}

void ScopeMemory::MarkEvent() {
  extents_[present_].EventTime = timeChannel_->RingValue(ringIndex_);
}

// A screen that scrolls shows no moment any more.
void ScopeMemory::ClearPostTrigger(double fraction) {
  if (!ScreenFull()) Error("Internal Error: Screen Not Full in ClearPostTrigger");
  const int wanted = static_cast<int>(std::ceil(screenLength_ * fraction));
  const int leaving = std::clamp(wanted, FewestPoints, screenLength_ - 2);
  extents_[present_].EventTime.reset();
  TakeOrigin();
  extents_[present_].Start =
      (FillIndex() - (screenLength_ - leaving) + screenLength_ + 1) % screenLength_;
}

}  // namespace torvane
