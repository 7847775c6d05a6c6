#include "ui/desk/experiments_menu.h"

#include <QMenu>

#include "ui/desk/workspace.h"
#include "ui/panes/model_views.h"
#include "ui/session/box_queue.h"
#include "ui/session/experiments.h"
#include "ui/session/session.h"

namespace torvane {

ExperimentsMenu::ExperimentsMenu(QMenu& menu, Session& session, const DataFolder& data,
                                 Workspace& workspace, TZelModelTextF& text)
    : QObject(&menu),
      menu_(menu),
      session_(session),
      data_(data),
      workspace_(workspace),
      text_(text) {
  connect(&session_, &Session::ModelChanged, this, &ExperimentsMenu::Fill);
}

void ExperimentsMenu::Fill() {
  menu_.clear();
  int number = 0;
  for (const Experiment& experiment : ExperimentsOf(*session_.Model(), data_)) {
    QString title = experiment.Title;
    title.replace(u'&', QStringLiteral("&&"));
    QAction* item = menu_.addAction(
        QStringLiteral("&%1. %2").arg(++number).arg(title), this, [this, experiment] {
          WhenNothingIsOpen(*this, [this, experiment] { SetUp(experiment); });
        });
    item->setEnabled(!experiment.File.isEmpty());
  }
  if (number == 0) menu_.addAction(QStringLiteral("None for this model"))->setEnabled(false);
}

// The menu is filled anew while the model changes; its item is done by then.
void ExperimentsMenu::SetUp(const Experiment& experiment) {
  const QString model = QString::fromStdString(session_.Model()->Name());
  if (!session_.MayDiscard() || !session_.Choose(model.toStdString())) return;
  // What its class remembers of the run before would kick the loop, or keep its sampler waiting.
  session_.Model()->DropClassMemory();
  if (!session_.OpenConfiguration(experiment.File)) return;
  if (experiment.Text.contains(QStringLiteral("\nAnalyser "))) {
    workspace_.SetShown(*session_.Model()->Bench().Instruments(InstrumentKind::FftAnalyser).front(),
                        true);
  }
  text_.ShowText(QStringLiteral("Experiment with \"%1\"").arg(model),
                 experiment.Title + QStringLiteral("\n\n") + experiment.Text);
}

}  // namespace torvane
