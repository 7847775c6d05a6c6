#pragma once

#include <optional>

#include "drawing/loop_names.h"

namespace torvane::drawing {

// What equations say that has a sign of its own in a block diagram.

using Expr = const loops::Expression*;

/// "if u > most then most elseif u < least then least else u", or with min and max.
struct Limits {
  Expr Of;
  Expr Least;
  Expr Most;
};
std::optional<Limits> AsLimits(const loops::Expression& e, const LoopNames& names);

/// "floor(u / step) * step".
struct Steps {
  Expr Of;
  Expr Step;
};
std::optional<Steps> AsSteps(const loops::Expression& e, const LoopNames& names);

/// "(x - pre(x)) / T": what x has changed since the sample before; Over is nullptr without a T.
struct Change {
  Expr Of;
  Expr Over;
};
std::optional<Change> AsChange(const loops::Expression& e);

/// The terms of "x = pre(x) + terms".
std::optional<std::vector<std::pair<bool, Expr>>> AsRunningSum(const std::string& x,
                                                               const loops::Expression& e);

/// "if condition then idle else value" or the other way round, where `isIdle` knows the idle one.
struct Held {
  Expr Condition;
  bool Otherwise;  ///< it goes on while the condition does not hold
  Expr Value;
};
template <class Idle>
std::optional<Held> AsHeld(const loops::Expression& e, const Idle& isIdle) {
  if (e.What != loops::Expression::Kind::If || e.Parts.size() != 3) return {};
  if (isIdle(e.Parts[1])) return Held{&e.Parts[0], true, &e.Parts[2]};
  if (isIdle(e.Parts[2])) return Held{&e.Parts[0], false, &e.Parts[1]};
  return {};
}

/// Whether it is a call of that function of the name alone.
bool IsCallOf(const loops::Expression& e, const std::string& function, const std::string& name);

}  // namespace torvane::drawing
