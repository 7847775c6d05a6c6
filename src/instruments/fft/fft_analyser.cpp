#include "instruments/fft/fft_analyser.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "core/messages.h"
#include "core/overflow.h"
#include "core/scale_steps.h"

namespace torvane {

namespace {

// A record of 2^20 samples is some hundred megabytes for a model's signals.
constexpr int LargestMaxOrder = 20;

int CheckedMaxOrder(int maxOrder) {
  if (maxOrder >= ZelXfer::MinOrder && maxOrder <= LargestMaxOrder) return maxOrder;
  FatalError("Fault in TZelXferF :: TZelXferF");
  return ZelXfer::MinOrder;
}

}  // namespace

ZelXfer::ZelXfer(ZelBenchTop& bench, int maxOrder, std::string name)
    : FrequencyAnalyser(InstrumentKind::FftAnalyser, std::move(name), bench, "Xfer", true),
      fft_(CheckedMaxOrder(maxOrder)),
      order_(fft_.MaxOrder()) {
  for (const Variable* variable : bench.Variables()) {
    if (!variable->Internal()) AddVar(*variable);
  }
  CheckChannels();
  AutoRange();
}

void ZelXfer::AddVar(const Variable& variable) {
  auto channel = std::make_unique<ZelXferChannel>(variable, fft_);
  channel->SetOrder(order_);
  channel->SetWindow(spectrum_);
  records_.push_back(channel.get());
  AddChannel(std::move(channel));
}

void ZelXfer::Run() {
  running_ = true;
  Arm();
  BeginRecord();
}

void ZelXfer::Halt() {
  running_ = false;
  state_ = State::Halted;
  Changed();
}

// A record that was being taken has seen the overflow.
void ZelXfer::Restart() {
  filter_ = {};
  excitation_ = previousExcitation_ = 0.0;
  if (NextTime() >= 0.0) Halt();
}

void ZelXfer::Arm() {
  state_ = State::Armed;
  clock_.SetNext(bench_.Time());
  startDelayEnd_ = clock_.Next() + tStartDelay_;
  excitationEnd_ = RecordTime() + startDelayEnd_ - tEndDelay_;
  Changed();
}

void ZelXfer::BeginRecord() {
  sampleCount_ = 0;
  recordWhole_ = false;
  for (ZelXferChannel* channel : records_) channel->MarkNewSamples();
}

double ZelXfer::NextTime() const {
  return state_ == State::Armed || state_ == State::Sampling ? clock_.Request() : -1.0;
}

bool ZelXfer::Service(double t) {
  if (state_ == State::Halted || state_ == State::Complete) return true;
  if (!clock_.TakeDue(t, tSample_)) return true;
  if (state_ == State::Armed) {
    state_ = State::Sampling;
    BeginRecord();
  }
  if (sampleCount_ >= Length()) {
    Error("Xfer:  Sampling too many points");
  } else if (t < startDelayEnd_) {
    excitation_ = offset_;
    sequence_.Restart();
  } else {
    TakeSample(t);
  }
  return true;
}

void ZelXfer::TakeSample(double t) {
  // The sum of a record's samples has to fit single precision as well.
  CheckSignals(bench_, std::numeric_limits<float>::max() / static_cast<float>(Length()));
  previousExcitation_ = excitation_;
  previousInstant_ = t;
  if (t >= excitationEnd_) {
    excitation_ = offset_;
  } else {
    excitation_ =
        binary_ ? sequence_.Binary(amplitude_, offset_) : sequence_.Uniform(amplitude_, offset_);
  }
  if (!bypassFilter_) excitation_ = filter_.Step(excitation_);
  for (ZelXferChannel* channel : records_) channel->Sample(sampleCount_);
  ++sampleCount_;
  if (sampleCount_ == Length()) CompleteRecord();
}

void ZelXfer::CompleteRecord() {
  state_ = State::Complete;
  recordWhole_ = true;
  EnableTrace(0);
  running_ = false;
  Changed();
}

void ZelXfer::AutoRange() {
  // Set together: each limit is right only beside the other.
  SetFreqRange(NextHighestThisArray(1.0 / (tSample_ * Length()), CoarseLadder()), 0.25 / tSample_);
}

bool ZelXfer::HasData(int slot) const {
  return slot == 0 ? recordWhole_ : TraceAt(slot).Enabled;
}

FrequencyAnalyser::Range ZelXfer::DataRange(int /*slot*/) const {
  return {1.0 / (Length() * tSample_), 0.5 / tSample_};
}

double ZelXfer::IndexAt(int /*slot*/, double hz) const {
  return hz * tSample_ * Length();
}

int ZelXfer::LastIndex(int /*slot*/) const {
  return Length();
}

bool ZelXfer::StoreSlot(int slot) {
  return std::all_of(records_.begin(), records_.end(),
                     [&](ZelXferChannel* channel) { return channel->StoreData(slot); });
}

}  // namespace torvane
