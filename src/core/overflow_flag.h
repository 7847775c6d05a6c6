#pragma once

#include <cfenv>

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace torvane {

/// Whether arithmetic has overflowed since the flag was cleared. Where doubles are computed in SSE
/// registers their own status word is enough and costs a tenth of the library's call, which asks
/// the long-double unit as well: a combine that overflows there leaves a state that is not finite.
inline bool OverflowRaised() {
#if defined(__SSE2_MATH__)
  return (_mm_getcsr() & _MM_EXCEPT_OVERFLOW) != 0;
#else
  return std::fetestexcept(FE_OVERFLOW) != 0;
#endif
}

}  // namespace torvane
