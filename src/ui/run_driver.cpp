#include "ui/run_driver.h"

#include "core/run_loop.h"
#include "core/solver.h"

namespace torvane {

namespace {

constexpr int FrameMilliseconds = 33;

}  // namespace

RunDriver::RunDriver(QObject* parent) : QObject(parent) {
  timer_.setInterval(0);
  connect(&timer_, &QTimer::timeout, this, &RunDriver::Pass);
}

void RunDriver::Start(ZelModel& model) {
  model_ = &model;
  sinceFrame_.start();
  timer_.start();
}

void RunDriver::Stop() {
  timer_.stop();
}

void RunDriver::End() {
  timer_.stop();
  emit Ended();
}

// A box that a chunk shows has a message loop of its own; the message loop does not deliver the
// same timer within its own delivery, so a pass never begins inside another.
void RunDriver::Pass() {
  ZelModel& model = *model_;
  try {
    if (RunPass(model) == PassResult::Stopped) End();
  } catch (const SolverOverflow&) {
    End();
    OfferResetAfterOverflow(model);
  } catch (const std::exception& error) {
    End();
    ReportRunTimeError(error);
  }
  if (sinceFrame_.hasExpired(FrameMilliseconds)) {
    sinceFrame_.start();
    emit Frame();
  }
}

}  // namespace torvane
