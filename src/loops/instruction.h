#pragma once

#include <cstdint>
#include <vector>

#include "core/variable.h"
#include "library/d_controller.h"
#include "loops/block.h"
#include "loops/operations.h"

namespace torvane::loops {

/// What instructions work on beside the registers.
struct Frame {
  Moment Now;
  Block* const* Blocks = nullptr;
  const ControllerClock* Clocks = nullptr;
  State* States = nullptr;
  bool Pending = false;  ///< a state was given a value for the end of the step
};

/// One operation on the registers: D, from A, B and C. Each runs the next one as its last act, so
/// that a program is a chain of jumps.
struct Instruction {
  using Handler = void (*)(const Instruction* self, double* registers, Frame& frame);

  Handler Run = nullptr;
  std::int32_t D = 0;
  std::int32_t A = 0;
  std::int32_t B = 0;
  std::int32_t C = 0;
};

/// Runs an instruction and those behind it. A call in tail position, which an optimising compiler
/// turns into a jump.
inline void Run(const Instruction* at, double* registers, Frame& frame) {
  at->Run(at, registers, frame);
}

/// The instruction behind another, whose handler is fetched at once: once the other has written a
/// number, which might be anywhere, a compiler takes longer about it.
class Next {
 public:
  explicit Next(const Instruction* self) : at_(self + 1), run_(at_->Run) {}
  void Go(double* registers, Frame& frame) const { run_(at_, registers, frame); }

 private:
  const Instruction* at_;
  Instruction::Handler run_;
};

/// A program ends with EndHandler's instruction.
using Program = std::vector<Instruction>;

/// Output and Update of block A, which is of the given kind.
template <class Kind>
void RunOutput(const Instruction* self, double* registers, Frame& frame) {
  const Next next(self);
  static_cast<Kind&>(*frame.Blocks[self->A]).Kind::Output(frame.Now);
  next.Go(registers, frame);
}
template <class Kind>
void RunUpdate(const Instruction* self, double* registers, Frame& frame) {
  const Next next(self);
  static_cast<Kind&>(*frame.Blocks[self->A]).Kind::Update(frame.Now);
  next.Go(registers, frame);
}

/// D = A op B, or D = op A; anything but truths.
Instruction::Handler HandlerOf(Operation what);
/// D = (A first B) second C, or D = C second (A first B), of arithmetic.
Instruction::Handler FusedHandler(Operation first, Operation second, bool firstIsLeft);
/// On by D instructions when the comparison of A and B gives `when`.
Instruction::Handler JumpHandler(Operation comparison, bool when);
/// On by D instructions when truth A is `when`.
Instruction::Handler TruthJumpHandler(bool when);
/// D = A > B ? B : A < C ? C : A.
Instruction::Handler LimitHandler();
/// D = A.
Instruction::Handler MoveHandler();
/// D = truth.
Instruction::Handler TruthHandler(bool truth);
/// On by D instructions.
Instruction::Handler JumpHandler();
/// On by D instructions unless clock A has a sample due.
Instruction::Handler SkipUnlessDueHandler();
/// State D takes A at the end of the step.
Instruction::Handler ReinitHandler();
Instruction::Handler EndHandler();

}  // namespace torvane::loops
