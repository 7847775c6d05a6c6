#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/bench.h"
#include "core/instrument.h"
#include "instruments/sample_clock.h"
#include "instruments/scope/kept_traces.h"
#include "instruments/scope/scope_channel.h"
#include "instruments/scope/scope_memory.h"
#include "instruments/scope/scope_trigger.h"
#include "instruments/scope/trigger_lamp.h"

namespace torvane {

/// The panel of a scope's window that lists the model's constants; a width of 0 is the window's
/// choice. Pixels.
struct ConstantsPanel {
  static constexpr int Widest = 32767;

  bool Shown = true;
  int Width = 0;
  int NameWidth = 0;  ///< of the column of names
};

/// Upright lines on the screen, at which values are read. They stand at pixels of the screen as it
/// is shown, whatever is drawn there, and no file keeps them.
struct ScopeCursors {
  static constexpr int Farthest = 32767;

  int Mode = 0;  ///< number of cursors, 0 to 2
  std::array<int, 2> X{10, 20};
};

/// Oscilloscope: records every offered signal of a bench, waits for its trigger and fills a screen
/// of points.
///
/// The points of a screen span ten divisions of the time channel's horizontal scale, one sample
/// interval apart. Works without a window.
class ZelScope final : public Instrument {
 public:
  static constexpr int HorizontalDivisions = 10;
  static constexpr int VerticalDivisions = 8;
  /// What is done with samples: none are taken, a screen fills, or its event is awaited.
  enum class Capture { Stopped, Filling, Waiting };

  /// Adds itself to the bench. Makes its own trigger, on the first displayed channel, unless it is
  /// given one. A bench without a time variable is a fatal error.
  ZelScope(ZelBenchTop& bench, std::string name, int screenLength = 401, int ringLength = 802,
           ZelTrigger* trigger = nullptr);

  double NextTime() const override { return clock_.Request(); }
  bool Service(double t) override { return Sample(t); }
  NextSample BeginTape(const SampleTape& tape) override;
  NextSample AwaitOnTape(double t) override;
  void ReadTape(const SampleTape& tape, std::span<const int> rows) override;
  /// Takes a sample when one is due; false only when a screen has just completed that stops the
  /// run. Throws SolverOverflow when a signal is not finite in single precision.
  bool Sample(double t);
  /// A completed single shot is taken anew.
  void Start() override;
  void Refresh() override;

  const std::vector<std::unique_ptr<SignalChannel>>& Channels() const { return memory_.Channels(); }
  ZelTimeChannel& TimeChannel() const { return memory_.TimeChannel(); }
  /// What it measures on.
  const ZelBenchTop& Bench() const { return memory_.Bench(); }
  /// By name, the time channel included; nullptr when there is none.
  ZelChannel* FindChannel(const std::string& name);
  /// Else the first channel; without any channel, the time channel.
  ZelChannel& FirstDisplayedChannel() const;
  /// Indices of the channels whose traces are shown, in channel order.
  std::vector<std::size_t> DisplayedChannels() const;
  /// The X axis; without one reports and gives nullptr.
  ZelChannel* HorizontalChannel();
  const ZelChannel* HorizontalChannel() const;
  void SetHorizontalChannel(ZelChannel& channel);
  bool XYMode() const { return !memory_.TimeChannel().IsHorizontal(); }
  ZelTrigger& Trigger() const { return *trigger_; }
  /// The trigger lamp, as of the last refresh.
  bool TriggerLit() const { return lamp_.Lit(); }

  /// Shows or hides a trace; at most eight are shown, the later ones in channel order lose. A trace
  /// that stays keeps its colour, one that is shown anew has the first that is free.
  void SetDisplayed(ZelChannel& channel, bool displayed);
  /// A scale of 0 (or not a finite number) is refused with a report and gives false; its magnitude
  /// is limited to 1e-100 ... 1e100.
  bool SetVerticalScale(ZelChannel& channel, double scale);
  /// An offset that is not a finite number is ignored.
  void SetVerticalOffset(ZelChannel& channel, double offset);
  /// As SetVerticalScale; the time channel's scale sets the sample interval too.
  bool SetHorizontalScale(ZelChannel& channel, double scale);
  void SetHorizontalOffset(ZelChannel& channel, double offset);
  /// Scales to the points of a sweep: the larger magnitude to the edge around zero, or the whole
  /// trace over the eight divisions. A flat trace cannot fill and is noted.
  void AutoVertical(SignalChannel& channel, ScopeSweep sweep = ScopeSweep::Present);
  void FillVertical(SignalChannel& channel, ScopeSweep sweep = ScopeSweep::Present);
  /// As AutoVertical, of a signal as X axis.
  void AutoHorizontal(SignalChannel& channel, ScopeSweep sweep = ScopeSweep::Present);

  /// Captures one screen, and stops the run and itself then. No file keeps it.
  bool SingleShot() const { return singleShot_; }
  void SetSingleShot(bool on);
  /// Stops the run whenever a screen is full; the scope goes on when the model does.
  bool StopsModel() const { return stopsModel_; }
  void SetStopsModel(bool on);

