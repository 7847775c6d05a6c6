#pragma once

#include <memory>
#include <vector>

#include "core/bench.h"
#include "instruments/scope/scope_channel.h"

namespace torvane {

/// What a scope has recorded: the time channel and one channel a signal, which share the write
/// position of their history rings and the extent of their circular screens.
///
/// A screen's points run from StartIndex to FillIndex modulo ScreenLength. A FillIndex of -1 means
/// an empty screen.
class ScopeMemory {
 public:
  /// One channel for each variable of the bench that instruments are offered, in the bench's order.
  /// The lengths are limited to what the buffer operations need: a screen of 4 points and a ring of
  /// two screens.
  ScopeMemory(ZelBenchTop& bench, Variable& timeVar, int screenLength, int ringLength);

  const std::vector<std::unique_ptr<ZelChannel>>& Channels() const { return channels_; }
  ZelTimeChannel& TimeChannel() const { return *timeChannel_; }

  int ScreenLength() const { return screenLength_; }
  int RingLength() const { return ringLength_; }
  int StartIndex() const { return startIndex_; }
  int FillIndex() const { return fillIndex_; }
  /// Points on the screen.
  int PointCount() const;
  /// Screen index of the k-th point, oldest first.
  int PointIndex(int k) const { return (startIndex_ + k) % screenLength_; }
  bool ScreenFull() const {
    return fillIndex_ >= 0 && Next(fillIndex_, screenLength_) == startIndex_;
  }

  void SetScreenSize(int width, int height);

  /// Stores the present values into the history and, when filling, as the screen's next point too.
  /// The result tells whether a screen being filled is now full; without filling it is true.
  bool Advance(bool fill);

  void ClearScreen();

  /// Starts a screen with the most recent samples, the last one newest. They take the given part of
  /// the screen, but at least two points and at most all but one.
  void StartScreenFromHistory(double percent);

  /// Lets the oldest points leave a full screen, as many as the given fraction of it rounded up
  /// (at least two), and makes their places the next to be filled.
  void ClearPostTrigger(double fraction);

  /// Replaces the screen by the first count points, already stored, of every channel.
  void SetPointCount(int count);

 private:
  static int Next(int index, int length) { return index + 1 == length ? 0 : index + 1; }
  void StoreHistory();
  void StorePoint();
  void CopyPoint(int ringIndex);
  void SetStartIndex(int index);
  static void ComputePoint(ZelChannel& channel, int index);

  int screenLength_;
  int ringLength_;
  int ringIndex_;
  int startIndex_ = 0;
  int fillIndex_ = -1;
  std::unique_ptr<ZelTimeChannel> timeChannel_;
  std::vector<std::unique_ptr<ZelChannel>> channels_;
};

}  // namespace torvane
