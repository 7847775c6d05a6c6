#include "instruments/fft/fft_analyser.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "core/messages.h"
#include "core/overflow.h"
#include "core/scale_steps.h"
#include "core/solver.h"

namespace torvane {

namespace {

// A record of 2^20 samples is some hundred megabytes for a model's signals.
constexpr int LargestMaxOrder = 20;

// A step's part by which a sum of steps may be off.
constexpr double Rounding = 1e-3;

// How often in a record constants and generators are looked at: what came and went between two
// looks is a small part of it.
constexpr int Looks = 64;

int CheckedMaxOrder(int maxOrder) {
  if (maxOrder >= ZelXfer::MinOrder && maxOrder <= LargestMaxOrder) return maxOrder;
  FatalError("Fault in TZelXferF :: TZelXferF");
  return ZelXfer::MinOrder;
}

}  // namespace

ZelXfer::ZelXfer(ZelBenchTop& bench, int maxOrder, std::string name)
    : FrequencyAnalyser(InstrumentKind::FftAnalyser, std::move(name), bench, "Xfer", true),
      fft_(CheckedMaxOrder(maxOrder)),
      order_(fft_.MaxOrder()),
      excitationRecord_(fft_),
      watch_(bench, *this) {
  excitationPower_.reserve(std::size_t{1} << order_);
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
  BeginMeasurement();
}

// Of a measurement that is halted before its end, the records that are whole make the average.
void ZelXfer::Halt() {
  if (averaging_ && recordsTaken_ > 0) TakeMeasurement();
  averaging_ = false;
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
  const double wait = atOnce_ ? 0.0 : StepsToQuarter();
  clock_.Start(bench_.Time(), bench_.Solver()->Step(), wait);
  HoldPrevious();
  startDelayEnd_ = wait * bench_.Solver()->Step() + tStartDelay_;
  excitationEnd_ = startDelayEnd_ + RecordTime() - tEndDelay_;
  Changed();
}

// From there the command that a sample reads is the one that the loop has seen, too: the excitation
// changes half a sample later.
double ZelXfer::StepsToQuarter() const {
  const auto loop = Loop();
  if (!loop || loop->SampleTime <= 0.0) return 0.0;
  const double step = bench_.Solver()->Step();
  const double multiple = std::round(tSample_ / loop->SampleTime);
  if (multiple < 1.0 || std::abs(multiple * loop->SampleTime - tSample_) > Rounding * step) {
    return 0.0;
  }
  const double ahead = loop->NextSample + 0.25 * loop->SampleTime - bench_.Time();
  const double within = ahead - loop->SampleTime * std::floor(ahead / loop->SampleTime);
  return std::ceil(within / step - Rounding);
}

void ZelXfer::HoldPrevious() {
  switchTime_ = previousInstant_ + clock_.Span(0.5 * tSample_);
}

void ZelXfer::BeginMeasurement() {
  if (spectrum_ && RecordOf(0).TellsResponse()) ExchangeRecords();
  ClearCurrent();
  watch_.Begin();
  recordsTaken_ = 0;
  averaging_ = Averages() > 1;
  excitationPower_.assign(static_cast<std::size_t>(Length()), 0.0);
  for (ZelXferChannel* channel : records_) channel->BeginMeasurement(averaging_);
  BeginRecord();
}

void ZelXfer::BeginRecord() {
  sampleCount_ = 0;
  TakeOrigin();
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
    BeginMeasurement();
  }
  if (sampleCount_ >= Length()) {
    Error("Xfer:  Sampling too many points");
  } else if (!clock_.Reached(startDelayEnd_)) {
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
  HoldPrevious();
  if (clock_.Reached(excitationEnd_)) {
    excitation_ = offset_;
  } else {
    excitation_ =
        binary_ ? sequence_.Binary(amplitude_, offset_) : sequence_.Uniform(amplitude_, offset_);
  }
  if (!bypassFilter_) excitation_ = filter_.Step(excitation_);
  excitationRecord_.Sample(sampleCount_, excitation_);
  for (ZelXferChannel* channel : records_) channel->Sample(sampleCount_);
  ++sampleCount_;
  if (running_) watch_.SeeExcitation(t);
  if (sampleCount_ % std::max(1, Length() / Looks) == 0) watch_.SeeModel();
  if (sampleCount_ == Length()) CompleteRecord();
}

void ZelXfer::CompleteRecord() {
  ++recordsTaken_;
  watch_.SeeModel();
  ReadSamples();
  excitationRecord_.Transform(order_);
  // Without the run button the model does not get it.
  if (running_) excitationRecord_.AddPowerTo(excitationPower_);
  if (averaging_) {
    for (ZelXferChannel* channel : records_) channel->AddToAverage(excitationRecord_);
  }
  if (averaging_ && recordsTaken_ < Averages()) {
    excitationEnd_ = clock_.Next() + RecordTime() - tEndDelay_;
    BeginRecord();
  } else {
    CompleteMeasurement();
  }
}

void ZelXfer::TakeMeasurement() {
  if (averaging_) {
    for (ZelXferChannel* channel : records_) {
      channel->TakeAverage(recordsTaken_, spectrum_ ? nullptr : &excitationPower_);
    }
  }
  averaging_ = false;
  MeasuredRecord& record = RecordOf(0);
  record.Bins = {tSample_, Length()};
  record.Spectrum = spectrum_;
  record.Doubts = RecordDoubts();
  MarkExcited(excitationPower_, record.Excited);
  MakeResponse(0);
  EnableTrace(0);
}

void ZelXfer::CompleteMeasurement() {
  state_ = State::Complete;
  TakeMeasurement();
  running_ = false;
  Changed();
}

void ZelXfer::AutoRange() {
  // Set together: each limit is right only beside the other.
  SetFreqRange(NextHighestThisArray(1.0 / (tSample_ * Length()), CoarseLadder()), 0.25 / tSample_);
}

double ZelXfer::Progress() const {
  const int records = averaging_ ? std::max(Averages(), recordsTaken_) : 1;
  const double whole = averaging_ ? recordsTaken_ : 0;
  return (whole + static_cast<double>(sampleCount_) / Length()) / records;
}

std::vector<std::string> ZelXfer::Warnings() const {
  std::vector<std::string> warnings = FrequencyAnalyser::Warnings();
  if (tEndDelay_ == 0.0 && !spectrum_) {
    warnings.emplace_back(
        "End Zero Time = 0: the record cuts the response off, which leaks into all bins.");
  }
  if (atOnce_ && StepsToQuarter() != 0.0) {
    warnings.emplace_back(
        "The record begins on a sample of the model's loop, of which it reads what the sample "
        "before has left: the output a sample late.");
  }
  return warnings;
}

bool ZelXfer::StoreSlot(int slot) {
  return std::all_of(records_.begin(), records_.end(),
                     [&](ZelXferChannel* channel) { return channel->StoreData(slot); });
}

}  // namespace torvane
