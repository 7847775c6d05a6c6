#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "core/instrument_kind.h"
#include "core/time_driven.h"
#include "core/undo.h"
#include "core/variable.h"

namespace torvane {

class Constant;
class Instrument;
class ZelSolver;

/// Registry of one model: its signals, constants, simulated time, solver, undo history and
/// instruments. Lists keep the order of registration and own nothing.
class ZelBenchTop {
 public:
  explicit ZelBenchTop(std::string modelName = {}) : modelName_(std::move(modelName)) {}
  ZelBenchTop(const ZelBenchTop&) = delete;
  ZelBenchTop& operator=(const ZelBenchTop&) = delete;

  /// Of the model that this is the bench of.
  const std::string& ModelName() const { return modelName_; }

  void SetTimeVar(Variable& timeVar);
  void AddVar(Variable& variable);
  void AddStateVar(StateVariable& state);
  void AddConst(Constant& constant);
  void AttachSolver(ZelSolver& solver);
  void AddTimeDriven(TimeDriven& object) { timeDriven_.push_back(&object); }
  void AddInstrument(Instrument& instrument);
  void RemoveInstrument(Instrument& instrument);

  Variable* TimeVar() const { return timeVar_; }
  ZelSolver* Solver() const { return solver_; }
  ZelUndo& History() { return history_; }
  const std::vector<Variable*>& Variables() const { return variables_; }
  const std::vector<Constant*>& Constants() const { return constants_; }
  const std::vector<Instrument*>& Instruments(InstrumentKind kind) const {
    return instruments_[IndexOf(kind)];
  }

  /// By position; an index out of range is reported and gives nullptr.
  Variable* VarAt(int index) const;
  Constant* ConstAt(int index) const;
  /// By name, in registration order; nullptr when there is none. The time variable is not searched.
  Variable* FindVar(const std::string& name) const;
  Constant* FindConst(const std::string& name) const;
  Instrument* FindInstrument(InstrumentKind kind, const std::string& name) const;

  /// Simulated time, seconds.
  double Time() const { return time_; }
  void AdvanceTime(double h) { time_ += h; }
  /// For a solver that counts the time of several steps by itself.
  void SetTime(double t) { time_ = t; }

  const std::vector<TimeDriven*>& TimeDrivenObjects() const { return timeDriven_; }
  void UpdateTimeDriven(double t) {
    for (TimeDriven* object : timeDriven_) object->AtTime(t);
  }

  /// The time up to which the solver may run before an instrument needs attention.
  double NextStopTime() const;

  /// Hands the present time to every instrument; false when one of them wants the run to stop.
  /// Throws SolverOverflow when a signal is beyond what they can store.
  bool ServiceInstruments();

  bool AnyScopeBusy() const;

  /// Whether a meter may add to the model's command.
  bool MetersExcite() const;
  /// Sum of what the meters add to the model's command at time `now`.
  double MeterExcitation(double now) const;

  /// Resets every variable; the first one registered keeps its value unless everything goes.
  void ResetVariables(ResetKind kind);

  /// Tells every time-driven object that the model was reset.
  void ResetTimeDriven(ResetKind kind);

  /// No instrument goes on from what it measured before.
  void RestartInstruments();
  void KeepOwnMemory();  ///< of each instrument

  void RefreshInstruments();
  void StartScopes();

  /// The windows are to get ready for a picture of the screen, or for one of a wide screen: tells
  /// scopes, FFT analysers, swept-sine analysers, meters and wave generators in turn.
  void PrepareCapture();
  void PrepareWideCapture();

 private:
  std::string modelName_;
  ZelUndo history_;
  ZelSolver* solver_ = nullptr;
  double time_ = 0.0;
  Variable* timeVar_ = nullptr;
  std::array<std::vector<Instrument*>, AllInstrumentKinds.size()> instruments_;
  std::vector<TimeDriven*> timeDriven_;
  std::vector<Variable*> variables_;
  std::vector<Constant*> constants_;
};

}  // namespace torvane
