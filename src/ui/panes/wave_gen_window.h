#pragma once

#include <memory>
#include <vector>

#include "library/wave.h"
#include "ui/panes/instrument_pane.h"

class QAbstractButton;
class QLineEdit;

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
  /// One number of the generator: its edit, and the buttons that change it.
  using Setter = void (ZelWave::*)(double);
  using Member = double WaveSettings::*;
  using Change = double (*)(const WaveSettings&);
  void Bind(QLineEdit* edit, Setter set, Member value);
  void BindButton(QAbstractButton* button, Setter set, Change change);
  void ConnectButtons();

  ZelWave& wave_;
  std::unique_ptr<Ui::TZelWaveGenF> ui_;
  std::vector<EditBinding*> edits_;
};

}  // namespace torvane
