#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/bench.h"
#include "core/instrument.h"
#include "instruments/scope_channel.h"
#include "instruments/scope_trigger.h"

namespace torvane {

/// Copy of what one screen of a scope holds, oldest point first.
struct ScopeScreen {
  std::vector<float> Time;
  std::vector<std::vector<float>> Values;  ///< by channel, in the scope's channel order
};

/// Oscilloscope: records every offered signal of a bench, waits for its trigger and fills a screen
/// of points with their pixels.
class ZelScope final : public Instrument {
 public:
  static constexpr int HorizontalDivisions = 10;
  static constexpr int VerticalDivisions = 8;
  enum class Capture { Stopped, Filling, Waiting };

  ZelScope(ZelBenchTop& bench, std::string name, int screenLength = 401, int ringLength = 802);

  double NextTime() const override;
  bool Service(double t) override { return Sample(t); }
  /// Takes a sample when one is due; false only when a single shot has just completed.
  bool Sample(double t);

  const std::vector<std::unique_ptr<ZelChannel>>& Channels() const { return channels_; }
  ZelChannel& TimeChannel() { return *timeChannel_; }
  /// By name, the time channel included; nullptr when there is none.
  ZelChannel* FindChannel(const std::string& name);
  ZelChannel& FirstDisplayedChannel() const;
  /// The X axis.
  ZelChannel* HorizontalChannel();
  const ZelChannel* HorizontalChannel() const;
  void SetHorizontalChannel(ZelChannel& channel);
  bool XYMode() const;
  ZelTrigger& Trigger() { return *trigger_; }

  /// Shows or hides a trace; at most eight are shown, the later ones in channel order lose.
  void SetDisplayed(ZelChannel& channel, bool displayed);
  /// A scale of 0 (or not a number) is refused with a report and gives false.
  bool SetVerticalScale(ZelChannel& channel, double scale);
  void SetVerticalOffset(ZelChannel& channel, double offset);
  bool SetHorizontalScale(ZelChannel& channel, double scale);
  void SetHorizontalOffset(ZelChannel& channel, double offset);
  /// Scales to the points on the screen: the larger magnitude to the edge around zero, or the whole
  /// trace over the eight divisions.
  void AutoVertical(ZelChannel& channel);
  void FillVertical(ZelChannel& channel);

  bool SingleShot() const { return singleShot_; }
  void SetSingleShot(bool on);

  /// Pixels of the paint area; every point is computed anew.
  void SetScreenSize(int width, int height);
  int Width() const { return width_; }
  int Height() const { return height_; }

  int ScreenLength() const { return screenLength_; }
  int RingLength() const { return ringLength_; }
  double SampleInterval() const { return interval_; }
  Capture State() const { return state_; }
  /// The screen is circular: points run from StartIndex to FillIndex modulo ScreenLength; a
  /// FillIndex of -1 means an empty screen.
  int StartIndex() const { return startIndex_; }
  int FillIndex() const { return fillIndex_; }
  /// A screen has filled since the last call.
  bool TakeScreenCompleted();
  /// More than new points has changed since the last call: paint everything.
  bool TakeNeedsRedraw();

  ScopeScreen CopyScreen() const;
  /// Puts a copied screen back, for showing.
  void ShowScreen(const ScopeScreen& screen);
};

}  // namespace torvane
