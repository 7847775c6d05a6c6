#pragma once

#include "instruments/analyser/setup_finding.h"

namespace torvane {

/// How a record of the FFT analyser is taken; times in seconds.
struct FftSetup {
  double TSample = 0.001;
  int Order = 0;
  double TStartDelay = 0.4;
  double TEndDelay = 0.2;
  double Amplitude = 1.0;
  double Offset = 0.0;
  int Averages = 1;  ///< records that are averaged

  int Length() const { return 1 << Order; }
  double RecordTime() const { return Length() * TSample; }
  /// Share of the record that is excited, in per cent; below 0 when the end delay covers more than
  /// the record.
  double ActiveShare() const { return 100.0 * (RecordTime() - TEndDelay) / RecordTime(); }
};

/// The first thing to be said of the set-up, for an analyser of the given orders on a model whose
/// solver makes steps of the given length.
SetupFinding CheckSetup(const FftSetup& setup, int minOrder, int maxOrder, double solverStep);

}  // namespace torvane
