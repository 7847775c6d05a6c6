#include "instruments/fft/fft_setup.h"

#include "core/text.h"

namespace torvane {

namespace {

constexpr double LeastActiveShare = 25.0;  // per cent

std::string Least(const char* what, double value) {
  return std::string(what) + " of " + FormatShortest(value) + " or more";
}

}  // namespace

// In the order in which the set-up's fields are corrected.
SetupFinding CheckSetup(const FftSetup& setup, int minOrder, int maxOrder, double solverStep) {
  using enum SetupFinding::Kind;
  // Samples fall on the solver's steps: the frequencies of closer ones would not be true.
  const std::string longEnough = Least("a sample time", solverStep) + " sec";
  if (!(setup.TSample > 0.0)) return {Refusal, "Sample Time must be > 0", longEnough};
  if (setup.TSample < solverStep) {
    return {Refusal, "Sample Time must be >= the solver's step", longEnough};
  }
  if (setup.Order < minOrder) return {Refusal, "Minimum Order = " + std::to_string(minOrder), {}};
  if (setup.Order > maxOrder) return {Refusal, "Maximum Order = " + std::to_string(maxOrder), {}};
  if (!(setup.TStartDelay >= 0.0)) return {Refusal, "Start Zero Time must be >= 0", {}};
  if (!(setup.TEndDelay >= 0.0)) return {Refusal, "End Zero Time must be >= 0", {}};
  if (!(setup.Amplitude > 0.0)) return {Refusal, "Amplitude must be > 0", {}};
  if (!(setup.ActiveShare() > 0.0)) {
    return {Refusal,
            "Active Sample Time < 0%.  Raise Order or SampleTime, or Reduce End Zero Time.",
            "an end zero time below the record's " + FormatShortest(setup.RecordTime()) +
                " sec, best below three quarters of it"};
  }
  if (setup.ActiveShare() < LeastActiveShare) {
    return {Warning,
            "Active Sample Time < 25%.  You may want to raise Order or SampleTime, or Reduce End "
            "Zero Time.",
            {}};
  }
  if (setup.TEndDelay == 0.0) {
    return {SetupFinding::Kind::Note,
            "End Zero Time = 0.  Most systems require some End Zero Time.",
            {}};
  }
  return {};
}

}  // namespace torvane
