#pragma once

#include <string>

#include "instruments/fft/fft_analyser.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {

/// How a model's response is measured before the user says otherwise: a noise record of 2^Order
/// samples TSample seconds apart with RestTime seconds of rest before it and at its end, or a sweep
/// between two frequencies (Hz) ticked every SweepTSample seconds. The amplitude, in the command's
/// unit, stays small enough that no limit is met.
struct Measurement {
  int Order = 11;
  double TSample = 0.00025;
  double RestTime = 0.1;
  double Amplitude = 10.0;
  double SweepFrom = 5.0;
  double SweepTo = 1000.0;
  double SweepTSample = 2e-5;
};

/// The two analysers of a model: FFT and, hidden until it is asked for, swept sine.
struct Analysers {
  /// maxOrder: largest record of the FFT analyser, as a power of two.
  Analysers(ZelBenchTop& bench, int maxOrder, const Measurement& measurement = {});

  /// Offers a pair of signals on both; the first one offered is chosen.
  void AddSetup(const std::string& name, const std::string& input, const std::string& output,
                double phaseAdd = 0.0);

  /// The two responses that every velocity loop is asked for.
  void AddVelocitySetups();

  ZelXfer Fft;
  ZelSweptDSA Swept;
};

}  // namespace torvane
