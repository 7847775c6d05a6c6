#include "loops/instruction.h"

#include <array>

#include "loops/operators.h"

namespace torvane::loops {

namespace {

using Handler = Instruction::Handler;

template <class Op>
void Binary(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  r[self->D] = Op::Of(r[self->A], r[self->B]);
  next.Go(r, frame);
}

template <class Op>
void Unary(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  r[self->D] = Op::Of(r[self->A]);
  next.Go(r, frame);
}

template <class Op>
void Comparison(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  r[self->D] = Op::Of(r[self->A], r[self->B]) ? 1.0 : 0.0;
  next.Go(r, frame);
}

template <class First, class Second>
void FusedLeft(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  r[self->D] = Second::Of(First::Of(r[self->A], r[self->B]), r[self->C]);
  next.Go(r, frame);
}

template <class First, class Second>
void FusedRight(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  r[self->D] = Second::Of(r[self->C], First::Of(r[self->A], r[self->B]));
  next.Go(r, frame);
}

template <class Op, bool When>
void JumpOn(const Instruction* self, double* r, Frame& frame) {
  if (Op::Of(r[self->A], r[self->B]) == When) return Run(self + self->D, r, frame);
  Run(self + 1, r, frame);
}

template <bool When>
void JumpOnTruth(const Instruction* self, double* r, Frame& frame) {
  if ((r[self->A] != 0.0) == When) return Run(self + self->D, r, frame);
  Run(self + 1, r, frame);
}

template <bool Truth>
void Set(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  r[self->D] = Truth ? 1.0 : 0.0;
  next.Go(r, frame);
}

void Limit(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  const double a = r[self->A];
  const double b = r[self->B];
  const double c = r[self->C];
  r[self->D] = b < a ? b : a < c ? c : a;
  next.Go(r, frame);
}

void Move(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  r[self->D] = r[self->A];
  next.Go(r, frame);
}

void Jump(const Instruction* self, double* r, Frame& frame) {
  Run(self + self->D, r, frame);
}

void SkipUnlessDue(const Instruction* self, double* r, Frame& frame) {
  Run(self + (frame.Clocks[self->A].SampleDue() ? 1 : self->D), r, frame);
}

void Reinit(const Instruction* self, double* r, Frame& frame) {
  const Next next(self);
  frame.States[self->D].SetPending(r[self->A]);
  frame.Pending = true;
  next.Go(r, frame);
}

void End(const Instruction* /*self*/, double* /*r*/, Frame& /*frame*/) {}

template <class First>
Handler FusedWith(Operation second, bool firstIsLeft) {
  switch (second) {
    case Operation::Add:
      return firstIsLeft ? FusedLeft<First, Add> : FusedRight<First, Add>;
    case Operation::Subtract:
      return firstIsLeft ? FusedLeft<First, Subtract> : FusedRight<First, Subtract>;
    case Operation::Multiply:
      return firstIsLeft ? FusedLeft<First, Multiply> : FusedRight<First, Multiply>;
    default:
      return firstIsLeft ? FusedLeft<First, Divide> : FusedRight<First, Divide>;
  }
}

template <class Op>
Handler JumpOf(bool when) {
  return when ? JumpOn<Op, true> : JumpOn<Op, false>;
}

}  // namespace

Handler HandlerOf(Operation what) {
  static constexpr std::array<Handler, 28> handlers{
      Binary<Add>,      Binary<Subtract>,      Binary<Multiply>,  Binary<Divide>,
      Binary<Power>,    Binary<Atan2>,         Binary<Min>,       Binary<Max>,
      Binary<Mod>,      Unary<Negate>,         Unary<Abs>,        Unary<Sign>,
      Unary<Floor>,     Unary<Ceil>,           Unary<Sqrt>,       Unary<Exp>,
      Unary<Log>,       Unary<Log10>,          Unary<Sin>,        Unary<Cos>,
      Unary<Tan>,       Unary<Asin>,           Unary<Acos>,       Unary<Atan>,
      Comparison<Less>, Comparison<LessEqual>, Comparison<Equal>, Comparison<NotEqual>,
  };
  return handlers.at(static_cast<std::size_t>(what));
}

Handler FusedHandler(Operation first, Operation second, bool firstIsLeft) {
  switch (first) {
    case Operation::Add:
      return FusedWith<Add>(second, firstIsLeft);
    case Operation::Subtract:
      return FusedWith<Subtract>(second, firstIsLeft);
    case Operation::Multiply:
      return FusedWith<Multiply>(second, firstIsLeft);
    default:
      return FusedWith<Divide>(second, firstIsLeft);
  }
}

Handler JumpHandler(Operation comparison, bool when) {
  switch (comparison) {
    case Operation::Less:
      return JumpOf<Less>(when);
    case Operation::LessEqual:
      return JumpOf<LessEqual>(when);
    case Operation::Equal:
      return JumpOf<Equal>(when);
    default:
      return JumpOf<NotEqual>(when);
  }
}

Handler TruthJumpHandler(bool when) {
  return when ? JumpOnTruth<true> : JumpOnTruth<false>;
}
Handler TruthHandler(bool truth) {
  return truth ? Set<true> : Set<false>;
}
Handler LimitHandler() {
  return Limit;
}
Handler MoveHandler() {
  return Move;
}
Handler JumpHandler() {
  return Jump;
}
Handler SkipUnlessDueHandler() {
  return SkipUnlessDue;
}
Handler ReinitHandler() {
  return Reinit;
}
Handler EndHandler() {
  return End;
}

}  // namespace torvane::loops
