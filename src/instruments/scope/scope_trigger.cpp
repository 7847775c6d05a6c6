#include "instruments/scope/scope_trigger.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/numeric.h"
#include "core/text.h"
#include "instruments/scope/scope.h"
#include "instruments/setting_limits.h"

namespace torvane {

namespace {
constexpr double AutoScreens = 2.05;  // screens without an event before a sweep starts by itself

std::string Switched(const std::string& setting, bool on) {
  return setting + (on ? " on" : " off");
}

double LimitedDelay(double seconds) {
  return WithoutMinusZero(std::clamp(seconds, 0.0, LongestTime));
}

}  // namespace

ZelTrigger::ZelTrigger(ZelChannel& source, const ZelChannel& timeReference)
    : timeReference_(timeReference), source_(&source) {
  Rearm();
  SetMode(SweepMode::Auto);
}

void ZelTrigger::Rearm() {
  state_ = initialDelay_ ? Detection::InitialDelay : Detection::Arming;
  eventsRemaining_ = EventsWanted();
}

void ZelTrigger::Disarm() {
  state_ = Detection::Idle;
}

bool ZelTrigger::Step(double now, double value) {
  if (now < holdOff_) return false;
  switch (state_) {
    case Detection::InitialDelay:
      if (now < initialDelayTime_) return false;
      eventsRemaining_ = EventsWanted();
      state_ = Detection::Arming;
      [[fallthrough]];
    case Detection::Arming:
      // A crossing is never found by the step that arms.
      if (OnStartingSide(value)) state_ = Detection::Armed;
      return false;
    case Detection::Armed:
      return Crossed(value) && CountEvent(now);
    case Detection::DelayAfter:
      return FireWhenDelayed(now);
    case Detection::Unused:
    case Detection::Idle:
      break;
  }
  return false;
}

bool ZelTrigger::CountEvent(double now) {
  --eventsRemaining_;
  if (eventsRemaining_ > 0) {
    // The signal must return to the starting side before the next event counts.
    state_ = Detection::Arming;
    return false;
  }
  eventTime_ = now;
  if (!delayAfter_) {
    Fire(now);
    return true;
  }
  state_ = Detection::DelayAfter;
  return FireWhenDelayed(now);
}

bool ZelTrigger::FireWhenDelayed(double now) {
  if (eventTime_ + delayAfterTime_ > now) return false;
  Fire(now);
  return true;
}

void ZelTrigger::Fire(double now) {
  state_ = Detection::Idle;
  fireTime_ = now;
  fired_ = true;
  autoDeadline_ = now + AutoPeriod();
  holdOff_ = now + ScreenTime();
}

bool ZelTrigger::AutoTimeout(double now) {
  if (mode_ != SweepMode::Auto) return false;
  if (now <= autoDeadline_) return false;
  autoDeadline_ = now + AutoPeriod();
  return true;
}

bool ZelTrigger::ConsumeFired() {
  const bool fired = fired_;
  fired_ = false;
  return fired;
}

// A negative time scale mirrors the screen; time passes all the same.
double ZelTrigger::ScreenTime() const {
  return std::abs(timeReference_.Horizontal().Scale) * ZelScope::HorizontalDivisions;
}

double ZelTrigger::AutoPeriod() const {
  return ScreenTime() * AutoScreens;
}

void ZelTrigger::Make(const Change& change, const Caption& caption) {
  if (makeChange_) {
    makeChange_(change, caption);
  } else {
    change();
  }
}

void ZelTrigger::SetMode(SweepMode mode) {
  const auto change = [&] {
    mode_ = mode;
    if (mode == SweepMode::Cont) return;
    holdOff_ = Now();
    // The deadline is now and not a period from now, on purpose: whoever chooses Auto sees a screen
    // at once.
    if (mode == SweepMode::Auto) autoDeadline_ = Now();
  };
  static constexpr std::array names{"Cont", "Auto", "Normal"};
  Make(change,
       [&] { return std::string("Trigger Mode = ") + names[static_cast<std::size_t>(mode)]; });
}

void ZelTrigger::SetLevel(double level) {
  if (!std::isfinite(level)) return;
  Make([&] { level_ = WithoutMinusZero(level); },
       [&] { return "Trigger Level = " + FormatEdit(level_); });
}

void ZelTrigger::SetPosition(double percent) {
  if (std::isnan(percent)) return;
  Make([&] { position_ = WithoutMinusZero(std::clamp(percent, 0.0, 100.0)); },
       [&] { return "Trigger Position = " + FormatEdit(position_); });
}

void ZelTrigger::SetRoll(bool on) {
  Make([&] { roll_ = on; }, [&] { return Switched("Roll", on); });
}

template <typename Value>
void ZelTrigger::Restart(Value& setting, Value value, const Caption& caption) {
  const auto change = [&] {
    Disarm();
    setting = value;
    Rearm();
  };
  Make(change, caption);
}

void ZelTrigger::SetSource(ZelChannel& source) {
  Restart(source_, &source, [&] { return "Trigger Source = " + source.Name(); });
}
void ZelTrigger::SetPositiveSlope(bool positive) {
  Restart(positiveSlope_, positive,
          [&] { return std::string("Trigger Slope = ") + (positive ? "Positive" : "Negative"); });
}
void ZelTrigger::SetInitialDelay(bool on) {
  Restart(initialDelay_, on, [&] { return Switched("Initial Delay", on); });
}
void ZelTrigger::SetInitialDelayTime(double seconds) {
  if (std::isnan(seconds)) return;
  Restart(initialDelayTime_, LimitedDelay(seconds),
          [&] { return "Initial Delay = " + FormatEdit(initialDelayTime_); });
}
void ZelTrigger::SetCountEvents(bool on) {
  Restart(countEvents_, on, [&] { return Switched("Count Events", on); });
}
void ZelTrigger::SetNumberOfEvents(std::int32_t count) {
  Restart(numberOfEvents_, std::max(count, 1),
          [&] { return "Number of Events = " + std::to_string(numberOfEvents_); });
}
void ZelTrigger::SetDelayAfter(bool on) {
  Restart(delayAfter_, on, [&] { return Switched("Delay After", on); });
}
void ZelTrigger::SetDelayAfterTime(double seconds) {
  if (std::isnan(seconds)) return;
  Restart(delayAfterTime_, LimitedDelay(seconds),
          [&] { return "Delay After = " + FormatEdit(delayAfterTime_); });
}

}  // namespace torvane
