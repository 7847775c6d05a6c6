#pragma once

#include "core/time_driven.h"

namespace torvane::loops {

/// When an evaluation of the loop takes place, simulated seconds.
struct Moment {
  double Time = 0.0;
  double StepStart = 0.0;  ///< of the solver's step that it belongs to
  double Step = 0.0;       ///< length of the solver's steps

  /// The first evaluation of its step.
  bool BeginsStep() const { return Time == StepStart; }
};

/// A block of a loop. Its inputs, parameters, outputs and states are numbers of the loop; what else
/// it remembers is its own. It allocates nothing but in Prepare.
class Block {
 public:
  Block() = default;
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  virtual ~Block() = default;

  /// The parameters have their values for the run to come.
  virtual void Prepare() {}
  /// Outputs from what it remembers and, where they act on them at once, from its inputs; called
  /// where the sorted equations need them.
  virtual void Output(const Moment& /*now*/) {}
  /// Slopes of its states and what it remembers, from its inputs; called behind all equations.
  virtual void Update(const Moment& /*now*/) {}
  /// The model was reset: nothing that the block remembers stays.
  virtual void Reset(ResetKind kind) = 0;

  /// What is wrong with the parameters, in a sentence's end ("a must not begin with 0"); nullptr
  /// when nothing is.
  virtual const char* Fault() const { return nullptr; }
};

}  // namespace torvane::loops
