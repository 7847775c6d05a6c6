#include <gtest/gtest.h>

#include "models/response.h"

// The responses of 9-1 and 9-2 that the FFT analyser measures, against their transfer functions.

namespace torvane {
namespace {

using namespace test;

constexpr double TwoPi = 2.0 * M_PI;
// What is asked of the instrument.
constexpr double GainTolerance = 0.1;
constexpr double PhaseTolerance = 1.0;

Complex OnePole(Complex s, double hz) {
  const double w = TwoPi * hz;
  return w / (s + w);
}
Complex TwoPole(Complex s, double hz, double zeta) {
  const double w = TwoPi * hz;
  return w * w / (s * s + 2.0 * zeta * w * s + w * w);
}
Complex Notch(Complex s, double hz, double zeta) {
  const double w = TwoPi * hz;
  return (s * s + w * w) / (s * s + 2.0 * zeta * w * s + w * w);
}

struct Filter {
  const char* Output;
  Complex (*Response)(Complex s);
  double Direct;  ///< the part of the input that passes without delay
};

/// Compares the response in the band from..to, Hz, where theory lets at least that many dB through.
template <class Theory>
void ExpectResponse(ZelXfer& fft, double from, double to, double least, Theory&& theory) {
  int compared = 0;
  for (int bin = 1; bin < fft.Length() / 2; ++bin) {
    const double f = fft.BinFrequency(bin);
    if (f < from || f > to) continue;
    const Complex expected = theory(f);
    if (Decibels(expected) < least) continue;
    ++compared;
    ASSERT_NEAR(fft.ResponseGain(0, bin), Decibels(expected), GainTolerance) << f << " Hz";
    ASSERT_NEAR(Turn(fft.ResponsePhase(0, bin), Degrees(expected)), 0.0, PhaseTolerance)
        << f << " Hz";
  }
  EXPECT_GE(compared, 40);
}

// A record of 1.6 s with samples of 4 steps, 5 kHz. A sample is held, centred on its instant, so
// the filter sees each frequency f with the gain of that hold, sin(x) / x of x = pi f / 5 kHz, and
// adds the images at 5 kHz +- f. The model reads a filter's output before its last evaluation, half
// a step late; what passes a notch directly is not late. Without these corrections the bare
// transfer functions hold up to 100 Hz, where the half step is 0.9 degrees, but for the inside of
// the notch, which is a difference of the two ways.
TEST(FilterResponses, AnalogFiltersFollowTheirTransferFunctions) {
  const Filter filters[] = {
      {"vLP1", [](Complex s) { return OnePole(s, 45.0); }, 0.0},
      {"vLP2", [](Complex s) { return TwoPole(s, 45.0, 0.707); }, 0.0},
      {"vNotch", [](Complex s) { return Notch(s, 40.0, 0.707); }, 1.0},
  };
  for (const Filter& filter : filters) {
    SCOPED_TRACE(filter.Output);
    Loop loop("9-1 Analog Filters");
    ZelXfer& fft = TakeRecord(loop, "vC", filter.Output, 13, StepsLong(loop, 4), 1.0);
    const double rate = 1.0 / fft.TSample();
    const double lag = 0.5 * loop.Model().Solver().Step();
    ExpectResponse(fft, 1.0, 100.0, -2.0,
                   [&](double f) { return filter.Response(Complex(0.0, TwoPi * f)); });
    ExpectResponse(fft, 1.0, 0.2 * rate, -50.0, [&](double f) {
      Complex sum = 0.0;
      for (int image = -3; image <= 3; ++image) {
        const double at = f + image * rate;
        const double x = M_PI * at / rate;
        const Complex late = filter.Response(Complex(0.0, TwoPi * at)) - filter.Direct;
        sum += std::sin(x) / x * (filter.Direct + late * std::polar(1.0, -TwoPi * at * lag));
      }
      return sum;
    });
  }
}

// The z-domain responses at 1024 Hz, from DC to where the analyser's noise has faded, 0.2 of the
// sample rate. The analyser samples a quarter of a period after the clock, and the excitation
// moves halfway between two of its samples: a step of 50 us can never swap them.
TEST(FilterResponses, DigitalFiltersFollowTheirZDomainOnes) {
  constexpr double Period = 1.0 / 1024.0;
  struct Coefficients {
    Complex A1, A2;
  };
  const auto pair = [](double hz, double zeta) {
    const Complex root =
        std::exp(TwoPi * hz * Period * Complex(-zeta, std::sqrt(1.0 - zeta * zeta)));
    return Coefficients{-2.0 * root.real(), std::norm(root)};
  };
  struct Sampled {
    const char* Output;
    Coefficients Zeros, Poles;
  };
  const double p = std::exp(-TwoPi * 45.0 * Period);
  const Sampled filters[] = {
      {"vLP1", {0.0, 0.0}, {-p, 0.0}},
      {"vLP2", {0.0, 0.0}, pair(45.0, 0.4)},
      {"vNotch", pair(60.0, 0.0), pair(60.0, 0.5)},
  };
  for (const Sampled& filter : filters) {
    SCOPED_TRACE(filter.Output);
    Loop loop("9-2 Digital Filters", {{"TSample", "0.0009765625"},
                                      {"2-Pole Zeta", "0.4"},
                                      {"Notch Freq", "60"},
                                      {"Notch Zeta", "0.5"}});
    loop.Generate(0.0);
    loop.Run(0.25 * Period);
    ZelXfer& fft = TakeRecord(loop, "vSample", filter.Output, 10, Period, 1.0);
    ExpectResponse(fft, 1.0, 0.2 / Period, -50.0, [&](double f) {
      const auto at = [](const Coefficients& c, Complex z) {
        return 1.0 + c.A1 / z + c.A2 / (z * z);
      };
      const Complex z = std::polar(1.0, TwoPi * f * Period);
      return at(filter.Zeros, z) / at(filter.Zeros, 1.0) * at(filter.Poles, 1.0) /
             at(filter.Poles, z);
    });
  }
}

}  // namespace
}  // namespace torvane
