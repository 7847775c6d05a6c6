#pragma once

#include <memory>
#include <string>
#include <utility>

namespace torvane {

class ZelBenchTop;

/// How instruments first show a signal.
struct DisplayDefaults {
  double Scale = 1.0;       ///< signal units per division
  double Offset = 0.0;      ///< signal units
  double Multiplier = 1.0;  ///< factor from Value to what every instrument shows
  bool Shown = false;       ///< a new scope displays the signal at once
};

/// Whether instruments are offered the signal. Internal signals belong to blocks; several may share
/// a name.
enum class Visibility { Offered, Internal };

/// A named signal of a model, registered with the model's bench at construction.
///
/// A copy has the number alone: no name, and the bench does not know it. A step works on such
/// copies, which the compiler may keep in registers; assigning one back hands the number over.
class Variable {
 public:
  Variable(ZelBenchTop& bench, std::string name, std::string unit, DisplayDefaults display = {},
           Visibility visibility = Visibility::Offered);
  Variable(const Variable& other) : Value(other.Value) {}
  Variable& operator=(const Variable& other) {
    Value = other.Value;
    return *this;
  }
  virtual ~Variable() = default;

  /// Back to the value before the first run: 0.
  virtual void Reset() { Value = 0.0; }

  const std::string& Name() const { return identity_->Name; }
  const std::string& Unit() const { return identity_->Unit; }
  /// What it is, in a sentence for the user; may be empty.
  const std::string& Description() const { return identity_->Description; }
  void Describe(std::string text) { identity_->Description = std::move(text); }
  double DefaultScale() const { return identity_->Display.Scale; }
  double DefaultOffset() const { return identity_->Display.Offset; }
  double Multiplier() const { return identity_->Display.Multiplier; }
  bool ShownByDefault() const { return identity_->Display.Shown; }
  bool Internal() const { return identity_->Offered == Visibility::Internal; }
  bool IsState() const { return identity_->Is == Kind::State; }

  /// The value as instruments show it.
  double DisplayValue() const { return Value * identity_->Display.Multiplier; }

  double Value = 0.0;

 protected:
  enum class Kind { Plain, State, Time };
  Variable(Kind kind, std::string name, std::string unit, DisplayDefaults display,
           Visibility visibility);

 private:
  struct Identity {
    Kind Is;
    std::string Name;
    std::string Unit;
    DisplayDefaults Display;
    Visibility Offered;
    std::string Description;
  };

  std::unique_ptr<Identity> identity_;  // null in a copy
};

/// The simulated time as a signal. Its construction installs it as the bench's time variable.
class TimeVariable : public Variable {
 public:
  TimeVariable(ZelBenchTop& bench, std::string name, std::string unit, DisplayDefaults display);
};

/// A signal that the solver integrates.
class StateVariable : public Variable {
 public:
  StateVariable(ZelBenchTop& bench, std::string name, std::string unit, double initialValue,
                DisplayDefaults display = {}, Visibility visibility = Visibility::Offered);

  void Reset() override { Value = InitialValue; }

  /// Asks for a value from outside; it replaces the integrated result at the end of the step in
  /// progress. A plain assignment to Value would be overwritten at the next sub-step.
  void SetPending(double value) {
    PendingValue = value;
    PendingSet = true;
  }

  /// Puts a pending value in force.
  void TakePending() {
    if (!PendingSet) return;
    Value = PendingValue;
    PendingSet = false;
  }

  double InitialValue;
  double Derivative = 0.0;  ///< per second, written by the model or the owning block
  double PendingValue = 0.0;
  bool PendingSet = false;
};

}  // namespace torvane
