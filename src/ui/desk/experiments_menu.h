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
class Session;

/// Lists the experiments of the present model in a menu. Choosing one sets the model up for it from
/// its defaults, after a question where something would be lost, shows the instruments that it
/// takes and no others, and beside them what to do and to see. The user's own desk comes back when
/// the experiment's panel is closed or another model or file is chosen.
class ExperimentsMenu : public QObject {
  Q_OBJECT

 public:
  /// The panel is docked in the window.
  ExperimentsMenu(QMenu& menu, Session& session, const DataFolder& data, Workspace& workspace,
                  QMainWindow& window);

  /// The desk is an experiment's, not the user's own.
  bool IsActive() const { return own_.has_value(); }
  /// Another model's windows have been opened, or another file.
  void ModelShown();

 signals:
  /// The user's own desk is about to make room for an experiment's.
  void AboutToBegin();

 private:
  void Fill();
  void SetUp(const OfferedExperiment& experiment);
  void Dock(bool withAnalyser);
  void Leave();

  QMenu& menu_;
  Session& session_;
  OfferedExperiments experiments_;
  Workspace& workspace_;
  QMainWindow& window_;
  ExperimentPanel* panel_;
  std::optional<Workspace::Desk> own_;  // while an experiment is on
  bool settingUp_ = false;
};

}  // namespace torvane
