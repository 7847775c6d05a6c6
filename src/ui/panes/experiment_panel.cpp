#include "ui/panes/experiment_panel.h"

#include <QCloseEvent>
#include <QTextBrowser>

namespace torvane {

namespace {

constexpr QSize Least(180, 80);

QString Text(const std::string& text) {
  return QString::fromStdString(text).toHtmlEscaped();
}

QString Joined(const std::vector<ExperimentSetting>& settings) {
  QStringList texts;
  for (const ExperimentSetting& setting : settings) texts << Text(setting.Text());
  return texts.join(QStringLiteral(", "));
}

// Lines in one paragraph, blank ones between two.
QString Paragraphs(const std::string& text) {
  return QStringLiteral("<p>%1</p>")
      .arg(Text(text).trimmed().replace(QStringLiteral("\n\n"), QStringLiteral("</p><p>")));
}

QString Html(const Experiment& experiment) {
  QString html = QStringLiteral("<h3>%1</h3><p><i>%2</i></p><p>")
                     .arg(Text(experiment.Title), Text(experiment.Question));
  QStringList watched;
  for (const std::string& name : experiment.Watched) watched << Text(name);
  if (!watched.isEmpty()) {
    html += QStringLiteral("Watch <b>%1</b>").arg(watched.join(QStringLiteral(", ")));
  }
  if (!experiment.SetUp.empty()) {
    html += (watched.isEmpty() ? QStringLiteral("With ") : QStringLiteral(", with ")) +
            Joined(experiment.SetUp);
  }
  html += QStringLiteral("</p><ol>");
  for (const ExperimentStep& step : experiment.Steps) {
    html += QStringLiteral("<li><b>%1</b></li>").arg(Joined(step.Settings));
  }
  html += QStringLiteral("</ol>") + Paragraphs(experiment.Text);
  if (!experiment.Cost.empty()) {
    html += QStringLiteral("<p><b>The price:</b> %1</p>").arg(Text(experiment.Cost));
  }
  return html;
}

}  // namespace

ExperimentPanel::ExperimentPanel(QWidget* parent) : QDockWidget(parent), text_(new QTextBrowser) {
  setObjectName(QStringLiteral("ExperimentPanel"));
  text_->setObjectName(QStringLiteral("MExperiment"));
  text_->setAccessibleName(QStringLiteral("Experiment"));
  text_->setTabChangesFocus(true);
  text_->setMinimumSize(Least);
  setWidget(text_);
  hide();
}

void ExperimentPanel::ShowExperiment(const Experiment& experiment) {
  setWindowTitle(
      QStringLiteral("Experiment with \"%1\"").arg(QString::fromStdString(experiment.Model)));
  text_->setHtml(Html(experiment));
  show();
}

void ExperimentPanel::closeEvent(QCloseEvent* event) {
  event->accept();
  emit Closed();
}

}  // namespace torvane
