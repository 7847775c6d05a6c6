#include "ui/desk/run_driver.h"

#include <algorithm>

#include "core/run_loop.h"
#include "core/solver.h"
#include "ui/desk/vector_state.h"

namespace torvane {

namespace {

constexpr qint64 LongestPass = 10'000'000;    // nanoseconds, as a rule
constexpr qint64 ShortestFrame = 33'000'000;  // nanoseconds
constexpr qint64 LongestFrame = 100'000'000;
constexpr qint64 FrameShare = 20;  // of the time, painting may take one part in so many

}  // namespace

RunDriver::RunDriver(QObject* parent) : QObject(parent), frameInterval_(ShortestFrame) {}

void RunDriver::Start(ZelModel& model) {
  model_ = &model;
  sinceFrame_.start();
  chunks_ = 1;
  running_ = true;
  if (!paused_) timer_.start(0, this);
}

void RunDriver::Stop() {
  running_ = false;
  timer_.stop();
}

void RunDriver::Pause() {
  paused_ = true;
  timer_.stop();
}

void RunDriver::Resume() {
  paused_ = false;
  if (running_) timer_.start(0, this);
}

void RunDriver::End() {
  Stop();
  emit Ended();
}

void RunDriver::timerEvent(QTimerEvent*) {
  Pass();
}

// A box that a chunk shows has a message loop of its own; the message loop does not deliver the
// same timer within its own delivery, so a pass never begins inside another.
void RunDriver::Pass() {
  ZelModel& model = *model_;
  ReleaseUpperVectorHalves();
  const qint64 start = sinceFrame_.nsecsElapsed();
  try {
    if (RunPass(model, chunks_) == PassResult::Stopped) End();
  } catch (const SolverOverflow& overflow) {
    End();
    OfferResetAfterOverflow(model, overflow);
  } catch (const std::exception& error) {
    End();
    ReportRunTimeError(error);
  }
  const qint64 now = sinceFrame_.nsecsElapsed();
  SizeNextPass(now - start);
  if (now >= frameInterval_) ShowFrame();
}

// Chunks of one model are about equally long until a time base changes, so the next pass takes its
// measure from this one.
void RunDriver::SizeNextPass(qint64 nanoseconds) {
  if (nanoseconds > LongestPass) {
    chunks_ = std::max(1, chunks_ / 2);
  } else if (nanoseconds < LongestPass / 2) {
    chunks_ = std::min(ChunksPerPass, 2 * chunks_);
  }
}

void RunDriver::ShowFrame() {
  sinceFrame_.start();
  emit Frame();
  frameInterval_ = std::clamp(FrameShare * sinceFrame_.nsecsElapsed(), ShortestFrame, LongestFrame);
}

}  // namespace torvane
