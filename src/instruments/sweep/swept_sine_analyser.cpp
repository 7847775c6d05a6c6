#include "instruments/sweep/swept_sine_analyser.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "core/angle.h"
#include "core/messages.h"
#include "core/solver.h"
#include "instruments/analyser/refusal.h"
#include "instruments/analyser/response_reading.h"
#include "instruments/whole_periods.h"

namespace torvane {

namespace {

constexpr double UnsettledPoint = 0.1;  // of its amplitude: 1 dB, 6 degrees
// Points that make a sweep doubtful. Near the rate of a sampled loop one period is too short to
// tell a sine from its image, and quantised signals stand still now and then.
constexpr int UnsettledPart = 3;
constexpr int AtLimitPart = 20;
constexpr int LeastAtLimit = 2;
constexpr double NearlyNothing = -120.0;  // dB, beside the output

std::string PointsOf(int some, int all) {
  return std::to_string(some) + " of " + std::to_string(all) + " points";
}

}  // namespace

constinit thread_local double ZelSweptDSA::sharedPhase_ = 0.0;

ZelSweptDSA::ZelSweptDSA(ZelBenchTop& bench, std::string name)
    : FrequencyAnalyser(InstrumentKind::SweptSine, std::move(name), bench, "SweptDSA", false),
      watch_(bench, *this) {
  for (const Variable* variable : bench.Variables()) {
    if (variable->Internal()) continue;
    auto channel = std::make_unique<ZelSweptDSAChannel>(*variable, Capacity);
    points_.push_back(channel.get());
    AddChannel(std::move(channel));
  }
  CheckChannels();
  RecordOf(0).Frequencies.reserve(Capacity);
  ApplySweepRange();
}

void ZelSweptDSA::Run() {
  if (IsRefused(CheckPlan(PlottedSetup(), Capacity))) {
    Halt();
    return;
  }
  pointsExpected_ = ExpectedPlan().Points;
  running_ = true;
  state_ = State::Start;
  clock_.Start(bench_.Time(), bench_.Solver()->Step());
  Changed();
}

void ZelSweptDSA::Halt() {
  Finish(State::Idle);
}

// The point that was being measured has seen the overflow.
void ZelSweptDSA::Restart() {
  if (InProgress()) Halt();
}

void ZelSweptDSA::Finish(State state) {
  state_ = state;
  excitation_ = 0.0;
  running_ = false;
  Changed();
}

bool ZelSweptDSA::InProgress() const {
  return state_ != State::Idle && state_ != State::Done;
}

double ZelSweptDSA::NextTime() const {
  return state_ == State::Start || state_ == State::Measuring ? clock_.Request() : -1.0;
}

double ZelSweptDSA::NextTick() const {
  return InProgress() ? clock_.Request() : -1.0;
}

// Between two points the samples of others tell when to step.
NextSample ZelSweptDSA::BeginTape(const SampleTape& /*tape*/) {
  if (state_ == State::Advance) return {bench_.Time(), true};
  if (state_ != State::Measuring) return {NextTime(), true};
  onTape_ = clock_;
  endOnTape_ = clock_.Steps(measurementEnd_);
  settledOnTape_ = false;
  unsettledOnTape_ = 0;
  excitationBefore_ = excitation_;
  sine_.SetPhase(Phase());
  sineBefore_ = sine_;
  return NextOnTape();
}

// A tick that may end a window is taken at once. A clock that has fallen behind ticks with the next
// step, whatever its instant.
NextSample ZelSweptDSA::NextOnTape() const {
  return {onTape_.Request(), onTape_.NextStep() + 2.0 >= endOnTape_};
}

NextSample ZelSweptDSA::AwaitOnTape(double t) {
  onTape_.TakeDue(t, tSample_);
  Excite(t);
  if (!settledOnTape_) {
    settledOnTape_ = onTape_.Reached(settleEnd_);
    if (!settledOnTape_) ++unsettledOnTape_;
  }
  return NextOnTape();
}

void ZelSweptDSA::ReadTape(const SampleTape& tape, std::span<const int> rows) {
  clock_ = onTape_;
  if (rows.empty() || tape.Time(rows.back()) < tape.LastTime()) {
    clock_.TakeDue(tape.LastTime(), tSample_);
    if (rows.empty()) return;
  }
  const auto seen = bench_.MetersExcite() ? rows : rows.last(1);
  for (const int row : seen) watch_.SeeExcitation(tape.Time(row));
  rows = rows.subspan(unsettledOnTape_);
  if (rows.empty()) return;
  const SweepTicks ticks(f_, tape, rows, window_);
  // Where nobody else has samples in between, a signal's values lie side by side.
  const auto first = static_cast<std::size_t>(rows.front());
  const bool inARow = rows.size() == static_cast<std::size_t>(rows.back()) - first + 1;
  std::array<double, SampleTape::Most> some{};
  for (ZelSweptDSAChannel* channel : points_) {
    const double* values = tape.Values(channel->Signal());
    if (inARow) {
      values += first;
    } else {
      std::ranges::transform(rows, some.begin(), [&](int row) { return values[row]; });
      values = some.data();
    }
    channel->Accumulate(window_, ticks, std::span(values, rows.size()));
  }
  window_.Add(ticks);
}

bool ZelSweptDSA::Service(double t) {
  if (!InProgress() || !clock_.TakeDue(t, tSample_)) return true;
  if (state_ == State::Start) {
    BeginSweep();
    BeginPoint();
  } else if (state_ == State::Advance) {
    StepFrequency(t);
    BeginPoint();
  }
  sine_.SetPhase(Phase());  // which another analyser may have moved since
  Excite(t);
  watch_.SeeExcitation(t);
  if (clock_.Reached(settleEnd_)) {
    for (ZelSweptDSAChannel* channel : points_) channel->Accumulate(window_);
    window_.Add(SweepTick::At(f_, t));
    if (clock_.Reached(measurementEnd_)) CompletePoint();
  }
  return true;
}

void ZelSweptDSA::Excite(double t) {
  excitation_ = sine_.At(t) * amplitude_ + offset_;
}

void ZelSweptDSA::BeginSweep() {
  pointIndex_ = 0;
  f_ = FreqMin();
  ClearCurrent();
  TakeOrigin();
  watch_.Begin();
  for (ZelSweptDSAChannel* channel : points_) channel->ClearPoints();
}

void ZelSweptDSA::StepFrequency(double t) {
  ++pointIndex_;
  double& phase = Phase();
  phase += TwoPi * f_ * t;
  f_ = NextSweepFrequency(Setup(), f_);
  phase -= TwoPi * f_ * t;
}

void ZelSweptDSA::BeginPoint() {
  state_ = State::Measuring;
  settleEnd_ = clock_.Elapsed() + settleTime_;
  measurementEnd_ = settleEnd_ + WholePeriods(measurementTime_ / f_) / f_;
  windows_ = 0;
  window_.Reset();
  sine_.Start(f_);
  for (ZelSweptDSAChannel* channel : points_) channel->ResetSums();
}

void ZelSweptDSA::CompletePoint() {
  ++windows_;
  if (windows_ < Averages()) {
    for (ZelSweptDSAChannel* channel : points_) channel->NextWindow(window_);
    window_.Next();
    measurementEnd_ += WholePeriods(measurementTime_ / f_) / f_;
    return;
  }
  for (ZelSweptDSAChannel* channel : points_) {
    if (channel->Measure(pointIndex_, window_)) continue;
    Finish(State::Done);
    return;
  }
  watch_.SeeModel();
  RecordOf(0).Frequencies.push_back(f_);
  RecordOf(0).Excited.push_back(amplitude_ > 0.0);
  RecordOf(0).Doubts = RecordDoubts();
  MakeResponse(0);
  if (f_ < FreqMax()) {
    state_ = State::Advance;
    EnableTrace(0);
  } else {
    Finish(State::Done);
  }
}

std::vector<std::string> ZelSweptDSA::RecordDoubts() const {
  std::vector<std::string> doubts = watch_.Doubts();
  for (const ZelSweptDSAChannel* channel : points_) {
    const int atLimit = channel->PointsAtLimit();
    if (atLimit < LeastAtLimit || atLimit * AtLimitPart < PointCount()) continue;
    doubts.push_back(channel->Name() + " stood at a limit at " + PointsOf(atLimit, PointCount()) +
                     ": the response is not that of a linear loop.");
  }
  return doubts;
}

std::vector<std::string> ZelSweptDSA::PairDoubts(int slot) const {
  const auto& input = dynamic_cast<const ZelSweptDSAChannel&>(*Input());
  const auto& output = dynamic_cast<const ZelSweptDSAChannel&>(*Output());
  const int points = RecordEnd(slot);
  int unsettled = 0;
  bool nothing = true;
  for (int point = 0; point < points; ++point) {
    const double most = std::max(input.Unsettled(slot, point), output.Unsettled(slot, point));
    if (most > UnsettledPoint) ++unsettled;
    nothing = nothing && input.GainOf(slot, point) <= output.GainOf(slot, point) + NearlyNothing;
  }
  if (nothing) {
    return {input.Name() + " is nearly nothing beside " + output.Name() +
            ": their ratio is that of rounding."};
  }
  if (unsettled * UnsettledPart < points) return {};
  return {"The loop was still moving at " + PointsOf(unsettled, points) +
          ": more Settle Time lets it come to rest."};
}

double ZelSweptDSA::Progress() const {
  if (pointsExpected_ == 0) return 0.0;
  return std::min(1.0, static_cast<double>(PointCount()) / pointsExpected_);
}

void ZelSweptDSA::SetVisible(bool visible) {
  PutAwayTraces(!visible);
  FrequencyAnalyser::SetVisible(visible);
}

bool ZelSweptDSA::StoreSlot(int slot) {
  return std::all_of(points_.begin(), points_.end(),
                     [&](ZelSweptDSAChannel* channel) { return channel->StoreData(slot); });
}

}  // namespace torvane
