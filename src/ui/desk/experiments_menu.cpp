#include "ui/desk/experiments_menu.h"

#include <QMainWindow>
#include <QMenu>
#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

#include "loops/loop_file.h"
#include "plot/qt_text.h"
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
constexpr int InstrumentsHeight = 420;  // that a panel below leaves

}  // namespace

ExperimentsMenu::ExperimentsMenu(QMenu& menu, Session& session, const DataFolder& data,
                                 Workspace& workspace, QMainWindow& window)
    : QObject(&menu),
      menu_(menu),
      session_(session),
      experiments_(data),
      workspace_(workspace),
      window_(window),
      panel_(new ExperimentPanel(&window)) {
  connect(&menu_, &QMenu::aboutToShow, this, &ExperimentsMenu::Fill);
  connect(&session_, &Session::FileLoaded, this, &ExperimentsMenu::ModelShown);
  connect(panel_, &ExperimentPanel::Closed, this, &ExperimentsMenu::Leave);
}

void ExperimentsMenu::Fill() {
  menu_.clear();
  const QString loop = session_.Loop() ? QtText(session_.Loop()->Path) : QString();
  int number = 0;
  for (const OfferedExperiment& experiment : experiments_.Of(session_.Model()->Name(), loop)) {
    const bool isWhole = experiment.Fault.isEmpty();
    QString title = isWhole ? QString::fromStdString(experiment.Record.Title) : experiment.Fault;
    title.replace(u'&', QStringLiteral("&&"));
    QAction* item = menu_.addAction(
        QStringLiteral("&%1. %2").arg(++number).arg(title), this, [this, experiment] {
          WhenNothingIsOpen(*this, [this, experiment] { SetUp(experiment); });
        });
    item->setEnabled(isWhole && !experiment.File.isEmpty());
  }
  if (number == 0) menu_.addAction(QStringLiteral("None for this model"))->setEnabled(false);
}

// The menu is filled anew while the model changes; its item is done by then.
void ExperimentsMenu::SetUp(const OfferedExperiment& experiment) {
  if (!session_.CanRead(experiment.File) || !session_.MayDiscard()) return;
  if (!own_) {
    emit AboutToBegin();
    own_ = workspace_.Present();
  }
  const QScopedValueRollback settingUp(settingUp_, true);
  if (!session_.BuildAnew()) return;
  // What its class remembers of the run before would kick the loop, or keep its sampler waiting.
  session_.Model()->DropClassMemory();
  if (!session_.OpenConfiguration(experiment.File)) return;
  const Experiment& record = experiment.Record;
  Dock(record.Shows(InstrumentKind::FftAnalyser) || record.Shows(InstrumentKind::SweptSine));
  panel_->ShowExperiment(record);
  workspace_.ShowOnly([&](InstrumentKind kind) { return record.Shows(kind); });
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
  panel_->hide();
  workspace_.Restore(own);
}

}  // namespace torvane
