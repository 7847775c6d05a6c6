#pragma once

#include <QDockWidget>

#include "models/experiment.h"

class QTextBrowser;

namespace torvane {

/// What an experiment asks, what there is to do and to see, and what it costs: a panel beside the
/// instruments. The user can take it out, as a window of its own.
class ExperimentPanel : public QDockWidget {
  Q_OBJECT

 public:
  explicit ExperimentPanel(QWidget* parent);

  void ShowExperiment(const Experiment& experiment);

 signals:
  /// The user has closed it: the experiment is over.
  void Closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QTextBrowser* text_;
};

}  // namespace torvane
