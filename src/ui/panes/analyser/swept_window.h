#pragma once

#include "instruments/sweep/swept_sine_analyser.h"
#include "ui/panes/analyser/analyser_window.h"

namespace torvane {

/// The window of the swept-sine analyser. Points are drawn as they are measured.
class SweptWindow : public AnalyserWindow {
  Q_OBJECT

 public:
  /// Analyser and bench must outlive the window.
  SweptWindow(ZelSweptDSA& analyser, ZelBenchTop& bench);

  AtFirst ShownAtFirst() const override { return AtFirst::Hidden; }

 protected:
  QDialog* MakeSetup() override;
  void AutoRange() override;
  QString ProgressText() const override;

 private:
  ZelSweptDSA& swept_;
};

}  // namespace torvane
