#include "instruments/scope/scope.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "core/messages.h"

namespace torvane {

namespace {

constexpr double ContinuousPosition = 0.0;   // per cent of history in a continuous screen
constexpr double AutomaticPosition = 100.0;  // and in one that starts without an event
constexpr double RollStep = 0.01;            // part of the screen that leaves when it rolls
constexpr int DefaultWidth = 640;
constexpr int DefaultHeight = 480;

// The bench's time variable; a bench without one is given one, for nothing here works without.
Variable& TimeVarOf(ZelBenchTop& bench, std::unique_ptr<TimeVariable>& missing) {
  if (!bench.TimeVar()) {
    FatalError("Fault in ZelScope :: ZelScope");
    missing = std::make_unique<TimeVariable>(bench, "Time", "sec", DisplayDefaults{});
  }
  return *bench.TimeVar();
}

}  // namespace

ZelScope::ZelScope(ZelBenchTop& bench, std::string name, int screenLength, int ringLength,
                   ZelTrigger* trigger)
    : Instrument(InstrumentKind::Scope, std::move(name)),
      memory_(bench, TimeVarOf(bench, missingTimeVar_), screenLength, ringLength),
      trigger_(trigger) {
  AssignColours();
  if (!trigger_) {
    ownTrigger_ = std::make_unique<ZelTrigger>(FirstDisplayedChannel(), memory_.TimeChannel());
    trigger_ = ownTrigger_.get();
  }
  SetSampleInterval();
  SetScreenSize(DefaultWidth, DefaultHeight);
  bench.AddInstrument(*this);
}

bool ZelScope::Sample(double t) {
  if (!clock_.TakeDue(t, interval_)) return true;
  if (!singleShot_ && state_ == Capture::Stopped) state_ = Capture::Waiting;
  if (trigger_->Mode() == SweepMode::Cont && state_ == Capture::Waiting) {
    StartScreen(ContinuousPosition);
  }
  // The very first screen starts at once, without a trigger and without history.
  if (t == 0.0 && trigger_->Mode() == SweepMode::Auto && state_ != Capture::Filling) {
    memory_.ClearScreen();
    needsRedraw_ = true;
    state_ = Capture::Filling;
  }
  switch (state_) {
    case Capture::Filling:
      return Fill();
    case Capture::Waiting:
      Wait();
      return true;
    case Capture::Stopped:
      break;
  }
  return true;
}

bool ZelScope::Fill() {
  if (!memory_.Advance(true)) return true;
  screenCompleted_ = true;
  if (singleShot_) {
    state_ = Capture::Stopped;
    return false;
  }
  if (trigger_->Roll && trigger_->Mode() != SweepMode::Normal) {
    memory_.ClearPostTrigger(RollStep);
    needsRedraw_ = true;
  } else {
    state_ = Capture::Waiting;
  }
  return true;
}

void ZelScope::Wait() {
  memory_.Advance(false);
  if (trigger_->Step()) {
    trigger_->Rearm();
    StartScreen(std::trunc(trigger_->Position));
  }
  if (trigger_->AutoTimeout()) {
    trigger_->Rearm();
    StartScreen(AutomaticPosition);
  }
}

void ZelScope::StartScreen(double percent) {
  memory_.StartScreenFromHistory(percent);
  needsRedraw_ = true;
  state_ = Capture::Filling;
}

void ZelScope::Start() {
  if (state_ == Capture::Stopped) state_ = Capture::Waiting;
}

void ZelScope::Refresh() {
  lamp_.Refresh(*trigger_);
  Instrument::Refresh();
}

void ZelScope::SetSampleInterval() {
  const double screenTime = std::abs(memory_.TimeChannel().Horizontal.Scale) * HorizontalDivisions;
  // Never 0, or the clock would stand still.
  interval_ = std::max(screenTime / (ScreenLength() - 1), std::numeric_limits<double>::min());
  // A sample due long after the new screen would have ended is a leftover of a much slower scale.
  if (std::isfinite(clock_.Serviced()) && clock_.Next() > clock_.Serviced() + screenTime) {
    clock_.SetNext(clock_.Serviced() + interval_);
  }
  state_ = Capture::Waiting;
}

void ZelScope::SetScreenSize(int width, int height) {
  width_ = std::max(width, 3);
  height_ = std::max(height, 3);
  memory_.SetScreenSize(width_, height_);
  needsRedraw_ = true;
}

bool ZelScope::TakeScreenCompleted() {
  return std::exchange(screenCompleted_, false);
}

bool ZelScope::TakeNeedsRedraw() {
  return std::exchange(needsRedraw_, false);
}

ScopeScreen ZelScope::CopyScreen() const {
  const auto points = [this](const ZelChannel& channel) {
    std::vector<float> values(static_cast<std::size_t>(memory_.PointCount()));
    for (std::size_t k = 0; k < values.size(); ++k) {
      values[k] = channel.ScreenValue(memory_.PointIndex(static_cast<int>(k)));
    }
    return values;
  };
  ScopeScreen screen{points(memory_.TimeChannel()), {}};
  for (const auto& channel : Channels()) screen.Values.push_back(points(*channel));
  return screen;
}

void ZelScope::ShowScreen(const ScopeScreen& screen) {
  const int count = std::min(static_cast<int>(screen.Time.size()), ScreenLength());
  const auto show = [count](ZelChannel& channel, const std::vector<float>& values) {
    for (int i = 0; i < std::min(count, static_cast<int>(values.size())); ++i) {
      channel.SetScreenValue(i, values[static_cast<std::size_t>(i)]);
    }
  };
  show(memory_.TimeChannel(), screen.Time);
  for (std::size_t k = 0; k < std::min(Channels().size(), screen.Values.size()); ++k) {
    show(*Channels()[k], screen.Values[k]);
  }
  memory_.SetPointCount(count);
  if (state_ == Capture::Filling) state_ = Capture::Waiting;
  needsRedraw_ = true;
}

}  // namespace torvane
