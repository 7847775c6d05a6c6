#include "ui/panes/play_file.h"

#include <QInputDialog>
#include <memory>

#include "core/messages.h"
#include "instruments/generator/wave.h"
#include "ui/widgets/pane_dialog.h"

namespace torvane {

namespace {

QString AskForColumn(const std::vector<std::string>& columns, QWidget& window) {
  QStringList names;
  for (const std::string& column : columns) names << QString::fromStdString(column);
  auto dialog = std::make_unique<QInputDialog>(&window);
  dialog->setObjectName(QStringLiteral("PlayColumnDialog"));
  dialog->setWindowTitle(QStringLiteral("Play File"));
  dialog->setLabelText(QStringLiteral("Play the column"));
  dialog->setComboBoxItems(names);
  QString column;
  const QInputDialog& chosen = *dialog;
  AskOver(window, std::move(dialog), [&] { column = chosen.textValue(); });
  return column;
}

}  // namespace

void PlayFile(ZelWave& wave, QWidget& window) {
  const QString path =
      AskForFile(window, {QStringLiteral("PlayFileDialog"), QStringLiteral("Play File"),
                          QStringLiteral("Time and values (*.csv *.txt);;All files (*)")});
  if (path.isEmpty()) return;
  const std::string file = path.toStdString();
  WaveReading reading = ReadWaveFile(file);
  if (!reading.Table && reading.Columns.size() > 1) {
    const QString column = AskForColumn(reading.Columns, window);
    if (column.isEmpty()) return;
    reading = ReadWaveFile(file, column.toStdString());
  }
  if (!reading.Table) return Error(reading.Fault);
  wave.Play(std::move(reading.Table));
}

}  // namespace torvane
