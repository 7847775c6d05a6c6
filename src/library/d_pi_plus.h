#pragma once

#include "library/d_library_class.h"
#include "library/d_output_limit.h"

namespace torvane {

class Constant;

/// What the sampled PI and PI+ controllers share. Each sample, with period T:
///
///     e          = shaped command - feedback
///     integrator = integrator + e T kVI
///     output     = (e + integrator) kVP + feed-forward, limited with anti-wind-up
///
/// The gains are read from their constants at every sample, so a change takes effect at the next
/// one; a changed kVI also empties the integrator. A missing constant counts as 0.
class ZelDPiBase : public ZelDLibraryClass {
 public:
  /// Controllers are stepped through Update only.
  double Step(double /*x*/) final { return 0.0; }

  /// The limited output for this sample; 0 without a clock.
  double Update(double command, double feedback, double feedForward);

  void Carry(Carried& carried) override;

  /// e of the last update.
  double Error() const { return error_; }

 protected:
  /// What a command passes first.
  enum class Shaping { None, CommandFilter };

  ZelDPiBase(const ZelDController* clock, Constant* kVI, Constant* kVP, Constant* kVFR,
             Shaping shaping, DOutputLimit limit);

 private:
  std::vector<double*> PastValues() final {
    return {&integrator_, &previousCommand_, &filteredCommand_, &error_};
  }

  double ShapeCommand(double command, double kVI, double period);

  Constant* kVI_;
  Constant* kVP_;
  Constant* kVFR_;
  DOutputLimit limit_;
  double integrator_ = 0.0;
  double previousCommand_ = 0.0;
  double filteredCommand_ = 0.0;
  Shaping shaping_;
  double error_ = 0.0;
};

/// PI+ controller: a PI whose command passes the backward-Euler form of
///
///     (kVFR/100 s + kVI) / (s + kVI)
///
/// kVI in rad/s, kVFR in per cent: 100 lets the command through unfiltered, 0 moves it all behind
/// the integrator. Output limit L in output units, anti-wind-up factor F. Missing constants and a
/// missing clock are reported.
class ZelDPiPlus final : public ZelDPiBase {
 public:
  ZelDPiPlus(const ZelDController* clock, Constant* kVI, Constant* kVP, Constant* kVFR,
             double limit, double windUpFactor);
};

/// Plain PI controller: the command goes in as it is. Missing constants are reported.
class ZelDPi final : public ZelDPiBase {
 public:
  ZelDPi(const ZelDController* clock, Constant* kVI, Constant* kVP, double limit,
         double windUpFactor);
};

}  // namespace torvane
