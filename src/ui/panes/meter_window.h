#pragma once

#include <array>
#include <memory>
#include <vector>

#include "core/bench.h"
#include "instruments/meter/meter.h"
#include "ui/panes/instrument_pane.h"

class QAbstractButton;
class QComboBox;

namespace torvane {

class EditBinding;

namespace Ui {
class MeterWindow;
}

/// The window of a meter: its reading, and a set-up that opens and closes below it. Closing the
/// window asks for the meter to go.
class MeterWindow : public InstrumentPane {
  Q_OBJECT

 public:
  /// Meter and bench must outlive the window.
  MeterWindow(ZelMeter& meter, const ZelBenchTop& bench);
  ~MeterWindow() override;

  ZelMeter& Meter() const { return meter_; }

  void Redraw() override;
  void SettingsChanged() override;

 signals:
  /// The user has closed the window.
  void Closed();
  /// The set-up has been opened or closed: the window wants another height.
  void HeightChanged();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  using NameSetter = bool (ZelMeter::*)(const std::string&);
  using Switch = void (ZelMeter::*)(bool);
  void FillList(QComboBox& list, const ZelBenchTop& bench, NameSetter choose);
  void BindNumbers();
  void BindSwitch(QAbstractButton& button, Switch set);
  std::array<QAbstractButton*, MeterKinds.size()> KindButtons() const;
  void BindKinds();
  void BindSteps();
  void ShowSetup();
  void ShowKind();
  void ShowSettling();
  QString KindText() const;

  ZelMeter& meter_;
  std::unique_ptr<Ui::MeterWindow> ui_;
  std::vector<EditBinding*> edits_;
};

}  // namespace torvane
