#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <vector>

#include "instruments/analyser/excitation.h"
#include "instruments/fft/fft.h"

namespace torvane::bench {

namespace {

constexpr int Order = 14;
constexpr int Length = 1 << Order;

std::vector<float> Noise() {
  RandomSequence sequence;
  std::vector<float> samples(Length);
  for (float& x : samples) x = static_cast<float>(sequence.Uniform(2.0, 0.0));
  return samples;
}

// Both sides copy the same real record into their arrays and transform it as complex numbers in
// place, as the analyser does.
void OwnFft(benchmark::State& state) {
  const Fft fft(Order);
  const std::vector<float> samples = Noise();
  std::vector<float> re(Length);
  std::vector<float> im(Length);
  for (auto _ : state) {
    re = samples;
    im.assign(Length, 0.0F);
    fft.Transform(re.data(), im.data(), Order);
    benchmark::DoNotOptimize(re[1]);
  }
}

void Fftw(benchmark::State& state) {
  const std::vector<float> samples = Noise();
  fftwf_complex* data = fftwf_alloc_complex(Length);
  const fftwf_plan plan = fftwf_plan_dft_1d(Length, data, data, FFTW_FORWARD, FFTW_MEASURE);
  for (auto _ : state) {
    for (int i = 0; i < Length; ++i) {
      data[i][0] = samples[static_cast<std::size_t>(i)];
      data[i][1] = 0.0F;
    }
    fftwf_execute(plan);
    benchmark::DoNotOptimize(data[1][0]);
  }
  fftwf_destroy_plan(plan);
  fftwf_free(data);
}

const bool registered = [] {
  benchmark::RegisterBenchmark("Fft/16384", OwnFft);
  benchmark::RegisterBenchmark("Fftw/16384", Fftw);
  return true;
}();

}  // namespace

}  // namespace torvane::bench
