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
  TimeChannel().isHorizontal_ = true;
  AssignColours();
  if (!trigger_) {
    ownTrigger_ = std::make_unique<ZelTrigger>(FirstDisplayedChannel(), memory_.TimeChannel());
    trigger_ = ownTrigger_.get();
  }
  trigger_->MakeChangesThrough(
      [this](const auto& change, const auto& caption) { Change(change, caption); });
  SetSampleInterval();
  bench.AddInstrument(*this);
}

bool ZelScope::Sample(double t) {
  if (!clock_.TakeDue(t, interval_)) return true;
  BeginSample();
  // The very first screen starts at once, without a trigger and without history.
  if (t == 0.0 && trigger_->Mode() == SweepMode::Auto && state_ != Capture::Filling) {
    memory_.ClearScreen();
    BeginSweep(SweepCause::Automatic);
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

void ZelScope::BeginSample() {
  if (!singleShot_ && state_ == Capture::Stopped) state_ = Capture::Waiting;
  if (trigger_->Mode() == SweepMode::Cont && state_ == Capture::Waiting) {
    StartScreen(ContinuousPosition, SweepCause::Automatic);
  }
}

// A screen that may stop the run is sampled at once, and so is what the tape cannot follow: a
// trigger that others step too, a ring that it would go round.
NextSample ZelScope::BeginTape(const SampleTape& tape) {
  onTape_ = clock_;
  const bool noRoom = state_ == Capture::Filling && memory_.FreePoints() == 0;
  const bool atOnce = singleShot_ || stopsModel_ || !ownTrigger_ || noRoom ||
                      memory_.SpareHistory() < SampleTape::Most ||
                      !tape.Has(trigger_->Source().Signal());
  return {onTape_.Request(), atOnce};
}

NextSample ZelScope::AwaitOnTape(double t) {
  onTape_.TakeDue(t, interval_);
  return {onTape_.Request(), false};
}

void ZelScope::ReadTape(const SampleTape& tape, std::span<const int> rows) {
  clock_ = onTape_;
  clock_.Pass(tape.LastTime());
  while (!rows.empty()) {
    BeginSample();
    std::size_t count = rows.size();
    if (state_ == Capture::Filling) {
      count = std::min(count, static_cast<std::size_t>(memory_.FreePoints()));
      if (memory_.Advance(tape, rows.first(count), true)) EndScreen();
    } else {
      count = Wait(tape, rows);
    }
    rows = rows.subspan(count);
  }
}

bool ZelScope::Fill() {
  if (!memory_.Advance(true)) return true;
  return EndScreen();
}

// False when it stops the run.
bool ZelScope::EndScreen() {
  screenCompleted_ = true;
  if (singleShot_) {
    state_ = Capture::Stopped;
    return false;
  }
  if (trigger_->Roll() && trigger_->Mode() != SweepMode::Normal) {
    memory_.ClearPostTrigger(RollStep);
    needsRedraw_ = true;
  } else {
    state_ = Capture::Waiting;
  }
  return !stopsModel_;
}

void ZelScope::Wait() {
  memory_.Advance(false);
  if (trigger_->Step()) StartTriggered(SweepCause::Event);
  if (trigger_->AutoTimeout()) StartTriggered(SweepCause::Automatic);
}

// Takes samples up to the one that starts a screen; gives how many.
std::size_t ZelScope::Wait(const SampleTape& tape, std::span<const int> rows) {
  const Variable& source = trigger_->Source().Signal();
  const double* const values = tape.Values(source);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double now = tape.TimeShown()[rows[i]];
    const bool event = trigger_->Step(now, values[rows[i]] * source.Multiplier());
    if (!event && !trigger_->AutoTimeout(now)) continue;
    memory_.Advance(tape, rows.first(i + 1), false);
    StartTriggered(event ? SweepCause::Event : SweepCause::Automatic);
    return i + 1;
  }
  memory_.Advance(tape, rows, false);
  return rows.size();
}

void ZelScope::StartTriggered(SweepCause cause) {
  const bool event = cause == SweepCause::Event;
  trigger_->Rearm();
  StartScreen(event ? std::trunc(trigger_->Position()) : AutomaticPosition, cause);
  if (event) memory_.MarkEvent();
}

void ZelScope::StartScreen(double percent, SweepCause cause) {
  memory_.StartScreenFromHistory(percent);
  BeginSweep(cause);
}

void ZelScope::BeginSweep(SweepCause cause) {
  lastSweepAutomatic_ = cause == SweepCause::Automatic;
  if (lastSweepAutomatic_) ++automaticSweeps_;
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
  const double screenTime =
      std::abs(memory_.TimeChannel().Horizontal().Scale) * HorizontalDivisions;
  // Before the first sample the history is as plausible for another scale as for the first one.
  if (!std::isfinite(clock_.Serviced())) {
    memory_.TimeChannel().FillHistory(memory_.TimeChannel().Horizontal().Scale, ScreenLength());
  }
  // Never 0, or the clock would stand still.
  interval_ = std::max(screenTime / (ScreenLength() - 1), std::numeric_limits<double>::min());
  // A sample due long after the new screen would have ended is a leftover of a much slower scale.
  if (std::isfinite(clock_.Serviced()) && clock_.Next() > clock_.Serviced() + screenTime) {
    clock_.SetNext(clock_.Serviced() + interval_);
  }
  state_ = Capture::Waiting;
}

bool ZelScope::TakeScreenCompleted() {
  return std::exchange(screenCompleted_, false);
}

bool ZelScope::TakeNeedsRedraw() {
  return std::exchange(needsRedraw_, false);
}

void ZelScope::SetSingleShot(bool on) {
  Change([&] { singleShot_ = on; },
         [&] { return std::string("Single Shot ") + (on ? "on" : "off"); });
}

void ZelScope::SetStopsModel(bool on) {
  Change([&] { stopsModel_ = on; },
         [&] { return std::string("Stop Model ") + (on ? "on" : "off"); });
}

void ZelScope::SetConstForm(const ConstantsPanel& panel) {
  const auto change = [&] {
    constForm_ = {panel.Shown, std::clamp(panel.Width, 0, ConstantsPanel::Widest),
                  std::clamp(panel.NameWidth, 0, ConstantsPanel::Widest)};
  };
  Change(change, [] { return "Constants Panel"; });
}

void ZelScope::SetCursorMode(int mode) {
  static constexpr std::array captions{"No Cursors", "One Cursor", "Two Cursors"};
  Change([&] { cursors_.Mode = std::clamp(mode, 0, 2); },
         [&] { return std::string(captions[static_cast<std::size_t>(cursors_.Mode)]); });
}

void ZelScope::SetCursorX(std::size_t cursor, int x) {
  Change([&] { cursors_.X.at(cursor) = std::clamp(x, 0, ScopeCursors::Farthest); },
         [&] { return "Cursor " + std::to_string(cursor + 1); });
}

void ZelScope::KeepTraces(const ScopeScreen& screen) {
  if (screen.PointCount() == 0) return;
  const auto keep = [&] {
    kept_.Keep(screen);
    needsRedraw_ = true;
  };
  Change(keep, [] { return "Keep Traces"; });
}

void ZelScope::RenewKeptTraces(const ScopeScreen& screen) {
  kept_.Renew(screen);
  needsRedraw_ = true;
}

void ZelScope::ShowKeptTraces(int identity) {
  const auto show = [&] {
    kept_.Show(identity);
    needsRedraw_ = true;
  };
  Change(show, [&] { return kept_.Shown() ? "Keep Traces" : "Clear Kept Traces"; });
}

}  // namespace torvane
