#pragma once

#include <QComboBox>
#include <QDialog>
#include <array>
#include <string>

#include "instruments/analyser/response_csv.h"

class QLabel;

namespace torvane {

/// Asks for the units of a response's file that does not say them, until it can be read with them;
/// what it says stays so unless the user chooses otherwise.
class ResponseUnitsDialog : public QDialog {
  Q_OBJECT

 public:
  /// For a file that was read as `text`, without units.
  ResponseUnitsDialog(std::string file, ResponseText text, QWidget* parent);

  /// Reads the file with the units that were chosen; stays open when that cannot be.
  void accept() override;

  /// What was read last.
  const ResponseText& Text() const { return text_; }

 private:
  void Ask();
  ResponseHints Hints() const;

  std::string file_;
  ResponseText text_;
  QLabel* question_;
  std::array<QComboBox*, 3> units_{};  // of frequency, gain and phase
};

}  // namespace torvane
