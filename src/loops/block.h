#pragma once

#include <cstddef>

#include "core/carried.h"

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
/// it remembers is its own. It allocates nothing but in Prepare and Carry.
class Block {
 public:
  Block() = default;
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  virtual ~Block() = default;

  /// The parameters have their values for the run to come, without a fault. What the block
  /// remembers stays.
  virtual void Prepare() {}
  /// Outputs from what it remembers and, where they act on them at once, from its inputs; called
  /// where the sorted equations need them.
  virtual void Output(const Moment& /*now*/) {}
  /// Slopes of its states and what it remembers, from its inputs; called behind all equations.
  virtual void Update(const Moment& /*now*/) {}
  /// The loop begins anew, its numbers with it: nothing that the block remembers stays.
  virtual void Reset() {}

  /// Lists what the block remembers. From then on it remembers all of it in the same places.
  virtual void Carry(Carried& /*carried*/) {}
  /// Its states were moved from outside: outputs that mirror them follow.
  virtual void FollowStates() {}

  /// What is wrong with the parameters, in a sentence's end ("a must not begin with 0"); nullptr
  /// when nothing is.
  virtual const char* Fault() const { return nullptr; }
  /// What a user may not have meant, as a fault is told.
  virtual const char* Doubt() const { return nullptr; }
  /// How many numbers it remembers with these parameters, where that has no bound.
  virtual std::size_t Remembered() const { return 0; }
};

}  // namespace torvane::loops
