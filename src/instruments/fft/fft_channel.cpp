#include "instruments/fft/fft_channel.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <span>
#include <utility>

#include "core/messages.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

double TriangularWindow(int index, int length) {
  const int half = length / 2;
  if (index < half) return 4.0 * index / length;
  return 2.0 - 4.0 * (index - half) / length;
}

}  // namespace

ZelXferChannel::ZelXferChannel(const Variable& variable, const Fft& fft)
    : AnalyserChannel(variable), fft_(fft), order_(fft.MaxOrder()) {}

void ZelXferChannel::MakeArrays() {
  const std::size_t length = std::size_t{1} << fft_.MaxOrder();
  slots_[0].Re.resize(length);
  slots_[0].Im.resize(length);
}

void ZelXferChannel::SetOrder(int order) {
  if (order < 1 || order > fft_.MaxOrder()) {
    Error("ZelXferChannel:  Attempt to set order > MaxOrder");
    return;
  }
  order_ = order;
}

void ZelXferChannel::Sample(int index) {
  if (index < 0 || index >= Length()) {
    Error("ZelXferChannel:  Attempt to sample outside range");
    return;
  }
  Slot& slot = Present();
  slot.State = SlotState::Samples;
  double x = Signal().DisplayValue();
  if (window_) x *= TriangularWindow(index, Length());
  slot.Re[static_cast<std::size_t>(index)] = static_cast<float>(x);
  slot.Im[static_cast<std::size_t>(index)] = 0.0F;
}

void ZelXferChannel::RunFFT(int slot) {
  Slot& record = slot == 0 ? Present() : slots_[static_cast<std::size_t>(slot)];
  if (record.State != SlotState::Samples) {
    Error("Attempt to execute RunFFT in illegal state");
    return;
  }
  if (record.Re.empty()) {
    Error("Internal Error:  Running FFT on unitiilized vector");
    return;
  }
  fft_.Transform(record.Re.data(), record.Im.data(), order_);
  record.State = SlotState::Spectrum;
}

void ZelXferChannel::MarkNewSamples() {
  Present().State = SlotState::Samples;
  Coherences(0).clear();
}

void ZelXferChannel::ReadSamples(int excited) {
  Slot& slot = Present();
  const SignalRecord now =
      ReadSignal(std::span(slot.Re).first(static_cast<std::size_t>(Length())), excited);
  SignalRecord& kept = slot.Samples;
  if (std::abs(now.Step) > std::abs(kept.Step)) kept.Step = now.Step;
  kept.AtLimit = std::max(kept.AtLimit, now.AtLimit);
  kept.Growth = std::max(kept.Growth, now.Growth);
}

void ZelXferChannel::Exchange() {
  std::swap(slots_[0], aside_);
  std::swap(Coherences(0), coherencesAside_);
}

void ZelXferChannel::BeginMeasurement(bool averages) {
  slots_[0].Samples = {};
  if (averages) average_.Clear(static_cast<std::size_t>(Length()));
}

void ZelXferChannel::AddToAverage(const ExcitationRecord& excitation) {
  if (State(0) == SlotState::Samples) RunFFT(0);
  average_.Add(slots_[0].Re, slots_[0].Im, excitation);
}

void ZelXferChannel::TakeAverage(int records, const std::vector<double>* excitationPower) {
  Slot& slot = Present();
  if (excitationPower) {
    average_.TakeResponse(*excitationPower, records, slot.Re, slot.Im, Coherences(0));
  } else {
    average_.TakePower(records, slot.Re, slot.Im);
  }
  // What leaks is another thing in each record.
  slot.Samples.Step /= std::sqrt(static_cast<double>(records));
  slot.State = SlotState::Spectrum;
}

bool ZelXferChannel::Readable(int slot, int index, const char* message) {
  if (slot < 0 || slot >= SlotCount || index < 0 || index >= Length()) {
    Error(message);
    return false;
  }
  if (State(slot) == SlotState::Samples) RunFFT(slot);
  return State(slot) == SlotState::Spectrum;
}

double ZelXferChannel::Gain(int slot, int index) {
  if (!Readable(slot, index, "ZelXferChannel:  Attempt to get gain outside range")) return 0.0;
  const double re = Real(slot, index);
  const double im = Imaginary(slot, index);
  return GainDb(std::sqrt(re * re + im * im));
}

double ZelXferChannel::Phase(int slot, int index) {
  if (!Readable(slot, index, "ZelXferChannel:  Attempt to get phase outside range")) return 0.0;
  return PhaseDeg(Real(slot, index), Imaginary(slot, index));
}

bool ZelXferChannel::StoreData(int slot) {
  if (slot < 1 || slot >= SlotCount) {
    Error("Fault in ZelXferChannel :: StoreData");
    return false;
  }
  if (State(0) == SlotState::Samples) RunFFT(0);
  try {
    slots_[static_cast<std::size_t>(slot)] = slots_[0];
    Coherences(slot) = Coherences(0);
  } catch (const std::bad_alloc&) {
    Error("Fault in ZelXferChannel :: StoreData");
    return false;
  }
  return true;
}

}  // namespace torvane
