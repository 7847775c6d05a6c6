#include "library/d_pi_plus.h"

#include "core/messages.h"
#include "library/d_gain.h"

namespace torvane {

namespace {

constexpr const char* Family = "ZelPI_Plus";

}  // namespace

ZelDPiBase::ZelDPiBase(const ZelDController* clock, Constant* kVI, Constant* kVP, Constant* kVFR,
                       Shaping shaping, DOutputLimit limit)
    : ZelDLibraryClass(clock), kVI_(kVI), kVP_(kVP), kVFR_(kVFR), limit_(limit), shaping_(shaping) {
  RequireGain(kVI, "kVI", Family);
  RequireGain(kVP, "kVP", Family);
}

// A change that the next sample is to see would else be seen once only.
void ZelDPiBase::Carry(Carried& carried) {
  ZelDLibraryClass::Carry(carried);
  if (kVI_) kVI_->CarryChanged(carried);
}

double ZelDPiBase::Update(double command, double feedback, double feedForward) {
  if (!HasClock()) return 0.0;
  const double kVI = GainValue(kVI_);
  const double kVP = GainValue(kVP_);
  const double period = Period();
  if (TakeGainChanged(kVI_)) integrator_ = 0.0;
  filteredCommand_ = ShapeCommand(command, kVI, period);
  previousCommand_ = command;
  error_ = filteredCommand_ - feedback;
  integrator_ += error_ * period * kVI;
  const double unlimited = (error_ + integrator_) * kVP + feedForward;
  return limit_.Apply(unlimited, error_, kVI, kVP, integrator_);
}

double ZelDPiBase::ShapeCommand(double command, double kVI, double period) {
  if (shaping_ == Shaping::None) return command;
  const double direct = 0.01 * GainValue(kVFR_);
  if (kVI == 0.0) return direct * command;
  return ((direct + kVI * period) * command + filteredCommand_ - direct * previousCommand_) /
         (kVI * period + 1.0);
}

ZelDPiPlus::ZelDPiPlus(const ZelDController* clock, Constant* kVI, Constant* kVP, Constant* kVFR,
                       double limit, double windUpFactor)
    : ZelDPiBase(clock, kVI, kVP, kVFR, Shaping::CommandFilter, {limit, windUpFactor}) {
  RequireGain(kVFR, "kVFR", Family);
  if (!clock) torvane::Error("DController in ZelPI_Plus not initialized.");
}

ZelDPi::ZelDPi(const ZelDController* clock, Constant* kVI, Constant* kVP, double limit,
               double windUpFactor)
    : ZelDPiBase(clock, kVI, kVP, nullptr, Shaping::None, {limit, windUpFactor}) {}

}  // namespace torvane
