#include "ui/panes/scope/load_traces.h"

#include "core/messages.h"
#include "instruments/scope/trace_csv.h"
#include "ui/widgets/pane_dialog.h"

namespace torvane {

void LoadTraces(ZelScope& scope, QWidget& window) {
  const QString path =
      AskForFile(window, {QStringLiteral("LoadTracesDialog"), QStringLiteral("Load Traces"),
                          QStringLiteral("Time and signals (*.csv *.txt);;All files (*)")});
  if (path.isEmpty()) return;
  const TraceText traces = ReadTraceFile(path.toStdString(), scope);
  if (!traces.Fault.empty()) return Error(traces.Fault);
  scope.KeepTraces(traces.Screen);
  if (!traces.Note.empty()) Note(traces.Note);
}

}  // namespace torvane
