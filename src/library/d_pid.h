#pragma once

#include "library/d_library_class.h"
#include "library/d_output_limit.h"

namespace torvane {

class Constant;

/// Sampled PID controller with command filter, filtered derivative and anti-wind-up. Each sample,
/// with period T:
///
///     filtered cmd = low-pass of the command at kVI rad/s
///     e            = kVFR command + (1 - kVFR) filtered cmd - feedback
///     derivative   = low-pass of kVD (e - previous e) / T at fD
///     integrator   = integrator + e T kVI
///     output       = (e + integrator + derivative) kVP + feed-forward, limited with anti-wind-up
///
/// kVI in rad/s, kVD in seconds, kVFR a plain fraction (1: all direct), fD in Hz; output limit L in
/// output units, anti-wind-up factor F. The gains are read from their constants at every sample; a
/// changed kVI also empties the integrator. Missing constants and a missing clock are reported; a
/// missing constant counts as 0.
class ZelDPid final : public ZelDLibraryClass {
 public:
  ZelDPid(const ZelDController* clock, Constant* kVI, Constant* kVP, Constant* kVD, Constant* kVFR,
          Constant* fDHz, double limit, double windUpFactor);

  /// Controllers are stepped through Update only.
  double Step(double /*x*/) override { return 0.0; }

  /// The limited output for this sample; 0 without a clock.
  double Update(double command, double feedback, double feedForward);

  void Carry(Carried& carried) override;

  /// e of the last update.
  double Error() const { return error_; }

 private:
  std::vector<double*> PastValues() override {
    return {&error_, &filteredCommand_, &integrator_, &derivative_, &previousError_};
  }

  double FilteredDerivative(double period);

  Constant* kVI_;
  Constant* kVP_;
  Constant* kVD_;
  Constant* kVFR_;
  Constant* fDHz_;
  double error_ = 0.0;
  double filteredCommand_ = 0.0;
  DOutputLimit limit_;
  double integrator_ = 0.0;
  double derivative_ = 0.0;
  double previousError_ = 0.0;
};

}  // namespace torvane
