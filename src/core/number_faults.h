#pragma once

#include <cfenv>

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace torvane {

/// What makes a number that is not finite: an overflow, a division by zero, or no result at all.
inline constexpr int NumberFaults = FE_OVERFLOW | FE_DIVBYZERO | FE_INVALID;

/// Whether one was raised since the flags were cleared; asked for as in OverflowRaised.
inline bool NumberFaultRaised() {
#if defined(__SSE2_MATH__)
  constexpr unsigned Flags = _MM_EXCEPT_OVERFLOW | _MM_EXCEPT_DIV_ZERO | _MM_EXCEPT_INVALID;
  return (_mm_getcsr() & Flags) != 0;
#else
  return std::fetestexcept(NumberFaults) != 0;
#endif
}

/// The same, and also of what was computed in extended precision.
inline bool NumberFaultRaisedAnywhere() {
  return std::fetestexcept(NumberFaults) != 0;
}

/// Forgets what was raised, which takes longer than to look.
inline void ClearNumberFaults() {
  if (NumberFaultRaisedAnywhere()) std::feclearexcept(NumberFaults);
}

}  // namespace torvane
