#pragma once

#include <string>

#include "instruments/analyser/setup_finding.h"

namespace torvane {

/// How the swept-sine analyser measures; times in seconds, frequencies in Hz.
struct SweepSetup {
  double TSample = 0.005;
  double StartFreq = 10.0;  ///< the two ends of the sweep, in either order
  double EndFreq = 0.2;
  int StepsPerDecade = 25;
  double SettleTime = 0.005;
  double MeasurementTime = 0.005;  ///< divided by the frequency, periods of a point
  double Amplitude = 1.0;
  double Offset = 0.0;
  int Averages = 1;
};

/// The frequency that a sweep measures next.
double NextSweepFrequency(const SweepSetup& setup, double hz);

/// What a sweep takes: how many points, no more than `most` + 1, how long, and up to where.
struct SweepPlan {
  int Points = 0;
  double Seconds = 0.0;
  double LastHz = 0.0;
};
/// What a sweep of that set-up takes.
SweepPlan PlanSweep(const SweepSetup& setup, int most);

/// Why the range and the sample time of the set-up make no sweep, if they do not: more points than
/// there is room for, or too few ticks in a period.
SetupFinding CheckPlan(const SweepSetup& setup, int mostPoints);

/// The first thing to be said of the set-up, for an analyser with room for so many points on a
/// model whose solver makes steps of the given length.
SetupFinding CheckSetup(const SweepSetup& setup, int mostPoints, double solverStep);

}  // namespace torvane
