#pragma once

#include <array>
#include <memory>

#include "instruments/analyser/analyser.h"
#include "ui/panes/instrument_pane.h"

class QCheckBox;
class QDialog;
class QMainWindow;
class QMenu;
class QToolButton;

namespace torvane {

class AnalyserAxes;
class MarginsWindow;
class ResponseCursors;
class ResponseMenu;
class ResponseViewMenu;

namespace Ui {
class AnalyserForm;
}

/// What the windows of both analysers share: the plot with its axes, traces, memories and cursors,
/// the choice of signals, and the run button with its progress.
class AnalyserWindow : public InstrumentPane {
  Q_OBJECT

 public:
  ~AnalyserWindow() override;

  void ShowFrame() override;
  void SetRunning(bool running) override;
  void SetRoom(const QSize& workspace) override;
  void Redraw() override;
  void SettingsChanged() override;
  void ShownChanged(bool shown) override;
  /// Where there is no room for all rows of controls and the plot, all rows but the first are
  /// folded, unless the user has opened them.
  QSize minimumSizeHint() const override;
  QSize UnfoldedSize() const override;
  QSize FoldedSize() const override;
  void SetLook(const TraceLook& look) override;

 signals:
  /// The run button was pressed, and a measurement awaits the model's run.
  void MeasurementBegun();
  /// The user has closed the window: it is to be hidden, its engine keeps all it has.
  void PutAway();
  /// The user has folded or opened the controls: the window needs more or less room.
  void NeedsChanged();

 protected:
  /// How the window of a kind of analyser is called.
  struct Names {
    const char* Window;    ///< the object
    const char* Cursors;   ///< its cursors' window
    const char* Analyser;  ///< a model's first one, which has the title
    const char* Title;     ///< others have their own name
    const char* File;      ///< proposed for what the plot gives away
  };

  /// Analyser and bench must outlive the window.
  AnalyserWindow(FrequencyAnalyser& analyser, ZelBenchTop& bench, const Names& names);

  /// The set-up of the measurement, to be opened.
  virtual QDialog* MakeSetup() = 0;
  /// Puts all that can be measured on the frequency axis.
  virtual void AutoRange() = 0;

  /// What the progress bar says.
  virtual QString ProgressText() const { return QStringLiteral("%p%"); }

  Ui::AnalyserForm& Form() { return *ui_; }

  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QString EmptyText() const;
  QMenu& MakeExports(const ZelBenchTop& bench, const char* file);
  void ConnectRun();
  void OpenSetup();
  void ConnectSignals();
  void ConnectTraces();
  void ShowSwatches();
  void ConnectCursors(ZelUndo& history);
  void ShowSignals();
  void ShowTraces();
  void ShowView();
  void ShowCursors();
  void ShowMargins();
  void ShowWarnings();
  void ShowProgress();
  void Find();
  void ShowTrace(int slot, bool shown);
  void ChooseCursorTrace(int slot);
  void ConnectFolding();
  void ArrangeRows();
  void FoldRows();
  void FitPlot();
  bool HasRoomUnfolded() const;
  bool HasPanelBelow() const;
  /// With all rows of controls or the first alone, in a window of the width where it is wide
  /// enough.
  QSize LeastSize(bool folded, int width) const;

  FrequencyAnalyser& analyser_;
  std::unique_ptr<Ui::AnalyserForm> ui_;
  AnalyserAxes* axes_ = nullptr;
  ResponseMenu* menu_ = nullptr;
  ResponseViewMenu* viewMenu_ = nullptr;
  ResponseCursors* cursors_ = nullptr;
  MarginsWindow* margins_ = nullptr;
  QMainWindow* dock_ = nullptr;  // around the plot
  bool lowRoom_ = false;
  bool running_ = false;  // the simulation
  /// What the user wants of the rows of controls that can be folded.
  enum class Folding { AsRoomAllows, Folded, Opened };
  Folding folding_ = Folding::AsRoomAllows;
  std::array<QToolButton*, FrequencyAnalyser::MaxSetups> setups_{};
  std::array<QCheckBox*, FrequencyAnalyser::SlotCount> traces_{};
};

}  // namespace torvane
