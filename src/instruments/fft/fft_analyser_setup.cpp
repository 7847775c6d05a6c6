#include <algorithm>
#include <cmath>

#include "core/messages.h"
#include "core/numeric.h"
#include "instruments/fft/fft_analyser.h"

namespace torvane {

void ZelXfer::SetOrder(int order) {
  if (order < MinOrder) {
    Error("Attempt to set Order < MinOrder");
  } else if (order > MaxOrder()) {
    Error("Attempt to set Order > MaxOrder");
  } else if (order != order_) {
    order_ = order;
    for (ZelXferChannel* channel : records_) channel->SetOrder(order);
    DropRecords();
  }
}

void ZelXfer::SetTSample(double seconds) {
  // 0 is refused as well: the sample clock would never move on.
  if (!(seconds > 0.0 && std::isfinite(seconds))) {
    Error("Attempt to set TSample < 0");
  } else if (seconds != tSample_) {
    tSample_ = std::min(seconds, LongestTime);
    DropRecords();
  }
}

void ZelXfer::DropRecords() {
  recordWhole_ = false;
  for (int slot = 1; slot < SlotCount; ++slot) DisableTrace(slot);
  Halt();
}

void ZelXfer::SetTStartDelay(double seconds) {
  if (!(seconds >= 0.0)) {
    Error("Attempt to set TStartDelay < 0");
    return;
  }
  SetSetting(tStartDelay_, std::min(seconds, LongestTime));
}

void ZelXfer::SetTEndDelay(double seconds) {
  if (!(seconds >= 0.0)) {
    Error("Attempt to set tEndDelay < 0%");
  } else if (seconds >= Length() * tSample_) {
    Error("Attempt to set tEndDelay >= 100% of Sample Time");
  } else {
    SetSetting(tEndDelay_, seconds);
  }
}

void ZelXfer::SetAmplitude(double amplitude) {
  if (!(amplitude >= 0.0)) {
    Error("Attempt to set Excitation Amplitude < 0");
    return;
  }
  SetSetting(amplitude_, amplitude);
}

void ZelXfer::SetOffset(double offset) {
  if (!std::isfinite(offset)) return;
  SetSetting(offset_, offset);
  excitation_ = LimitExcitation(excitation_, amplitude_, offset_);
}

void ZelXfer::SetSpectrum(bool on) {
  if (spectrum_ == on) return;
  spectrum_ = on;
  for (ZelXferChannel* channel : records_) channel->SetWindow(on);
  // Half a record under the window and half without it would be neither.
  if (NextTime() >= 0.0) Arm();
  Changed();
}

void ZelXfer::ClickSpectrum(bool on) {
  SetSpectrum(on);
  Arm();
}

}  // namespace torvane
