#include "library/d_pid.h"

#include <cmath>

#include "core/angle.h"
#include "core/messages.h"
#include "library/d_gain.h"

namespace torvane {

ZelDPid::ZelDPid(const ZelDController* clock, Constant* kVI, Constant* kVP, Constant* kVD,
                 Constant* kVFR, Constant* fDHz, double limit, double windUpFactor)
    : ZelDLibraryClass(clock),
      kVI_(kVI),
      kVP_(kVP),
      kVD_(kVD),
      kVFR_(kVFR),
      fDHz_(fDHz),
      limit_{limit, windUpFactor} {
  constexpr const char* family = "ZelPid";
  RequireGain(kVI, "kVI", family);
  RequireGain(kVP, "kVP", family);
  RequireGain(kVD, "kVD", family);
  RequireGain(kVFR, "kVFR", family);
  RequireGain(fDHz, "fDHz", family);
  if (!clock) torvane::Error("DController in ZelPI_Plus not initialized.");
}

// A change that the next sample is to see would else be seen once only.
void ZelDPid::Carry(Carried& carried) {
  ZelDLibraryClass::Carry(carried);
  if (kVI_) kVI_->CarryChanged(carried);
}

double ZelDPid::Update(double command, double feedback, double feedForward) {
  if (!HasClock()) return 0.0;
  const double kVI = GainValue(kVI_);
  const double kVP = GainValue(kVP_);
  const double kVFR = GainValue(kVFR_);
  const double period = Period();
  if (TakeGainChanged(kVI_)) integrator_ = 0.0;
  const double a = std::exp(-kVI * period);
  filteredCommand_ = (1.0 - a) * command + a * filteredCommand_;
  error_ = kVFR * command + (1.0 - kVFR) * filteredCommand_ - feedback;
  derivative_ = FilteredDerivative(period);
  integrator_ += error_ * period * kVI;
  const double unlimited = (error_ + integrator_ + derivative_) * kVP + feedForward;
  return limit_.Apply(unlimited, error_, kVI, kVP, integrator_);
}

double ZelDPid::FilteredDerivative(double period) {
  const double slope = (error_ - previousError_) * GainValue(kVD_) / period;
  previousError_ = error_;
  const double b = std::exp(-TwoPi * GainValue(fDHz_) * period);
  return (1.0 - b) * slope + b * derivative_;
}

}  // namespace torvane
