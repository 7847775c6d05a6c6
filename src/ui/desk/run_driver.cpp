#include "ui/desk/run_driver.h"

#include <QElapsedTimer>
#include <algorithm>

#include "core/run_loop.h"
#include "core/solver.h"
#include "ui/desk/vector_state.h"

namespace torvane {

namespace {

constexpr qint64 LongestPass = 10'000'000;    // nanoseconds
constexpr qint64 ShortestFrame = 33'000'000;  // nanoseconds
constexpr qint64 LongestFrame = 100'000'000;
constexpr qint64 FrameShare = 20;  // of the time, painting may take one part in so many

}  // namespace

RunDriver::RunDriver(QObject* parent) : QObject(parent), frameInterval_(ShortestFrame) {}

void RunDriver::Start(ZelModel& model) {
  model_ = &model;
  sinceFrame_.start();
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

// A frame is a turn of its own, so that the message loop gets control back in between.
void RunDriver::timerEvent(QTimerEvent*) {
  if (sinceFrame_.nsecsElapsed() >= frameInterval_) {
    ShowFrame();
  } else {
    Pass();
  }
}

// A box that a chunk shows has a message loop of its own; the message loop does not deliver the
// same timer within its own delivery, so a pass never begins inside another.
void RunDriver::Pass() {
  ZelModel& model = *model_;
  ReleaseUpperVectorHalves();
  QElapsedTimer timer;
  timer.start();
  const auto timeUp = [&timer] { return timer.nsecsElapsed() >= LongestPass; };
  try {
    if (RunPass(model, timeUp) == PassResult::Stopped) End();
  } catch (const SolverOverflow& overflow) {
    End();
    OfferResetAfterOverflow(model, overflow);
  } catch (const std::exception& error) {
    End();
    ReportRunTimeError(error);
  }
}

void RunDriver::ShowFrame() {
  sinceFrame_.start();
  emit Frame();
  frameInterval_ = std::clamp(FrameShare * sinceFrame_.nsecsElapsed(), ShortestFrame, LongestFrame);
}

}  // namespace torvane
