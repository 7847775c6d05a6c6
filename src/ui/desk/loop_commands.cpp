#include "ui/desk/loop_commands.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include "loops/loop_file.h"
#include "plot/qt_text.h"
#include "ui/desk/report_list.h"
#include "ui/session/loop_shelf.h"
#include "ui/session/session.h"
#include "ui/session/user_settings.h"

namespace torvane {

namespace {

const QString LastLoopFolderKey = QStringLiteral("lastLoopFolder");
const QString LoopTypes = QStringLiteral("Loop (*.mo)");

// All that is wrong with the loop, with its lines.
QString ProblemTexts(const loops::LoopFile& loop) {
  QString texts;
  for (const loops::Problem& problem : loop.Reading.Problems) {
    texts += QtText(loops::PlaceText(loop.Path, problem.Where) + ": " +
                    (problem.Warning ? "warning: " : "") + problem.Text + "\n" +
                    loops::MarkedLine(loop.Text, problem.Where) + "\n\n");
  }
  return texts.trimmed();
}

}  // namespace

LoopCommands::LoopCommands(QWidget& window, Session& session, LoopShelf& shelf)
    : window_(window), session_(session), shelf_(shelf) {
  connect(&session_, &Session::LoopRefused, this, &LoopCommands::ShowRefused);
  session_.SetAskForLoop([this](const loops::WantedLoop& wanted) { return AskForLoop(wanted); });
}

QString LoopCommands::ChooseFile(const QString& title, const QString& folder) {
  QFileDialog dialog(&window_, title, folder, LoopTypes);
  dialog.setObjectName(QStringLiteral("LoopDialog"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  if (dialog.exec() != QDialog::Accepted) return {};
  return dialog.selectedFiles().value(0);
}

// Where the user was last, else in the folder for loops, which has an example.
void LoopCommands::Open() {
  const QString last = UserSettings().value(LastLoopFolderKey).toString();
  const bool known = !last.isEmpty() && QFileInfo(last).isDir();
  if (!known && !shelf_.MakeFolder()) return;
  const QString path = ChooseFile(QStringLiteral("Open Loop"), known ? last : LoopShelf::Folder());
  if (path.isEmpty()) return;
  UserSettings().setValue(LastLoopFolderKey, QFileInfo(path).absolutePath());
  session_.Open(path);
}

QString LoopCommands::AskForLoop(const loops::WantedLoop& wanted) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Warning"), QtText(wanted.Fault),
                  QMessageBox::Cancel, &window_);
  box.setObjectName(QStringLiteral("MissingLoopBox"));
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(QStringLiteral("The present model stays until its loop is found."));
  const auto* find = box.addButton(QStringLiteral("&Find the Loop..."), QMessageBox::AcceptRole);
  box.exec();
  if (box.clickedButton() != find) return {};
  const QFileInfo was(QtText(wanted.WasAt));
  return ChooseFile(QStringLiteral("Find \"%1\"").arg(was.fileName()),
                    was.dir().exists() ? was.path() : LoopShelf::Folder());
}

void LoopCommands::ShowRefused(const loops::LoopFile& loop) {
  ShowReportList({.Name = QStringLiteral("LoopProblemsBox"),
                  .Heading = QStringLiteral("\"%1\" cannot be opened. The present model goes on.")
                                 .arg(QFileInfo(QtText(loop.Path)).fileName()),
                  .Texts = ProblemTexts(loop),
                  .Action = {},
                  .Do = {}});
}

}  // namespace torvane
