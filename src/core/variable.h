#pragma once

#include <string>

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

/// The numbers of a signal that the solver integrates. In an equation it stands for its value.
struct State {
  operator double() const { return Value; }

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

  double Value = 0.0;
  double Derivative = 0.0;  ///< per second, written by the model or the owning block
  double PendingValue = 0.0;
  bool PendingSet = false;
};

/// A named signal of a model, registered with the model's bench at construction. It refers to its
/// number, which may lie in the struct that a model computes with and then outlives the variable.
class Variable {
 public:
  /// The description says in a sentence for the user what the signal is; it may be empty.
  Variable(ZelBenchTop& bench, double& number, std::string name, std::string unit,
           DisplayDefaults display = {}, Visibility visibility = Visibility::Offered,
           const std::string& description = {});
  /// Of a number of its own.
  Variable(ZelBenchTop& bench, std::string name, std::string unit, DisplayDefaults display = {},
           Visibility visibility = Visibility::Offered);
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  virtual ~Variable() = default;

  /// Back to the value before the first run: 0.
  virtual void Reset() { Value = 0.0; }

  const std::string& Name() const { return name_; }
  const std::string& Unit() const { return unit_; }
  /// What it is, for the user, with its unit; empty when nobody said.
  const std::string& Description() const { return description_; }
  double DefaultScale() const { return display_.Scale; }
  double DefaultOffset() const { return display_.Offset; }
  double Multiplier() const { return display_.Multiplier; }
  bool ShownByDefault() const { return display_.Shown; }
  bool Internal() const { return visibility_ == Visibility::Internal; }
  virtual bool IsState() const { return false; }

  /// The value as instruments show it.
  double DisplayValue() const { return Value * display_.Multiplier; }

 protected:
  /// Registers nothing. Without a number it has one of its own.
  Variable(double* number, std::string name, std::string unit, DisplayDefaults display,
           Visibility visibility, const std::string& description);
  State& Own() { return own_; }

 private:
  std::string name_;
  std::string unit_;
  std::string description_;
  DisplayDefaults display_;
  Visibility visibility_;
  State own_;

 public:
  double& Value;
};

/// The simulated time as a signal. Its construction installs it as the bench's time variable.
class TimeVariable : public Variable {
 public:
  TimeVariable(ZelBenchTop& bench, std::string name, std::string unit, DisplayDefaults display,
               const std::string& description = {});
};

/// A signal that the solver integrates.
class StateVariable : public Variable {
 public:
  StateVariable(ZelBenchTop& bench, State& numbers, std::string name, std::string unit,
                double initialValue, DisplayDefaults display = {},
                Visibility visibility = Visibility::Offered, const std::string& description = {});
  /// Of numbers of its own.
  StateVariable(ZelBenchTop& bench, std::string name, std::string unit, double initialValue,
                DisplayDefaults display = {}, Visibility visibility = Visibility::Offered);

  void Reset() override { Value = InitialValue; }
  bool IsState() const override { return true; }

  void SetPending(double value) { Numbers.SetPending(value); }

  double InitialValue;
  State& Numbers;
  double& Derivative = Numbers.Derivative;

 private:
  StateVariable(ZelBenchTop& bench, State* numbers, std::string name, std::string unit,
                double initialValue, DisplayDefaults display, Visibility visibility,
                const std::string& description);
};

}  // namespace torvane
