#pragma once

#include "instruments/fft/fft_analyser.h"
#include "ui/panes/analyser/analyser_window.h"

namespace torvane {

/// The window of the FFT analyser.
class XferWindow : public AnalyserWindow {
  Q_OBJECT

 public:
  /// Analyser and bench must outlive the window.
  XferWindow(ZelXfer& analyser, ZelBenchTop& bench);

  void SettingsChanged() override;
  AtFirst ShownAtFirst() const override { return AtFirst::ShownWithRoom; }

 protected:
  QDialog* MakeSetup() override;
  void AutoRange() override;

 private:
  ZelXfer& xfer_;
};

}  // namespace torvane
