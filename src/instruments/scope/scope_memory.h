#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/bench.h"
#include "core/sample_tape.h"
#include "instruments/scope/scope_channel.h"

namespace torvane {

struct TraceOrigin;

/// Which sweep of a scope is meant.
enum class ScopeSweep {
  Present,  ///< the one being captured, or the last one when none is
  Whole     ///< the last complete one; the present one before there is any
};

/// Copy of what one screen of a scope holds, oldest point first, as recorded: without the signals'
/// display multipliers.
struct ScopeScreen {
  std::uint64_t Sweep = 0;          ///< which one, counted from 1; 0 before the first
  double Left = 0.0;                ///< the time at the left edge, where the first point stands
  std::optional<double> EventTime;  ///< of the event that the sweep began with
  /// The constants with which the sweep began, or scrolled last; nullptr for traces from elsewhere.
  std::shared_ptr<const TraceOrigin> Origin;
  std::vector<double> Time;
  std::vector<std::vector<float>> Values;  ///< by channel, in the scope's channel order

  int PointCount() const { return static_cast<int>(Time.size()); }
};

/// What a scope has recorded: the time channel and one channel a signal, which share the write
/// position of their history rings and the extent of their circular screens. A complete screen is
/// kept while the next one fills.
///
/// A screen's points run from StartIndex to FillIndex modulo ScreenLength. A FillIndex of -1 means
/// an empty screen.
class ScopeMemory {
 public:
  /// One channel for each variable of the bench that instruments are offered, in the bench's order.
  /// The lengths are limited to what the buffer operations need: a screen of 4 points and a ring of
  /// two screens.
  ScopeMemory(ZelBenchTop& bench, Variable& timeVar, int screenLength, int ringLength);

  const std::vector<std::unique_ptr<SignalChannel>>& Channels() const { return channels_; }
  ZelTimeChannel& TimeChannel() const { return *timeChannel_; }
  const ZelBenchTop& Bench() const { return bench_; }

  int ScreenLength() const { return screenLength_; }
  // Of the present sweep.
  int StartIndex() const { return Present().Start; }
  int FillIndex() const { return Present().Fill; }
  bool ScreenFull() const {
    return FillIndex() >= 0 && Next(FillIndex(), screenLength_) == StartIndex();
  }

  /// Sweeps begun.
  std::uint64_t SweepCount() const { return Present().Sweep; }

  /// Of the present sweep; nullptr before the first.
  const TraceOrigin* Origin() const { return Present().Origin.get(); }

  /// Copies a sweep's points into a screen, whose storage is used again.
  void CopyScreen(ScopeSweep sweep, ScopeScreen& into) const;

  /// Stores the present values into the history and, when filling, as the screen's next point too.
  /// The result tells whether a screen being filled is now full; without filling it is true.
  /// Throws SolverOverflow when a value is not finite in single precision; nothing is stored then.
  bool Advance(bool fill);

  /// The same with samples that a tape has of a run, as many as rows: with each, when filling, the
  /// screen has room for it. The result is that of the last one.
  bool Advance(const SampleTape& tape, std::span<const int> rows, bool fill);
  /// Points that the screen has room for.
  int FreePoints() const;
  /// Samples that the ring can take before it loses what a new screen may begin with.
  int SpareHistory() const { return ringLength_ - screenLength_; }

  void ClearScreen();

  /// Starts a screen with the most recent samples, the last one newest. They take the given part of
  /// the screen, but at least two points and at most all but one.
  void StartScreenFromHistory(double percent);
  /// The newest sample is the event that the present sweep began with.
  void MarkEvent();

  /// Lets the oldest points leave a full screen, as many as the given fraction of it rounded up
  /// (at least two), and makes their places the next to be filled.
  void ClearPostTrigger(double fraction);

 private:
  struct Extent {
    std::uint64_t Sweep = 0;
    int Start = 0;
    int Fill = -1;
    std::optional<double> EventTime{};
    std::shared_ptr<const TraceOrigin> Origin{};
  };

  static int Next(int index, int length) { return index + 1 == length ? 0 : index + 1; }
  const Extent& Present() const { return extents_[present_]; }
  bool Filled();
  void StoreHistory();
  void CopyPoint(int ringIndex);
  void BeginScreen();
  void TakeOrigin();

  const ZelBenchTop& bench_;
  int screenLength_;
  int ringLength_;
  int ringIndex_;
  std::array<Extent, SignalChannel::ScreenCount> extents_;
  std::size_t present_ = 0;  // screen of the present sweep
  std::size_t whole_ = 0;    // and of the last complete one
  bool anyWhole_ = false;
  std::vector<double> constants_;  // with which origin_ was taken
  std::shared_ptr<const TraceOrigin> origin_;
  std::unique_ptr<ZelTimeChannel> timeChannel_;
  std::vector<std::unique_ptr<SignalChannel>> channels_;
};

}  // namespace torvane
