#pragma once

#include <memory>
#include <vector>

#include "library/wave.h"
#include "ui/panes/instrument_pane.h"

class QAbstractButton;

namespace torvane {

class EditBinding;

namespace Ui {
class TZelWaveGenF;
}

/// The window of a waveform generator.
class TZelWaveGenF : public InstrumentPane {
  Q_OBJECT

 public:
  /// The generator must outlive the window.
  explicit TZelWaveGenF(ZelWave& wave);
  ~TZelWaveGenF() override;

  void Redraw() override {}
  void SettingsChanged() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  using Number = double WaveSettings::*;
  using Change = double (*)(const WaveSettings&);
  void Bind(const WaveNumber& number);
  void BindButton(QAbstractButton* button, Number number, Change change);
  void ConnectButtons();

  ZelWave& wave_;
  std::unique_ptr<Ui::TZelWaveGenF> ui_;
  std::vector<EditBinding*> edits_;
};

}  // namespace torvane
