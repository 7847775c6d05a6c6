#pragma once

#include <QDockWidget>
#include <memory>

#include "models/experiment_reading.h"

class QBoxLayout;
class QTextBrowser;
class QToolButton;

namespace torvane {

/// What an experiment asks, what there is to do and to see, and what it costs: a panel beside the
/// instruments. A click on a value sets it, as one step to undo; what has been set is ticked, and
/// what the instruments read of the answers stands beside them, ticked where it is as expected. The
/// user can take it out, as a window of its own.
class ExperimentPanel : public QDockWidget {
  Q_OBJECT

 public:
  explicit ExperimentPanel(QWidget* parent);
  ~ExperimentPanel() override;

  /// Which neighbours it has among those of its model.
  struct Neighbours {
    bool Previous = false;
    bool Next = false;
  };

  /// The model is set up for it already, and stays until Forget.
  void ShowExperiment(const Experiment& experiment, ZelModel& model, const Neighbours& neighbours);
  /// Of the experiment that is shown; nullptr without any.
  const Experiment* Shown() const;
  void Forget();

  /// Brings ticks and readings up to date.
  void Refresh();
  /// Whether the model runs.
  void SetRunning(bool running);

 signals:
  /// The user has closed it: the experiment is over.
  void Closed();
  /// The neighbour, -1 or 1, is to take its place.
  void StepWanted(int by);
  /// The model is to run, or to be stopped.
  void RunWanted(bool run);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  struct Trial;

  void AddButtons();
  bool Fits(const ExperimentAnswer& answer) const;
  void Write();
  void SetValue(const QString& place);
  void ShowReadings();
  void PressRun();

  QTextBrowser* text_;
  QBoxLayout* layout_;
  QBoxLayout* buttons_;
  QToolButton* run_;
  QToolButton* previous_;
  QToolButton* next_;
  std::unique_ptr<Trial> trial_;  // while an experiment is on
  std::size_t step_ = 0;          // the last that the user has set a value of
  bool running_ = false;
  bool wide_ = false;
};

}  // namespace torvane
