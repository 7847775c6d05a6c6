#pragma once

#include <QObject>

#include "ui/session/data_folder.h"

class QMenu;

namespace torvane {

class Session;
struct OfferedExperiment;
class TZelModelTextF;
class Workspace;

/// Lists the experiments of the present model in a menu. Choosing one sets the model up for it from
/// its defaults, after a question where something would be lost, brings the analyser where it takes
/// one, and shows what to do and to see.
class ExperimentsMenu : public QObject {
 public:
  /// The text of an experiment is shown in the given window.
  ExperimentsMenu(QMenu& menu, Session& session, const DataFolder& data, Workspace& workspace,
                  TZelModelTextF& text);

 private:
  void Fill();
  void SetUp(const OfferedExperiment& experiment);

  QMenu& menu_;
  Session& session_;
  const DataFolder& data_;
  Workspace& workspace_;
  TZelModelTextF& text_;
};

}  // namespace torvane
