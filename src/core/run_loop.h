#pragma once

#include <exception>
#include <functional>
#include <limits>

namespace torvane {

class SolverOverflow;
class ZelModel;

/// Chunks in one pass of the run loop, each with a sample of some instrument: after them control
/// goes back to the message loop.
inline constexpr int ChunksPerPass = 25;

/// How a pass has ended.
enum class PassResult {
  Running,  ///< all chunks ran or the time was up; more may follow
  Paused,   ///< a scope is busy; try again when it is free
  Stopped,  ///< an instrument wants the run to stop
};

/// One pass of a running model: up to ChunksPerPass chunks. Every few hundred steps it asks whether
/// its time is up; the pass then ends, in the middle of a chunk too, and the next one goes on with
/// that chunk: what is simulated does not depend on it. It ends so, too, with the step that reaches
/// the simulated time `until`. Lets SolverOverflow and whatever else a chunk throws through.
PassResult RunPass(ZelModel& model, const std::function<bool()>& timeUp = {},
                   double until = std::numeric_limits<double>::infinity());

/// What to do about an overflow: asks whether to reset the state variables and on OK resets them
/// and everything that the model remembers, huge values of which would overflow again at once. The
/// question ends in what happened. The caller has stopped the model.
void OfferResetAfterOverflow(ZelModel& model, const SolverOverflow& overflow);

/// Reports any other exception of a chunk. The caller has stopped the model.
void ReportRunTimeError(const std::exception& error);

}  // namespace torvane