  const ScopeCursors& Cursors() const { return cursors_; }
  /// Limited to 0 ... 2.
  void SetCursorMode(int mode);
  /// Moves cursor 0 or 1; limited to 0 ... ScopeCursors::Farthest.
  void SetCursorX(std::size_t cursor, int x);

  int ScreenLength() const { return memory_.ScreenLength(); }
  double SampleInterval() const { return interval_; }
  /// Takes the interval from the time channel's scale, whatever its sign, and waits for the trigger
  /// anew. The setters do so by themselves.
  void SetSampleInterval();
  Capture State() const { return state_; }
  /// The present sweep's screen is circular: points run from StartIndex to FillIndex modulo
  /// ScreenLength; a FillIndex of -1 means an empty screen.
  int StartIndex() const { return memory_.StartIndex(); }
  int FillIndex() const { return memory_.FillIndex(); }
  /// A screen has filled since the last call.
  bool TakeScreenCompleted();
  /// More than new points has changed since the last call: paint everything.
  bool TakeNeedsRedraw();
  /// Whether the last sweep began without an event, by itself.
  bool LastSweepAutomatic() const { return lastSweepAutomatic_; }
  /// How many sweeps did.
  std::uint64_t AutomaticSweeps() const { return automaticSweeps_; }
  /// Sweeps begun.
  std::uint64_t SweepCount() const { return memory_.SweepCount(); }

  void SaveRecords(RecordWriter& writer) const override;
  void LoadRecord(const Record& record) override;
  void SaveState(RecordWriter& writer) const override;
  void LoadState(const Record& record) override;
  void FinishLoading(const std::function<void(int line)>& atLine) override;

  const ConstantsPanel& ConstForm() const { return constForm_; }
  void SetConstForm(const ConstantsPanel& panel);

  /// The traces kept for comparison with the live ones; nullptr when there are none.
  const ScopeScreen* Kept() const { return kept_.Shown(); }
  /// Keeps a screen's traces in place of any kept before; one without points is not kept.
  void KeepTraces(const ScopeScreen& screen);
  /// By which the kept traces are known among all that ever were kept, undone or not; 0 for none.
  int KeptIdentity() const { return kept_.Identity(); }
  /// Has other traces in the place of the kept ones: no change of its own to undo.
  void RenewKeptTraces(const ScopeScreen& screen);
  /// Those with that identity in place of the present ones; 0 for none.
  void ShowKeptTraces(int identity);
  void ClearKeptTraces() { ShowKeptTraces(0); }

  /// The constants of the present sweep; nullptr before the first.
  const TraceOrigin* Origin() const { return memory_.Origin(); }

  /// Copies the points of a sweep into a screen, whose storage is used again.
  void CopyScreen(ScopeSweep sweep, ScopeScreen& into) const { memory_.CopyScreen(sweep, into); }

 private:
  struct LoadedTrace {
    ZelChannel* Channel;
    bool Displayed;
  };

  ZelChannel* FindHorizontal() const;
  enum class SweepCause { Event, Automatic };
  void BeginSample();
  bool Fill();
  bool EndScreen();
  void Wait();
  std::size_t Wait(const SampleTape& tape, std::span<const int> rows);
  void StartTriggered(SweepCause cause);
  void StartScreen(double percent, SweepCause cause);
  void BeginSweep(SweepCause cause);
  void AssignColours();
  void LoadChannel(const Record& record);
  void LoadTriggerRecord(const Record& record);
  void LoadConstForm(const Record& record);
  void LoadCursors(const Record& record);
  void LoadKept(const Record& record);
  void LoadColours(const Record& record);
  void AutoScale(AxisScale& axis, SignalChannel& channel, int divisions, ScopeSweep sweep,
                 const std::string& caption);
  void ChangeAxis(AxisScale& axis, const AxisScale& value, const std::string& caption);

  std::unique_ptr<TimeVariable> missingTimeVar_;  // stands in on a bench that has none
  ScopeMemory memory_;
  SampleClock clock_;
  SampleClock onTape_;  // the clock as of the last sample on the tape
  double interval_ = 0.0;
  Capture state_ = Capture::Waiting;
  bool singleShot_ = false;
  bool stopsModel_ = false;
  bool screenCompleted_ = false;
  bool needsRedraw_ = true;
  bool lastSweepAutomatic_ = false;
  std::uint64_t automaticSweeps_ = 0;
  std::unique_ptr<ZelTrigger> ownTrigger_;
  ZelTrigger* trigger_;
  TriggerLamp lamp_;
  ConstantsPanel constForm_;
  ScopeCursors cursors_;
  KeptTraces kept_;
  std::vector<LoadedTrace> loaded_;  // of a file that is being read
  std::vector<int> loadedColours_;   // of an undo
  bool restoring_ = false;           // records of an undo, not of a file
};

}  // namespace torvane
