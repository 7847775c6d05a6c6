#include "ui/desk/experiments_menu.h"

#include <QMainWindow>
#include <QMenu>
#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

#include "loops/loop_file.h"
#include "plot/qt_text.h"
#include "ui/desk/file_commands.h"
#include "ui/desk/workspace.h"
#include "ui/panes/experiment_panel.h"
#include "ui/session/box_queue.h"
#include "ui/session/experiments.h"
#include "ui/session/session.h"

namespace torvane {

namespace {

constexpr int BesideBoth = 1500;  // width from which a panel at the side leaves room for two plots
constexpr int Instruments = 616;  // width that a panel at the side leaves
constexpr int NarrowPanel = 180;
constexpr int PanelWidth = 270;
constexpr int LowPanel = 110;
constexpr int PanelHeight = 150;
constexpr int InstrumentsHeight = 650;  // that a panel below leaves

bool CanBegin(const OfferedExperiment& experiment) {
  return experiment.Fault.isEmpty() && !experiment.File.isEmpty();
}

}  // namespace

ExperimentsMenu::ExperimentsMenu(QMenu& menu, Session& session, FileCommands& files,
                                 const DataFolder& data, Workspace& workspace, QMainWindow& window)
    : QObject(&menu),
      menu_(menu),
      session_(session),
      files_(files),
      experiments_(data),
      workspace_(workspace),
      window_(window),
      panel_(new ExperimentPanel(&window)) {
  connect(&menu_, &QMenu::aboutToShow, this, &ExperimentsMenu::Fill);
  connect(&session_, &Session::FileLoaded, this, &ExperimentsMenu::ModelShown);
  connect(&session_, &Session::ModelAboutToChange, panel_, &ExperimentPanel::Forget);
  connect(panel_, &ExperimentPanel::Closed, this, &ExperimentsMenu::Leave);
  connect(panel_, &ExperimentPanel::StepWanted, this, &ExperimentsMenu::GoOn);
  connect(panel_, &ExperimentPanel::RunWanted, this, &ExperimentsMenu::RunWanted);
}

ExperimentsMenu::Offered ExperimentsMenu::OfModel() {
  const QString loop = session_.Loop() ? QtText(session_.Loop()->Path) : QString();
  return experiments_.Of(session_.Model()->Name(), loop);
}

void ExperimentsMenu::Fill() {
  menu_.clear();
  const Offered offered = OfModel();
  for (std::size_t i = 0; i < offered.size(); ++i) {
    const OfferedExperiment& experiment = offered[i];
    const bool isWhole = experiment.Fault.isEmpty();
    QString title = isWhole ? QString::fromStdString(experiment.Record.Title) : experiment.Fault;
    title.replace(u'&', QStringLiteral("&&"));
    QAction* item = menu_.addAction(QStringLiteral("&%1. %2").arg(i + 1).arg(title), this,
                                    [this, offered, i] { Begin(offered, i); });
    item->setEnabled(CanBegin(experiment));
  }
  if (offered.empty()) menu_.addAction(QStringLiteral("None for this model"))->setEnabled(false);
}

// The neighbour of the one that is shown once all earlier clicks are done; numbers may be alike.
void ExperimentsMenu::GoOn(int by) {
  WhenNothingIsOpen(*this, [this, by] {
    if (!panel_->Shown()) return;
    const Offered offered = OfModel();
    const auto shown = std::ranges::find(offered, file_, &OfferedExperiment::File);
    const auto next = static_cast<std::size_t>(shown - offered.begin() + by);
    if (shown != offered.end() && next < offered.size()) SetUp(offered, next);
  });
}

// The menu is filled anew, and the panel written, while the model changes; what has been clicked is
// done by then.
void ExperimentsMenu::Begin(const Offered& offered, std::size_t index) {
  WhenNothingIsOpen(*this, [this, offered, index] { SetUp(offered, index); });
}

bool ExperimentsMenu::MayLose() {
  const Experiment* shown = panel_->Shown();
  if (shown && OnlyProposed(*shown, session_.SavedSettings(), *session_.Model())) return true;
  return files_.OfferToSave();
}

void ExperimentsMenu::SetUp(const Offered& offered, std::size_t index) {
  const OfferedExperiment& experiment = offered[index];
  if (!session_.CanRead(experiment.File) || !MayLose()) return;
  const bool begins = !own_;
  if (begins) {
    emit AboutToBegin();
    own_ = workspace_.Present();
  }
  const QScopedValueRollback settingUp(settingUp_, true);
  if (!session_.BuildAnew()) {
    if (begins) own_.reset();
    return;
  }
  // What its class remembers of the run before would kick the loop, or keep its sampler waiting.
  session_.Model()->DropClassMemory();
  if (!session_.OpenConfiguration(experiment.File)) return Leave();
  file_ = experiment.File;
  const Experiment& record = experiment.Record;
  Dock(record.Shows(InstrumentKind::FftAnalyser) || record.Shows(InstrumentKind::SweptSine));
  const bool isLast = index + 1 == offered.size();
  panel_->ShowExperiment(
      record, *session_.Model(),
      {index > 0 && CanBegin(offered[index - 1]), !isLast && CanBegin(offered[index + 1])});
  workspace_.ShowOnly([&](InstrumentKind kind) { return record.Shows(kind); });
}

void ExperimentsMenu::Refresh() {
  panel_->Refresh();
}

void ExperimentsMenu::SetRunning(bool running) {
  panel_->SetRunning(running);
}

// Below the instruments where these stand side by side and leave none.
void ExperimentsMenu::Dock(bool withAnalyser) {
  if (panel_->isVisible() && panel_->isFloating()) return;
  const bool side = !withAnalyser || window_.width() >= BesideBoth;
  window_.addDockWidget(side ? Qt::RightDockWidgetArea : Qt::BottomDockWidgetArea, panel_);
  panel_->show();
  const int width = std::clamp(window_.width() - Instruments, NarrowPanel, PanelWidth);
  const int height = std::clamp(window_.height() - InstrumentsHeight, LowPanel, PanelHeight);
  window_.resizeDocks({panel_}, {side ? width : height}, side ? Qt::Horizontal : Qt::Vertical);
}

void ExperimentsMenu::ModelShown() {
  if (!settingUp_) Leave();
}

void ExperimentsMenu::Leave() {
  if (!own_) return;
  const Workspace::Desk own = *std::exchange(own_, std::nullopt);
  panel_->Forget();
  panel_->hide();
  workspace_.Restore(own);
}

}  // namespace torvane
