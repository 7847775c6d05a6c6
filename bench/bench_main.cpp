#include "ratio_reporter.h"

using torvane::bench::Ratio;

// Exit code 1 when a ratio misses its goal.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  torvane::bench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const bool met = reporter.PrintRatios({
      {"2-1 engine / hand-fused loop", "Engine/2-1", "Fused/2-1", 2.0},
      {"3-1 engine / hand-fused loop", "Engine/3-1", "Fused/3-1", 2.0},
      {"6-1 engine / hand-fused loop", "Engine/6-1", "Fused/6-1", 2.0},
      {"15-1 engine / hand-fused loop", "Engine/15-1", "Fused/15-1", 2.0},
      {"3-1 engine / Boost.odeint runge_kutta4", "Engine/3-1", "Odeint/3-1", 1.0},
      {"FFT of 2^14 / FFTW single precision", "Fft/16384", "Fftw/16384", 3.0},
  });
  return met ? 0 : 1;
}
