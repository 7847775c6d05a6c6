#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <memory>
#include <optional>
#include <utility>

#include "core/model.h"
#include "ui/desk/run_driver.h"
#include "ui/desk/workspace.h"
#include "ui/session/data_folder.h"
#include "ui/session/loop_shelf.h"
#include "ui/session/session.h"

class QAction;

namespace torvane {

class ExperimentsMenu;
class FileCommands;
class InstrumentPane;
class LiveTheory;
class LoopCommands;
class ModelList;
class PolesPanel;
class ModelPictureWindow;
class GuideWindow;
class ModelTextWindow;
class TuneWindow;
class ViewMenu;

namespace Ui {
class ControlPanel;
}

/// The main window: run controls, simulated time, model selector and commands above the workspace
/// of the instruments. Shows a session and runs its model.
class ControlPanel : public QMainWindow, private UndoItems {
  Q_OBJECT

 public:
  /// Whether windows stand where the user left them, and where they stand is remembered.
  enum class Windows { AsBuilt, AsLeft };

  /// Starts with the model of that name, or with the first of the catalogue, stopped. One that
  /// cannot be built is a fatal error, and there is no model then.
  explicit ControlPanel(DataFolder folder, const std::string& startModel = {},
                        Windows windows = Windows::AsBuilt);
  ~ControlPanel() override;

  Session& Work() { return session_; }
  ZelModel* Model() const { return session_.Model(); }
  /// Replaces the current model: the old one is destroyed with its windows, the new one is stopped.
  void MakeCurrent(std::unique_ptr<ZelModel> model) { session_.MakeCurrent(std::move(model)); }

  FileCommands& Files() { return *files_; }

  void Run();
  void Stop();
  bool Running() const;

  /// Shows the window as it was left or else at a size that fits the display, and over it the
  /// splash for four seconds.
  void ShowAtStart(bool withSplash);

  /// Closes the window without a question and ends the program: what is unsaved is offered at the
  /// next start. Nothing when the window has been closed.
  void EndUnasked();

  /// How often the instruments have been painted while a model ran.
  int Frames() const { return frames_; }

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ConnectSession();
  void AddLoops();
  void AddKeyboard();
  void ConnectControls();
  bool RecallGeometry();
  void RememberWindows();
  void LeaveModel();
  void ShowModel();
  void AddMeter();
  void AddMeterOf(const QString& signal);
  void ShowNewMeters();
  void WatchMeter(InstrumentPane& pane);
  void ShowLoaded();
  void ShowLook();
  void ShowTitle();
  void RunToggled(bool down);
  void ShowFrame();
  void ShowTime();
  void RefreshTick();
  void CopyCapture(const QSize& proportions);
  void ResetVariables();
  void RestoreDefaults();
  void OpenDiagramPane();
  void ShowGuide();
  void ShowTune();
  void ShowAbout();

  void SetCaption(UndoItem item, const std::string& caption) override;
  void SetEnabled(UndoItem item, bool enabled) override;

  std::unique_ptr<Ui::ControlPanel> ui_;
  DataFolder data_;
  Session session_;
  LoopShelf shelf_;
  std::unique_ptr<LiveTheory> theory_;
  RunDriver driver_;
  QTimer refreshTimer_;
  QTimer splashTimer_;
  Windows windows_;
  ViewMenu* view_;
  PolesPanel* poles_;
  ExperimentsMenu* experiments_ = nullptr;
  ModelList* models_;
  ModelPictureWindow* picture_;
  ModelTextWindow* text_;
  GuideWindow* guide_ = nullptr;  // until it is asked for
  TuneWindow* tune_ = nullptr;    // the same
  std::unique_ptr<FileCommands> files_;
  std::unique_ptr<LoopCommands> loops_;
  /// What another version of a loop finds as it was.
  struct Before {
    std::optional<Workspace::Desk> Desk;
    bool Running;
    QPointer<QWidget> Focus;
  };
  std::optional<Before> before_;
  int frames_ = 0;
  int titleTicks_ = 0;   // since the title was looked at
  bool ending_ = false;  // what there was to ask and to keep is done
};

}  // namespace torvane
