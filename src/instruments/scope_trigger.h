#pragma once

#include <cstdint>

#include "instruments/scope_channel.h"

namespace torvane {

enum class SweepMode { Cont, Auto, Normal };

/// Decides when a scope starts a new screen: watches a source against a level, with slope, initial
/// delay, event count and delay after the event. All times are simulated seconds, read from the time
/// reference (the scope's horizontal channel).
class ZelTrigger {
 public:
  enum class Detection { InitialDelay, Arming, Armed, DelayAfter, Unused, Idle };

  ZelTrigger(ZelChannel& source, const ZelChannel& timeReference);

  void Rearm();
  void Disarm();
  /// One detection step; true when the trigger fires.
  bool Step();
  /// True when an automatic sweep is due.
  bool AutoTimeout();
  /// Whether the trigger fired since the last call.
  bool ConsumeFired();

  void SetMode(SweepMode mode);
  // Each of these restarts detection from the beginning.
  void SetSource(ZelChannel& source);
  void SetPositiveSlope(bool positive);
  void SetInitialDelay(bool on);
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
  Detection State() const { return state_; }

  double Level = 0.0;      ///< in the source's display units
  double Position = 20.0;  ///< per cent of the screen shown before the trigger point
  bool Roll = false;       ///< acted on by the scope
};

}  // namespace torvane
