#pragma once

#include <memory>
#include <vector>

#include "instruments/generator/wave.h"
#include "ui/panes/instrument_pane.h"

class QAbstractButton;

namespace torvane {

class EditBinding;

namespace Ui {
class WaveGenWindow;
}

/// The window of a waveform generator: its numbers one below the other or, where the window is wide
/// enough, in two columns.
class WaveGenWindow : public InstrumentPane {
  Q_OBJECT

 public:
  /// The generator must outlive the window.
  explicit WaveGenWindow(ZelWave& wave);
  ~WaveGenWindow() override;

  void Redraw() override {}
  void SettingsChanged() override;

  QSize FlatSize() const override { return flatSize_; }
  QSize sizeHint() const override { return wanted_; }
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  using Number = double WaveSettings::*;
  using Change = double (*)(const WaveSettings&);
  void Bind(const WaveNumber& number);
  void BindButton(QAbstractButton* button, Number number, Change change);
  void ConnectButtons();
  void SetFlat(bool flat);
  QSize NeededFlat() const;

  ZelWave& wave_;
  std::unique_ptr<Ui::WaveGenWindow> ui_;
  std::vector<EditBinding*> edits_;
  bool flat_ = false;
  QSize wanted_;  // with all in one column
  QSize least_;
  QSize flatSize_;
};

}  // namespace torvane
