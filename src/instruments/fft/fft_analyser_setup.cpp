#include <algorithm>
#include <cmath>

#include "core/files/record.h"
#include "core/messages.h"
#include "core/solver.h"
#include "instruments/analyser/refusal.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/setting_limits.h"

namespace torvane {

namespace {

constexpr double EndDelayShare = 0.2;  // of a record, where a longer delay does not fit

}  // namespace

FftSetup ZelXfer::Setup() const {
  return {tSample_, order_, tStartDelay_, tEndDelay_, amplitude_, offset_, Averages()};
}

SetupFinding ZelXfer::Check(const FftSetup& setup) const {
  if (!CanAverage(setup.Averages)) return AveragesRefusal();
  return CheckSetup(setup, MinOrder, MaxOrder(), bench_.Solver()->Step());
}

bool ZelXfer::Apply(const FftSetup& setup) {
  if (IsRefused(Check(setup))) return false;
  Change(
      [&] {
        SetOrder(setup.Order);
        SetTSample(setup.TSample);
        SetTStartDelay(setup.TStartDelay);
        SetTEndDelay(setup.TEndDelay);
        SetAmplitude(setup.Amplitude);
        SetOffset(setup.Offset);
        SetAverages(setup.Averages);
      },
      [] { return "Transfer Function Setup"; });
  return true;
}

void ZelXfer::SetOrder(int order) {
  if (order < MinOrder) {
    Error("Attempt to set Order < MinOrder");
  } else if (order > MaxOrder()) {
    Error("Attempt to set Order > MaxOrder");
  } else if (order != order_) {
    Change(
        [&] {
          order_ = order;
          for (ZelXferChannel* channel : records_) channel->SetOrder(order);
          FitEndDelay();
          DropRecords();
        },
        [&] { return SettingCaption("FFT Order", order); });
  }
}

void ZelXfer::SetTSample(double seconds) {
  // 0 is refused as well: the sample clock would never move on.
  if (!(seconds > 0.0 && std::isfinite(seconds))) {
    Error("Attempt to set TSample < 0");
  } else if (seconds < ShortestTime || seconds > LongestTime) {
    Error("Attempt to set TSample beyond " + FormatEdit(ShortestTime) + " to " +
          FormatEdit(LongestTime));
  } else if (seconds != tSample_) {
    Change(
        [&] {
          tSample_ = AsRecorded(seconds);
          FitEndDelay();
          DropRecords();
        },
        [&] { return SettingCaption("Sample Time", seconds); });
  }
}

void ZelXfer::FitEndDelay() {
  if (tEndDelay_ >= RecordTime()) tEndDelay_ = AsRecorded(EndDelayShare * RecordTime());
}

void ZelXfer::DropRecords() {
  averaging_ = false;
  DropMeasurements();
  Halt();
}

void ZelXfer::SetTStartDelay(double seconds) {
  SetChecked(tStartDelay_, seconds, seconds >= 0.0, "Attempt to set TStartDelay < 0",
             "Start Zero Time", LongestTime);
}

void ZelXfer::SetTEndDelay(double seconds) {
  if (!(seconds >= 0.0)) {
    Error("Attempt to set tEndDelay < 0%");
  } else if (AsRecorded(seconds) >= RecordTime()) {
    Error("Attempt to set tEndDelay >= 100% of Sample Time");
  } else {
    SetSetting(tEndDelay_, seconds, "End Zero Time");
  }
}

void ZelXfer::SetAmplitude(double amplitude) {
  SetChecked(amplitude_, amplitude, amplitude >= 0.0, "Attempt to set Excitation Amplitude < 0",
             "Amplitude", LargestMagnitude);
}

void ZelXfer::SetOffset(double offset) {
  if (!std::isfinite(offset)) return;
  SetChecked(offset_, offset, true, "", "Offset", LargestMagnitude);
  excitation_ = LimitExcitation(excitation_, amplitude_, offset_);
}

void ZelXfer::SetSpectrum(bool on) {
  if (spectrum_ == on) return;
  Change(
      [&] {
        spectrum_ = on;
        for (ZelXferChannel* channel : records_) channel->SetWindow(on);
        // Half a record under the window and half without it would be neither.
        const bool taking = NextTime() >= 0.0;
        if (taking) state_ = State::Halted;
        if (!on) TakeUpResponse();
        // A response needs the excitation, a spectrum does not.
        if (taking && (on || running_)) Arm();
        MakeResponses();
        Changed();
      },
      [&] { return SettingCaption("Spectrum", on); });
}

void ZelXfer::ClickSpectrum(bool on) {
  SetSpectrum(on);
  if (on) Arm();
}

void ZelXfer::SetBinary(bool on) {
  Store(binary_, on, "Bi-Gen");
}

void ZelXfer::SetBypassFilter(bool on) {
  Store(bypassFilter_, on, "Gen Filt");
}

}  // namespace torvane
