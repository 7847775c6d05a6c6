#include "instruments/scope/scope_memory.h"

#include <algorithm>
#include <cmath>

#include "core/messages.h"

namespace torvane {

namespace {
constexpr int ShortestScreen = 4;
constexpr int FewestPoints = 2;  // of history at a screen's start, and that roll away
}  // namespace

ScopeMemory::ScopeMemory(ZelBenchTop& bench, Variable& timeVar, int screenLength, int ringLength)
    : screenLength_(std::max(screenLength, ShortestScreen)),
      ringLength_(std::max(ringLength, 2 * screenLength_)),
      ringIndex_(ringLength_ - 1),  // the first sample replaces the oldest
      timeChannel_(std::make_unique<ZelTimeChannel>(timeVar, ringLength_, screenLength_)) {
  for (Variable* variable : bench.Variables()) {
    if (variable->Internal()) continue;
    channels_.push_back(std::make_unique<ZelChannel>(*variable, ringLength_, screenLength_));
  }
}

int ScopeMemory::PointCount() const {
  if (fillIndex_ < 0) return 0;
  return (fillIndex_ - startIndex_ + screenLength_) % screenLength_ + 1;
}

void ScopeMemory::SetScreenSize(int width, int height) {
  timeChannel_->SetScreenSize(width, height);
  timeChannel_->ComputePixels();
  for (const auto& channel : channels_) {
    channel->SetScreenSize(width, height);
    channel->ComputePixels();
  }
}

void ScopeMemory::StoreHistory() {
  timeChannel_->Store(ringIndex_);
  for (const auto& channel : channels_) channel->Store(ringIndex_);
}

void ScopeMemory::ComputePoint(ZelChannel& channel, int index) {
  if (channel.Displayed) channel.ComputeY(index);
  if (channel.IsHorizontal) channel.ComputeX(index);
}

void ScopeMemory::StorePoint() {
  timeChannel_->StoreToScreen(ringIndex_, fillIndex_);
  ComputePoint(*timeChannel_, fillIndex_);
  for (const auto& channel : channels_) {
    channel->StoreToScreen(ringIndex_, fillIndex_);
    ComputePoint(*channel, fillIndex_);
  }
}

void ScopeMemory::CopyPoint(int ringIndex) {
  timeChannel_->CopyToScreen(ringIndex, fillIndex_);
  for (const auto& channel : channels_) {
    channel->CopyToScreen(ringIndex, fillIndex_);
    ComputePoint(*channel, fillIndex_);
  }
}

void ScopeMemory::SetStartIndex(int index) {
  startIndex_ = index;
  timeChannel_->SetStartIndex(index);
}

bool ScopeMemory::Advance(bool fill) {
  if (fill && ScreenFull()) {
    Error("Internal Error: Screen Full");
    return false;
  }
  ringIndex_ = Next(ringIndex_, ringLength_);
  if (!fill) {
    StoreHistory();
    return true;
  }
  const bool first = fillIndex_ < 0;
  fillIndex_ = first ? startIndex_ : Next(fillIndex_, screenLength_);
  StorePoint();
  if (first) SetStartIndex(startIndex_);
  return ScreenFull();
}

void ScopeMemory::ClearScreen() {
  startIndex_ = 0;
  fillIndex_ = -1;
}

void ScopeMemory::StartScreenFromHistory(double percent) {
  const double wanted = std::floor(screenLength_ * percent * 0.01);
  const int count = static_cast<int>(std::clamp<double>(
      wanted > FewestPoints ? wanted : FewestPoints, FewestPoints, screenLength_ - 1));
  fillIndex_ = -1;
  int ringIndex = (ringIndex_ - count + ringLength_ + 1) % ringLength_;
  for (int i = 0; i < count; ++i) {
    ++fillIndex_;
    CopyPoint(ringIndex);
    ringIndex = Next(ringIndex, ringLength_);
  }
  SetStartIndex(0);
}

void ScopeMemory::ClearPostTrigger(double fraction) {
  if (!ScreenFull()) Error("Internal Error: Screen Not Full in ClearPostTrigger");
  const int wanted = static_cast<int>(std::ceil(screenLength_ * fraction));
  const int leaving = std::clamp(wanted, FewestPoints, screenLength_ - 2);
  SetStartIndex((fillIndex_ - (screenLength_ - leaving) + screenLength_ + 1) % screenLength_);
}

void ScopeMemory::SetPointCount(int count) {
  fillIndex_ = count - 1;
  SetStartIndex(0);
  for (const auto& channel : channels_) channel->ComputePixels();
}

}  // namespace torvane
