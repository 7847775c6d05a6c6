#pragma once

#include <QComboBox>
#include <QDialog>
#include <array>
#include <string>

#include "instruments/analyser/response_columns.h"

class QLabel;

namespace torvane {

struct ResponseText;

/// Asks for the units of a response's file that does not say them; what it says stays so unless the
/// user chooses otherwise.
class ResponseUnitsDialog : public QDialog {
  Q_OBJECT

 public:
  /// For a text whose units are missing.
  explicit ResponseUnitsDialog(const ResponseText& text, QWidget* parent = nullptr);

  /// Says what is missing, or what is wrong with the units that were chosen.
  void SetFault(const std::string& fault);

  ResponseHints Hints() const;

 private:
  QLabel* question_;
  std::array<QComboBox*, 3> units_{};  // of frequency, gain and phase
};

}  // namespace torvane
