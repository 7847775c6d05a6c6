#include "ui/desk/run_driver.h"

#include <QTimerEvent>
#include <algorithm>

#include "core/model.h"
#include "core/run_loop.h"
#include "core/solver.h"
#include "ui/desk/vector_state.h"

namespace torvane {

namespace {

constexpr qint64 LongestPass = 10'000'000;    // nanoseconds
constexpr qint64 LongestTurn = 500'000;       // of the message loop, before the last of its passes
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
  StartTimers(0);
}

// A model that is ahead of its pace needs one pass a turn.
void RunDriver::StartTimers(int interval) {
  interval_ = interval;
  StopTimers();
  timers_.front().start(interval, this);
  if (interval > 0) return;
  for (std::size_t i = 1; i < timers_.size(); ++i) timers_[i].start(interval, this);
}

void RunDriver::StopTimers() {
  for (QBasicTimer& timer : timers_) timer.stop();
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
  StopTimers();
}

void RunDriver::Leave() {
  Stop();
  model_ = nullptr;
}

void RunDriver::Pause() {
  paused_ = true;
  StopTimers();
}

void RunDriver::Resume() {
  paused_ = false;
  Wake();
}

void RunDriver::End() {
  Stop();
  emit Ended();
}

// A frame ends its turn: the windows paint before the next one.
void RunDriver::timerEvent(QTimerEvent* event) {
  const qint64 now = clock_.nsecsElapsed();
  if (event->timerId() == timers_.front().timerId()) BeginTurn(now);
  if (turnOver_ || now - turnStart_ > LongestTurn) return;
  if (now - frameStart_ < frameInterval_) {
    Pass(now);
    return;
  }
  frameStart_ = now;
  frameShown_ = true;
  turnOver_ = true;
  emit Frame();
}

void RunDriver::BeginTurn(qint64 now) {
  turnStart_ = now;
  turnOver_ = false;
  if (!frameShown_) return;
  frameShown_ = false;
  frameInterval_ = std::clamp(FrameShare * (now - frameStart_), ShortestFrame, LongestFrame);
}

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
    // The question has a message loop of its own, which a timer's event must not hold up.
    const auto offer = [this, overflow] {
      if (model_) OfferResetAfterOverflow(*model_, overflow);
    };
    QMetaObject::invokeMethod(this, offer, Qt::QueuedConnection);
  } catch (const std::exception& error) {
    End();
    ReportRunTimeError(error);
  }
}

void RunDriver::SleepUntilNext(int interval) {
  if (!running_ || paused_ || interval == interval_) return;
  StartTimers(interval);
}

}  // namespace torvane
