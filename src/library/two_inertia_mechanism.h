#pragma once

#include <array>
#include <tuple>

#include "library/friction.h"
#include "library/on_bench.h"

namespace torvane {

/// What a two-inertia mechanism is made of, in SI units.
struct MechanismSettings {
  double JM = 0.0;    ///< motor inertia, above 0
  double JL = 0.0;    ///< load inertia, above 0
  double KS = 0.0;    ///< shaft stiffness, above 0
  double KCV = 0.0;   ///< damping across the shaft, above 0
  double Gear = 1.0;  ///< N, motor turns per load turn, above 0
  double KVM = 0.0;   ///< viscous damping of the motor, 0 or above
  FrictionSettings MotorFriction{};
  double KVL = 0.0;  ///< viscous damping of the load, 0 or above
  FrictionSettings LoadFriction{};
};

/// Motor and load inertia joined by a gear and a compliant shaft, each with viscous damping and
/// friction:
///
///     Ts          = (vM - N vL) kCV + (pM - N pL) kS
///     jM d(vM)/dt = T1 + T3 + friction(pM, vM) - kVM vM - Ts
///     jL d(vL)/dt = T2 + friction(pL, vL) - kVL vL + N Ts
///
/// The shaft torque enters the motor with the factor 1 and the load with N. The model writes the
/// torques T1 (motor), T2 (load) and T3 (second motor torque) before each evaluation and reads what
/// the last evaluation left.
class TwoInertiaMechanism {
 public:
  static constexpr std::array StateNames{"Zel2JMech-vM", "Zel2JMech-pM", "Zel2JMech-vL",
                                         "Zel2JMech-pL"};
  static constexpr const char* Fault = "Fault #1 in Zel2JMech :: Zel2JMech";

  /// One side of the shaft at the last evaluation: rad/s, rad, Nm, rad/s^2.
  struct Side {
    double Velocity = 0.0;
    double Position = 0.0;
    double FrictionTorque = 0.0;
    double ViscousTorque = 0.0;
    double NetTorque = 0.0;
    double Acceleration = 0.0;
  };

  /// Parameters out of their range are reported; 1e-10 replaces what must be positive, 0 what must
  /// not be negative.
  explicit TwoInertiaMechanism(const MechanismSettings& settings);

  /// Slopes and outputs from the present states and torques.
  void Evaluate();
  void FollowReset(ResetKind kind);

  auto States() { return std::tie(vM_, pM_, vL_, pL_); }
  auto Inputs() { return std::tie(motorTorque_, loadTorque_, secondMotorTorque_); }

  void SetMotorTorque(double torque) { motorTorque_ = torque; }
  void SetLoadTorque(double torque) { loadTorque_ = torque; }
  void SetSecondMotorTorque(double torque) { secondMotorTorque_ = torque; }

  const Side& Motor() const { return motor_; }
  const Side& Load() const { return load_; }
  double ShaftTorque() const { return shaftTorque_; }

  /// Other parameters from now on, none out of its range, KS and KCV as in SetKS; what sticks stays
  /// where it stuck.
  void SetSettings(const MechanismSettings& settings);

  /// An inertia that is not positive is reported and becomes 1e-10.
  void SetJM(double inertia);
  void SetJL(double inertia);
  /// 0 is allowed in a mechanism that is built: the shaft then has no spring or no damping.
  void SetKS(double stiffness) { parameters_.KS = stiffness; }
  void SetKCV(double damping) { parameters_.KCV = damping; }

 private:
  void CopyOutputs();

  double motorTorque_ = 0.0;
  double loadTorque_ = 0.0;
  double secondMotorTorque_ = 0.0;
  MechanismSettings parameters_;
  double shaftTorque_ = 0.0;
  Side motor_;
  Side load_;
  State vM_;
  State pM_;
  State vL_;
  State pL_;
  ZelFricCalc motorFriction_;
  ZelFricCalc loadFriction_;
  bool frictionless_;
};

/// The mechanism with numbers of its own, registered with a bench.
class Zel2JMech final : public TwoInertiaMechanism, public OnBench<TwoInertiaMechanism> {
 public:
  Zel2JMech(ZelBenchTop& bench, const MechanismSettings& settings)
      : TwoInertiaMechanism(settings), OnBench(bench, static_cast<TwoInertiaMechanism&>(*this)) {}
};

// In the header, as is the friction: four evaluations a step inline them.
inline void TwoInertiaMechanism::CopyOutputs() {
  motor_.Velocity = vM_;
  motor_.Position = pM_;
  load_.Velocity = vL_;
  load_.Position = pL_;
}

inline void TwoInertiaMechanism::Evaluate() {
  const MechanismSettings& p = parameters_;
  CopyOutputs();
  shaftTorque_ = (motor_.Velocity - p.Gear * load_.Velocity) * p.KCV +
                 (motor_.Position - p.Gear * load_.Position) * p.KS;

  if (!frictionless_) {
    motor_.FrictionTorque = motorFriction_.Friction(motor_.Position, motor_.Velocity);
    load_.FrictionTorque = loadFriction_.Friction(load_.Position, load_.Velocity);
  }
  motor_.ViscousTorque = -p.KVM * motor_.Velocity;
  motor_.NetTorque = motorTorque_ + secondMotorTorque_ + motor_.FrictionTorque +
                     motor_.ViscousTorque - shaftTorque_;
  motor_.Acceleration = motor_.NetTorque / p.JM;
  vM_.Derivative = motor_.Acceleration;
  pM_.Derivative = motor_.Velocity;

  load_.ViscousTorque = -p.KVL * load_.Velocity;
  load_.NetTorque =
      loadTorque_ + load_.FrictionTorque + load_.ViscousTorque + shaftTorque_ * p.Gear;
  load_.Acceleration = load_.NetTorque / p.JL;
  vL_.Derivative = load_.Acceleration;
  pL_.Derivative = load_.Velocity;
}

}  // namespace torvane
