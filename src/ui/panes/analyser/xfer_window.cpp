#include "ui/panes/analyser/xfer_window.h"

#include <utility>

#include "ui/panes/analyser/xfer_setup_dialog.h"
#include "ui/widgets/check.h"
#include "ui_analyser.h"

namespace torvane {

XferWindow::XferWindow(ZelXfer& analyser, ZelBenchTop& bench)
    : AnalyserWindow(
          analyser, bench,
          {"TZelXferF", "TZelXferCursorF", "MainXFer", "Dynamic Signal Analyzer", "response"}),
      xfer_(analyser) {
  Ui::AnalyserForm& ui = Form();
  connect(ui.CBSpectrum, &QAbstractButton::clicked, this,
          [this](bool on) { xfer_.ClickSpectrum(on); });
  connect(ui.CBBinary, &QAbstractButton::toggled, this, [this](bool on) { xfer_.SetBinary(on); });
  connect(ui.CBUseGenFilter, &QAbstractButton::toggled, this,
          [this](bool on) { xfer_.SetBypassFilter(on); });
  SettingsChanged();
}

void XferWindow::SettingsChanged() {
  AnalyserWindow::SettingsChanged();
  Ui::AnalyserForm& ui = Form();
  const std::pair<QAbstractButton*, bool> boxes[] = {{ui.CBSpectrum, xfer_.Spectrum()},
                                                     {ui.CBBinary, xfer_.Binary()},
                                                     {ui.CBUseGenFilter, xfer_.BypassFilter()}};
  for (const auto& [box, on] : boxes) Check(*box, on);
}

void XferWindow::AutoRange() {
  xfer_.AutoRange();
}

QDialog* XferWindow::MakeSetup() {
  return new XferSetupDialog(xfer_, this);
}

}  // namespace torvane
