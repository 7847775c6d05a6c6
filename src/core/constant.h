#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/undo.h"

namespace torvane {

class Constant;
class Carried;
class ZelBenchTop;

/// The adjust buttons, downwards from the largest step and upwards to it. A dinky nudge is about
/// 4 %, a nudge 20 %, the others 100 %.
enum class ConstantStep { Down, NudgeDown, DinkyNudgeDown, DinkyNudgeUp, NudgeUp, Up };

/// Somebody who wants to know when a constant has a new value, whoever gave it.
class ConstantObserver {
 public:
  virtual ~ConstantObserver() = default;
  virtual void ConstantChanged(const Constant& constant) = 0;
};

/// A constant's default and its limits, which may come in either order.
struct Adjustable {
  Adjustable(double defaultValue, double limit, double otherLimit)
      : Default(defaultValue), Limit(limit), OtherLimit(otherLimit) {}

  double Default;
  double Limit;
  double OtherLimit;
};

/// A named number of a model that the user may change while the model runs, within limits or from a
/// list of choices. Registered with the bench at construction.
///
/// The changed flag starts set, so that the first evaluation hands the default to blocks that were
/// built with another value.
class Constant : public Undoable {
 public:
  /// The description says in a sentence for the user what the constant is.
  Constant(ZelBenchTop& bench, std::string name, std::string unit, const Adjustable& range,
           const std::string& description);
  Constant(ZelBenchTop& bench, std::string name, std::string unit, double defaultValue,
           double limit, double otherLimit)
      : Constant(bench, std::move(name), std::move(unit),
                 Adjustable(defaultValue, limit, otherLimit), {}) {}

  /// A list constant: its value is the index of the choice.
  Constant(ZelBenchTop& bench, std::string name, std::vector<std::string> choices,
           int defaultChoice = 0, std::string description = {});

  Constant(const Constant&) = delete;
  Constant& operator=(const Constant&) = delete;

  const std::string& Name() const { return name_; }
  const std::string& Unit() const { return unit_; }
  /// What it is, for the user, with its unit; empty when nobody said.
  const std::string& Description() const { return description_; }
  double Default() const { return default_; }
  double Lower() const { return lower_; }
  double Upper() const { return upper_; }
  double Value() const { return value_; }

  bool IsList() const { return !choices_.empty(); }
  const std::vector<std::string>& Choices() const { return choices_; }
  int Choice() const { return static_cast<int>(value_); }

  /// True once after each change, and once after construction.
  bool TakeChanged() {
    if (!changed_) [[likely]] {
      return false;
    }
    changed_ = false;
    return true;
  }
  /// What a step may take is a part of what it carries on.
  void CarryChanged(Carried& carried);

  /// Limits the value (a list constant: to a choice) and stores it. A change is recorded for undo
  /// and marks the bench's constants as changed. Not-a-number is ignored.
  void Set(double value);

  /// Sets from text: a finite number, or exactly one of the choices. Anything else is reported and
  /// keeps the value; the result tells whether the text was accepted. `where` ends such a report.
  bool SetFromText(const std::string& text, const std::string& where = {});

  void RestoreDefault() { Set(default_); }

  /// One step up or down the number line, within the limits. Zero is left for a fixed share of the
  /// limit ahead. A list steps by one choice, or with the largest step to its end.
  void Step(ConstantStep step);
  /// A list has no sign.
  void ChangeSign();
  /// Zero, or the limit nearest to it.
  void SetToZero();
  /// Whether there is a way on; a constant without any range offers the way down.
  bool CanStepUp() const { return value_ != upper_; }
  bool CanStepDown() const { return value_ != lower_ || !CanStepUp(); }

  /// The observer is told of each change until Unobserve.
  void Observe(ConstantObserver& observer) { observers_.push_back(&observer); }
  void Unobserve(ConstantObserver& observer) { std::erase(observers_, &observer); }

  /// As shown to the user: five significant digits, or the choice's text.
  std::string DisplayText() const;

  /// As stored in files: shortest exact form, or the choice's text.
  std::string FileText() const;

  void Undo(const UndoEntry& entry) override;
  void Redo(const UndoEntry& entry) override;
  Merged Merge(UndoEntry& earlier, const UndoEntry& later) const override;

 private:
  void Store(double value);

  ZelBenchTop& bench_;
  std::string name_;
  std::string unit_;
  std::string description_;
  double lower_;
  double upper_;
  double default_;
  double value_;
  std::vector<std::string> choices_;
  std::vector<ConstantObserver*> observers_;
  bool changed_ = true;
};

}  // namespace torvane
