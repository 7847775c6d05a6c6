#pragma once

#include <QString>
#include <optional>

class QLineEdit;

namespace torvane {

/// A number in a dialog that is taken when the dialog is accepted. A number that nobody has typed
/// over keeps all its digits, though fewer are shown.
class NumberField {
 public:
  NumberField() = default;
  explicit NumberField(QLineEdit& edit) : edit_(&edit) {}

  void Show(double value);
  /// What the edit says, with an engineering suffix or without; nothing when it is no number.
  std::optional<double> Value() const;
  /// The same; text that is no number is reported.
  std::optional<double> CheckedValue() const;

 private:
  QLineEdit* edit_ = nullptr;
  double value_ = 0.0;
  QString shown_;
};

}  // namespace torvane
