#pragma once

#include <exception>

namespace torvane {

class SolverOverflow;
class ZelModel;

/// Chunks in one pass of the run loop: after them control goes back to the message loop.
inline constexpr int ChunksPerPass = 25;

enum class PassResult {
  Running,  ///< all chunks ran, more may follow
  Paused,   ///< a scope is busy; try again when it is free
  Stopped,  ///< an instrument wants the run to stop
};

/// One pass of a running model: up to `chunks` chunks, at most ChunksPerPass. Lets SolverOverflow
/// and whatever else a chunk throws through.
PassResult RunPass(ZelModel& model, int chunks = ChunksPerPass);

/// What to do about an overflow: asks whether to reset the state variables and on OK resets them
/// and everything that the model remembers, huge values of which would overflow again at once. The
/// question ends in what happened. The caller has stopped the model.
void OfferResetAfterOverflow(ZelModel& model, const SolverOverflow& overflow);

/// Reports any other exception of a chunk. The caller has stopped the model.
void ReportRunTimeError(const std::exception& error);

}  // namespace torvane
