#include "instruments/scope/scope_trigger.h"

#include <cmath>

namespace torvane {

namespace {
constexpr float ScreenDivisions = 10.0F;
constexpr double AutoScreens = 2.05;  // screens without an event before a sweep starts by itself
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

bool ZelTrigger::Step() {
  if (Now() < holdOff_) return false;
  switch (state_) {
    case Detection::InitialDelay:
      if (Now() < initialDelayTime_) return false;
      eventsRemaining_ = EventsWanted();
      state_ = Detection::Arming;
      [[fallthrough]];
    case Detection::Arming:
      // A crossing is never found by the step that arms.
      if (OnStartingSide()) state_ = Detection::Armed;
      return false;
    case Detection::Armed:
      return Crossed() && CountEvent();
    case Detection::DelayAfter:
      return FireWhenDelayed();
    case Detection::Unused:
    case Detection::Idle:
      break;
  }
  return false;
}

bool ZelTrigger::OnStartingSide() const {
  const double value = source_->Signal().DisplayValue();
  return positiveSlope_ ? value <= Level : value >= Level;
}

bool ZelTrigger::Crossed() const {
  const double value = source_->Signal().DisplayValue();
  return positiveSlope_ ? value > Level : value < Level;
}

bool ZelTrigger::CountEvent() {
  --eventsRemaining_;
  if (eventsRemaining_ > 0) {
    // The signal must return to the starting side before the next event counts.
    state_ = Detection::Arming;
    return false;
  }
  eventTime_ = Now();
  if (!delayAfter_) {
    Fire();
    return true;
  }
  state_ = Detection::DelayAfter;
  return FireWhenDelayed();
}

bool ZelTrigger::FireWhenDelayed() {
  if (eventTime_ + delayAfterTime_ > Now()) return false;
  Fire();
  return true;
}

void ZelTrigger::Fire() {
  state_ = Detection::Idle;
  fireTime_ = Now();
  fired_ = true;
  autoDeadline_ = Now() + AutoPeriod();
  holdOff_ = Now() + ScreenTime();
}

bool ZelTrigger::AutoTimeout() {
  if (mode_ != SweepMode::Auto) return false;
  if (Now() <= autoDeadline_) return false;
  autoDeadline_ = Now() + AutoPeriod();
  return true;
}

bool ZelTrigger::ConsumeFired() {
  const bool fired = fired_;
  fired_ = false;
  return fired;
}

// A negative time scale mirrors the screen; time passes all the same.
double ZelTrigger::ScreenTime() const {
  return std::abs(timeReference_.Horizontal.Scale) * ScreenDivisions;
}

double ZelTrigger::AutoPeriod() const {
  return ScreenTime() * AutoScreens;
}

void ZelTrigger::SetMode(SweepMode mode) {
  mode_ = mode;
  if (mode == SweepMode::Cont) return;
  holdOff_ = Now();
  // The deadline is now and not a period from now, on purpose: whoever chooses Auto sees a screen
  // at once.
  if (mode == SweepMode::Auto) autoDeadline_ = Now();
}

template <typename Value>
void ZelTrigger::Change(Value& setting, Value value) {
  Disarm();
  setting = value;
  Rearm();
}

void ZelTrigger::SetSource(ZelChannel& source) {
  Change(source_, &source);
}
void ZelTrigger::SetPositiveSlope(bool positive) {
  Change(positiveSlope_, positive);
}
void ZelTrigger::SetInitialDelay(bool on) {
  Change(initialDelay_, on);
}
void ZelTrigger::SetInitialDelayTime(double seconds) {
  Change(initialDelayTime_, seconds);
}
void ZelTrigger::SetCountEvents(bool on) {
  Change(countEvents_, on);
}
void ZelTrigger::SetNumberOfEvents(std::int32_t count) {
  Change(numberOfEvents_, count);
}
void ZelTrigger::SetDelayAfter(bool on) {
  Change(delayAfter_, on);
}
void ZelTrigger::SetDelayAfterTime(double seconds) {
  Change(delayAfterTime_, seconds);
}

}  // namespace torvane
