#include "ui/panes/scope/load_traces.h"

#include <QDir>
#include <QFileDialog>

#include "core/messages.h"
#include "instruments/scope/trace_csv.h"
#include "ui/session/user_settings.h"

namespace torvane {

void LoadTraces(ZelScope& scope, QWidget& window) {
  QFileDialog dialog(&window, QStringLiteral("Load Traces"),
                     UserSettings().value(ExportFolderKey, QDir::homePath()).toString(),
                     QStringLiteral("Time and signals (*.csv *.txt);;All files (*)"));
  dialog.setObjectName(QStringLiteral("LoadTracesDialog"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  if (dialog.exec() != QDialog::Accepted) return;
  UserSettings().setValue(ExportFolderKey, dialog.directory().absolutePath());
  const TraceText traces = ReadTraceFile(dialog.selectedFiles().value(0).toStdString(), scope);
  if (!traces.Fault.empty()) return Error(traces.Fault);
  scope.KeepTraces(traces.Screen);
  if (!traces.Note.empty()) Note(traces.Note);
}

}  // namespace torvane
