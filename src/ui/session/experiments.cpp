#include "ui/session/experiments.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "core/model.h"

namespace torvane {

namespace {

// A model without a text of its own beside the diagram still has experiments under its diagram's
// name.
QString DescriptionOf(const ZelModel& model, const DataFolder& data) {
  QString name = QString::fromStdString(model.TextFile());
  if (name.isEmpty()) {
    name = QFileInfo(QString::fromStdString(model.PictureFile())).completeBaseName() +
           QStringLiteral(".txt");
  }
  const QString path = data.Find(name);
  QFile file(path);
  if (path.isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
  return QString::fromUtf8(file.readAll());
}

QString ExampleName(const QString& model, const QString& title) {
  static const QRegularExpression number(QStringLiteral("^(\\d+-\\d+|\\w+)"));
  static const QRegularExpression gaps(QStringLiteral("[^a-z0-9+]+"));
  QString name = (number.match(model).captured() + u' ' + title).toLower();
  name.remove(u'\'').replace(gaps, QStringLiteral("-"));
  return QStringLiteral("examples/%1.tvf").arg(name.replace(u'+', QStringLiteral("-plus")));
}

}  // namespace

QList<Experiment> ExperimentsOf(const ZelModel& model, const DataFolder& data) {
  static const QRegularExpression heading(QStringLiteral("^\\d+\\. (.+)$"));
  QList<Experiment> experiments;
  bool inSection = false;
  for (const QString& line : DescriptionOf(model, data).split(u'\n')) {
    if (line.startsWith(QStringLiteral("EXPERIMENTS"))) inSection = true;
    if (!inSection) continue;
    const QRegularExpressionMatch match = heading.match(line);
    if (match.hasMatch()) {
      const QString title = match.captured(1);
      const QString file = ExampleName(QString::fromStdString(model.Name()), title);
      experiments.append({title, {}, data.Find(file)});
    } else if (!experiments.isEmpty()) {
      experiments.last().Text += line.mid(line.startsWith(QStringLiteral("   ")) ? 3 : 0) + u'\n';
    }
  }
  for (Experiment& experiment : experiments) experiment.Text = experiment.Text.trimmed();
  return experiments;
}

}  // namespace torvane
