#include "ui/desk/run_driver.h"

#include <QElapsedTimer>
#include <algorithm>

#include "core/model.h"
#include "core/run_loop.h"
#include "core/solver.h"
#include "ui/desk/vector_state.h"

namespace torvane {

namespace {

constexpr qint64 LongestPass = 10'000'000;    // nanoseconds
constexpr qint64 ShortestFrame = 33'000'000;  // nanoseconds
constexpr qint64 LongestFrame = 66'000'000;
constexpr int PacedMilliseconds = 10;  // between passes of a model that is ahead of its pace
constexpr double LongestLag = 0.1;     // seconds of real time that are caught up
constexpr qint64 FrameShare = 20;      // of the time, frames may take one part in so many

}  // namespace

RunDriver::RunDriver(QObject* parent) : QObject(parent), frameInterval_(ShortestFrame) {
  clock_.start();
}

void RunDriver::Start(ZelModel& model) {
  model_ = &model;
  frameStart_ = clock_.nsecsElapsed();
  frameShown_ = false;
  running_ = true;
  Wake();
}

void RunDriver::Wake() {
  if (!running_ || paused_) return;
  pacedFrom_ = model_->Time();
  sincePaced_.start();
  interval_ = 0;
  timer_.start(interval_, this);
}

void RunDriver::SetPace(double pace) {
  pace_ = pace;
  Wake();
}

// The simulated time that belongs to this moment. A model that lags behind is always given the
// longest lag to go.
double RunDriver::DueTime() {
  if (pace_ == Unlimited) return Unlimited;
  const double passed = static_cast<double>(sincePaced_.nsecsElapsed()) * 1e-9;
  const double due = pacedFrom_ + pace_ * passed;
  const double most = model_->Time() + pace_ * LongestLag;
  if (due <= most) return due;
  pacedFrom_ = most;
  sincePaced_.start();
  return most;
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
  Wake();
}

void RunDriver::End() {
  Stop();
  emit Ended();
}

// A frame is a turn of its own, so that the message loop gets control back in between. The windows
// paint before the next turn. In the shortest passes asking for the time counts: once a turn does.
void RunDriver::timerEvent(QTimerEvent*) {
  const qint64 now = clock_.nsecsElapsed();
  if (frameShown_) {
    frameShown_ = false;
    frameInterval_ = std::clamp(FrameShare * (now - frameStart_), ShortestFrame, LongestFrame);
  }
  if (now - frameStart_ >= frameInterval_) {
    frameStart_ = now;
    frameShown_ = true;
    emit Frame();
  } else {
    Pass(now);
  }
}

// A box that a chunk shows has a message loop of its own; the message loop does not deliver the
// same timer within its own delivery, so a pass never begins inside another.
void RunDriver::Pass(qint64 start) {
  ZelModel& model = *model_;
  ReleaseUpperVectorHalves();
  const auto timeUp = [this, start] { return clock_.nsecsElapsed() - start >= LongestPass; };
  try {
    const double due = DueTime();
    if (RunPass(model, timeUp, due) == PassResult::Stopped) End();
    SleepUntilNext(model.Time() >= due ? PacedMilliseconds : 0);
  } catch (const SolverOverflow& overflow) {
    End();
    OfferResetAfterOverflow(model, overflow);
  } catch (const std::exception& error) {
    End();
    ReportRunTimeError(error);
  }
}

void RunDriver::SleepUntilNext(int interval) {
  if (!running_ || paused_ || interval == interval_) return;
  interval_ = interval;
  timer_.start(interval, this);
}

}  // namespace torvane
