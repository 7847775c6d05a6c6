#pragma once

#include <cfenv>

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace torvane::loops {

/// Whether arithmetic has overflowed, divided by zero or come to no number since the flags were
/// cleared; asked for as in OverflowRaised.
inline bool NumberFaultRaised() {
#if defined(__SSE2_MATH__)
  constexpr unsigned Flags = _MM_EXCEPT_OVERFLOW | _MM_EXCEPT_DIV_ZERO | _MM_EXCEPT_INVALID;
  return (_mm_getcsr() & Flags) != 0;
#else
  return std::fetestexcept(FE_OVERFLOW | FE_DIVBYZERO | FE_INVALID) != 0;
#endif
}

inline void ClearNumberFaults() {
  if (NumberFaultRaised()) std::feclearexcept(FE_OVERFLOW | FE_DIVBYZERO | FE_INVALID);
}

}  // namespace torvane::loops
