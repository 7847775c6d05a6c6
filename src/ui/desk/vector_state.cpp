#include "ui/desk/vector_state.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace torvane {

#if defined(__x86_64__)

namespace {

__attribute__((target("avx"))) void ZeroUpper() {
  _mm256_zeroupper();
}

}  // namespace

void ReleaseUpperVectorHalves() {
  static const bool hasWideVectors = __builtin_cpu_supports("avx");
  if (hasWideVectors) ZeroUpper();
}

#else

void ReleaseUpperVectorHalves() {}

#endif

}  // namespace torvane
