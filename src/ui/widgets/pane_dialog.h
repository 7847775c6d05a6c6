#pragma once

#include <QFileDialog>
#include <functional>
#include <memory>

namespace torvane {

/// Opens a dialog over a pane and hands its answer to `read` while it stands. False when the user
/// cancels, or when the pane went meanwhile: another model may come while a dialog closes, and
/// takes the panes of the one before and their dialogs with it. After a no, nothing of the pane is
/// there for certain; so a button that opens one does it by a queued connection, as it cannot go
/// within its own click.
bool AskOver(
    const QWidget& pane, std::unique_ptr<QDialog> dialog,
    const std::function<void()>& read = [] {});

/// What a dialog for a table or a picture asks.
struct FileQuestion {
  QString Name;  // the dialog's object name
  QString Title;
  QString Types;
  QString Proposed = {};  // the name of a file to be written; none where one is read
};

/// The file that the user chooses, beside the one before it; empty where AskOver says no.
QString AskForFile(QWidget& pane, const FileQuestion& question);

}  // namespace torvane
