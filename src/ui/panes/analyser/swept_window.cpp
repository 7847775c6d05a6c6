#include "ui/panes/analyser/swept_window.h"

#include "ui/panes/analyser/swept_setup_dialog.h"
#include "ui_analyser.h"

namespace torvane {

SweptWindow::SweptWindow(ZelSweptDSA& analyser, ZelBenchTop& bench)
    : AnalyserWindow(
          analyser, bench,
          {"TZelSweptDSAF", "TZelSweptDSACursorF", "MainSweptDSA", "Swept-Sine Analyzer", "sweep"}),
      swept_(analyser) {
  Ui::AnalyserForm& ui = Form();
  for (QWidget* ofRecords : {ui.CBSpectrum, ui.CBBinary, ui.CBUseGenFilter}) delete ofRecords;
  SettingsChanged();
}

void SweptWindow::AutoRange() {
  swept_.ApplySweepRange();
}

QString SweptWindow::ProgressText() const {
  if (swept_.PointsExpected() == 0) return AnalyserWindow::ProgressText();
  return QStringLiteral("%1 of %2").arg(swept_.PointCount()).arg(swept_.PointsExpected());
}

QDialog* SweptWindow::MakeSetup() {
  return new SweptSetupDialog(swept_, this);
}

}  // namespace torvane
