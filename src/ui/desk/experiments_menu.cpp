#include "ui/desk/experiments_menu.h"

#include <QMenu>

#include "ui/desk/workspace.h"
#include "ui/panes/model_views.h"
#include "ui/session/box_queue.h"
#include "ui/session/experiments.h"
#include "ui/session/session.h"

namespace torvane {

namespace {

QString Joined(const std::vector<ExperimentSetting>& settings) {
  QStringList texts;
  for (const ExperimentSetting& setting : settings) {
    texts << QString::fromStdString(setting.Text());
  }
  return texts.join(QStringLiteral(", "));
}

// What to expect, what to do, what there is to see.
QString ExperimentText(const Experiment& experiment) {
  const auto text = [](const std::string& part) { return QString::fromStdString(part); };
  QString all = text(experiment.Title) + QStringLiteral("\n\n") + text(experiment.Question) +
                QStringLiteral("\n\n");
  QStringList signalNames;
  for (const std::string& name : experiment.Watched) signalNames << text(name);
  if (!signalNames.isEmpty()) {
    all += QStringLiteral("Watch  %1\n").arg(signalNames.join(QStringLiteral(", ")));
  }
  if (!experiment.SetUp.empty()) all += QStringLiteral("With   %1\n").arg(Joined(experiment.SetUp));
  for (const ExperimentStep& step : experiment.Steps) {
    const char* const lead = &step == &experiment.Steps.front() ? "Set " : "then";
    all += QStringLiteral("%1   %2\n").arg(QLatin1String(lead), Joined(step.Settings));
  }
  all += u'\n' + text(experiment.Text);
  if (!experiment.Cost.empty()) all += QStringLiteral("\nThe price: ") + text(experiment.Cost);
  return all;
}

}  // namespace

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
  for (const OfferedExperiment& experiment : ExperimentsOf(session_.Model()->Name(), data_)) {
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
  const QString model = QString::fromStdString(session_.Model()->Name());
  if (!session_.MayDiscard() || !session_.Choose(model.toStdString())) return;
  // What its class remembers of the run before would kick the loop, or keep its sampler waiting.
  session_.Model()->DropClassMemory();
  if (!session_.OpenConfiguration(experiment.File)) return;
  if (experiment.Record.Shows(InstrumentKind::FftAnalyser)) {
    workspace_.SetShown(*session_.Model()->Bench().Instruments(InstrumentKind::FftAnalyser).front(),
                        true);
  }
  text_.ShowText(QStringLiteral("Experiment with \"%1\"").arg(model),
                 ExperimentText(experiment.Record));
}

}  // namespace torvane
