#pragma once

#include <QObject>
#include <functional>
#include <optional>

#include "ui/desk/workspace.h"
#include "ui/session/experiments.h"

class QMainWindow;
class QMenu;

namespace torvane {

class ExperimentPanel;
class FileCommands;
class Session;

/// Lists the experiments of the present model in a menu. Choosing one, or going on to the next,
/// sets the model up for it from its defaults, after an offer to save what would be lost beside
/// values that the experiment before has proposed, shows the instruments that it takes and no
/// others, and beside them what to do and to see. The user's own desk comes back when
/// the experiment's panel is closed or another model or file is chosen.
class ExperimentsMenu : public QObject {
  Q_OBJECT

 public:
  /// The panel is docked in the window.
  ExperimentsMenu(QMenu& menu, Session& session, FileCommands& files, const DataFolder& data,
                  Workspace& workspace, QMainWindow& window);

  /// The desk is an experiment's, not the user's own.
  bool IsActive() const { return own_.has_value(); }
  /// Another model's windows have been opened, or another file.
  void ModelShown();
  /// Brings what the experiment's panel tells up to date.
  void Refresh();
  void SetRunning(bool running);

 signals:
  /// The user's own desk is about to make room for an experiment's.
  void AboutToBegin();
  /// The model is to run, or to be stopped.
  void RunWanted(bool run);

 private:
  using Offered = std::vector<OfferedExperiment>;

  Offered OfModel();
  void Fill();
  void GoOn(int by);
  void Begin(const Offered& offered, std::size_t index);
  void SetUp(const Offered& offered, std::size_t index);
  bool MayLose();
  void Dock(bool withAnalyser);
  void Leave();

  QMenu& menu_;
  Session& session_;
  FileCommands& files_;
  OfferedExperiments experiments_;
  Workspace& workspace_;
  QMainWindow& window_;
  ExperimentPanel* panel_;
  std::optional<Workspace::Desk> own_;  // while an experiment is on
  QString file_;                        // of the one that is on
  bool settingUp_ = false;
};

}  // namespace torvane
