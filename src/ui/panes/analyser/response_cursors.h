#pragma once

#include <QLabel>
#include <QRadioButton>
#include <array>

#include "instruments/analyser/analyser.h"
#include "ui/panes/read_out_window.h"

namespace torvane {

/// The read-out of an analyser's cursors: frequency, gain and phase at each, with two cursors their
/// differences and the slope, and which trace they read. To close it is to switch the cursors off.
class ResponseCursors : public ReadOutWindow {
  Q_OBJECT

 public:
  /// The analyser must outlive the window.
  ResponseCursors(FrequencyAnalyser& analyser, const char* name, QWidget* parent);

  /// On a plot of so many columns.
  void ShowReading(int plotWidth);

 signals:
  void TraceChosen(int slot);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void AddTraces();

  FrequencyAnalyser& analyser_;
  std::array<QRadioButton*, FrequencyAnalyser::SlotCount> traces_{};
  QLabel* slope_;
};

}  // namespace torvane
