#include "ui/panes/play_file.h"

#include <QDir>
#include <QFileDialog>
#include <QInputDialog>

#include "core/messages.h"
#include "instruments/generator/wave.h"
#include "ui/session/user_settings.h"

namespace torvane {

namespace {

QString AskForColumn(const std::vector<std::string>& columns, QWidget& window) {
  QStringList names;
  for (const std::string& column : columns) names << QString::fromStdString(column);
  QInputDialog dialog(&window);
  dialog.setObjectName(QStringLiteral("PlayColumnDialog"));
  dialog.setWindowTitle(QStringLiteral("Play File"));
  dialog.setLabelText(QStringLiteral("Play the column"));
  dialog.setComboBoxItems(names);
  return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}

}  // namespace

void PlayFile(ZelWave& wave, QWidget& window) {
  QFileDialog dialog(&window, QStringLiteral("Play File"),
                     UserSettings().value(ExportFolderKey, QDir::homePath()).toString(),
                     QStringLiteral("Time and values (*.csv *.txt);;All files (*)"));
  dialog.setObjectName(QStringLiteral("PlayFileDialog"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  if (dialog.exec() != QDialog::Accepted) return;
  UserSettings().setValue(ExportFolderKey, dialog.directory().absolutePath());
  const std::string file = dialog.selectedFiles().value(0).toStdString();
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
