#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "instruments/scope/scope_channel.h"

namespace torvane {

/// When a screen starts: at once, at an event or after a while, at an event alone.
enum class SweepMode { Cont, Auto, Normal };

/// Decides when a scope starts a new screen: watches a source against a level, with slope, initial
/// delay, event count and delay after the event. All times are simulated seconds, read from the
/// time reference (the scope's time channel). A positive-slope event is a sample strictly above the
/// level after one at or below it; a negative-slope event the reverse.
class ZelTrigger {
 public:
  /// How far the detection of an event is.
  enum class Detection { InitialDelay, Arming, Armed, DelayAfter, Unused, Idle };

  /// Level 0, positive slope, armed, automatic, without delays or event count.
  ZelTrigger(ZelChannel& source, const ZelChannel& timeReference);

  using Change = std::function<void()>;
  using Caption = std::function<std::string()>;
  /// Setters make their changes through `make`, for an owner that records and shows them; the
  /// caption is for afterwards ("Trigger Level = 2").
  void MakeChangesThrough(std::function<void(const Change&, const Caption&)> make) {
    makeChange_ = std::move(make);
  }

  /// Detection from the beginning, initial delay and event count included.
  void Rearm();
  void Disarm();
  /// One detection step, at the present time or with what the time reference and the source had as
  /// display value then; true when the trigger fires. No further event is looked for until ten
  /// divisions of time have passed.
  bool Step() { return Step(Now(), source_->Signal().DisplayValue()); }
  bool Step(double now, double value);
  /// True when an automatic sweep is due: 20.5 divisions of time after the last sweep or event.
  bool AutoTimeout() { return AutoTimeout(Now()); }
  bool AutoTimeout(double now);
  /// Whether the trigger fired since the last call.
  bool ConsumeFired();

  // These leave the detection state alone.
  void SetMode(SweepMode mode);
  /// In the source's display units; what is not a finite number is ignored.
  void SetLevel(double level);
  /// Per cent of the screen shown before the trigger point, limited to 0 ... 100.
  void SetPosition(double percent);
  /// Acted on by the scope.
  void SetRoll(bool on);

  // Each of these restarts detection from the beginning. Delays are limited to 0 ... 1e9 s, the
  // number of events to 1 and more.
  void SetSource(ZelChannel& source);
  void SetPositiveSlope(bool positive);
  void SetInitialDelay(bool on);
  /// Absolute simulated time before which detection does not begin.
  void SetInitialDelayTime(double seconds);
  void SetCountEvents(bool on);
  void SetNumberOfEvents(std::int32_t count);
  void SetDelayAfter(bool on);
  void SetDelayAfterTime(double seconds);

  SweepMode Mode() const { return mode_; }
  ZelChannel& Source() const { return *source_; }
  bool PositiveSlope() const { return positiveSlope_; }
  bool InitialDelay() const { return initialDelay_; }
  double InitialDelayTime() const { return initialDelayTime_; }
  bool CountEvents() const { return countEvents_; }
  std::int32_t NumberOfEvents() const { return numberOfEvents_; }
  bool DelayAfter() const { return delayAfter_; }
  double DelayAfterTime() const { return delayAfterTime_; }
  double Level() const { return level_; }
  double Position() const { return position_; }
  bool Roll() const { return roll_; }
  Detection State() const { return state_; }
  /// When the trigger last fired.
  double FireTime() const { return fireTime_; }

 private:
  void Make(const Change& change, const Caption& caption);
  template <typename Value>
  void Restart(Value& setting, Value value, const Caption& caption);
  double Now() const { return timeReference_.Signal().Value; }
  double ScreenTime() const;
  double AutoPeriod() const;
  std::int32_t EventsWanted() const { return countEvents_ ? numberOfEvents_ : 1; }
  bool OnStartingSide(double value) const {
    return positiveSlope_ ? value <= level_ : value >= level_;
  }
  bool Crossed(double value) const { return positiveSlope_ ? value > level_ : value < level_; }
  bool CountEvent(double now);
  bool FireWhenDelayed(double now);
  void Fire(double now);

  std::function<void(const Change&, const Caption&)> makeChange_;
  const ZelChannel& timeReference_;
  ZelChannel* source_;
  SweepMode mode_ = SweepMode::Auto;
  double level_ = 0.0;
  double position_ = 20.0;
  bool roll_ = false;
  Detection state_ = Detection::Idle;
  bool positiveSlope_ = true;
  bool initialDelay_ = false;
  bool countEvents_ = false;
  bool delayAfter_ = false;
  bool fired_ = false;
  std::int32_t numberOfEvents_ = 1;
  std::int64_t eventsRemaining_ = 1;  // wider than the setting, which may be as low as it goes
  double initialDelayTime_ = 0.0;
  double delayAfterTime_ = 0.0;
  double holdOff_ = 0.0;       // no event is looked for before this time
  double autoDeadline_ = 0.0;  // an automatic sweep is due after this time
  double eventTime_ = 0.0;
  double fireTime_ = 0.0;
};

}  // namespace torvane
