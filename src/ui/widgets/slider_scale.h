#pragma once

namespace torvane {

class Constant;

/// The scale of a slider between a constant's limits, from 0 to 1: linear, or logarithmic where the
/// limits have one sign and span decades. A scale that starts at zero is logarithmic where its
/// default is small beside its upper limit, and reaches three decades below the default; its very
/// beginning is zero.
double FractionOf(const Constant& constant);
/// With three digits, as fine as a hand can tell.
double ValueAt(const Constant& constant, double fraction);

}  // namespace torvane
