#pragma once

#include <QComboBox>
#include <QDialog>
#include <array>

#include "instruments/analyser/response_columns.h"

namespace torvane {

/// Asks for the units of a response's file that does not say them.
class ResponseUnitsDialog : public QDialog {
  Q_OBJECT

 public:
  /// The question says what is missing.
  explicit ResponseUnitsDialog(const QString& question, QWidget* parent = nullptr);

  ResponseHints Hints() const;

 private:
  std::array<QComboBox*, 3> units_{};  // of frequency, gain and phase
};

}  // namespace torvane
