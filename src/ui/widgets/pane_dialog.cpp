#include "ui/widgets/pane_dialog.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include "ui/session/user_settings.h"

namespace torvane {

bool AskOver(const QWidget& pane, std::unique_ptr<QDialog> dialog,
             const std::function<void()>& read) {
  const QPointer<const QWidget> asking(&pane);
  const QPointer<QDialog> open(dialog.release());  // its window may delete it
  const bool accepted = open->exec() == QDialog::Accepted && asking && open;
  if (accepted) read();
  delete open;
  return accepted;
}

QString AskForFile(QWidget& pane, const FileQuestion& question) {
  const QString folder = UserSettings().value(ExportFolderKey, QDir::homePath()).toString();
  auto dialog =
      std::make_unique<QFileDialog>(pane.window(), question.Title, folder, question.Types);
  dialog->setObjectName(question.Name);
  if (question.Proposed.isEmpty()) {
    dialog->setFileMode(QFileDialog::ExistingFile);
  } else {
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QFileInfo(question.Proposed).suffix());
    dialog->selectFile(question.Proposed);
  }
  QString path;
  const QFileDialog& chosen = *dialog;
  AskOver(pane, std::move(dialog), [&] { path = chosen.selectedFiles().value(0); });
  if (!path.isEmpty()) UserSettings().setValue(ExportFolderKey, QFileInfo(path).absolutePath());
  return path;
}

}  // namespace torvane
