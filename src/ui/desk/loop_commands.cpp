#include "ui/desk/loop_commands.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

#include "core/files/atomic_save.h"
#include "loops/loop_file.h"
#include "plot/qt_text.h"
#include "ui/desk/new_loop_dialog.h"
#include "ui/desk/report_list.h"
#include "ui/panes/loop/loop_pane.h"
#include "ui/session/box_queue.h"
#include "ui/session/data_folder.h"
#include "ui/session/loop_draft.h"
#include "ui/session/loop_shelf.h"
#include "ui/session/session.h"
#include "ui/session/user_settings.h"

namespace torvane {

namespace {

const QString LastLoopFolderKey = QStringLiteral("lastLoopFolder");
const QString LoopTypes = QStringLiteral("Loop (*.mo)");
constexpr int RoomForInstruments = 800;  // width that the pane leaves
constexpr int NarrowPane = 320;
constexpr int WidePane = 560;
constexpr QSize FloatingPane(520, 440);

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

LoopCommands::LoopCommands(QMainWindow& window, Session& session, LoopShelf& shelf,
                           const DataFolder& data)
    : window_(window),
      session_(session),
      shelf_(shelf),
      data_(data),
      pane_(new LoopPane(session, &window)) {
  window_.addDockWidget(Qt::LeftDockWidgetArea, pane_);
  pane_->hide();
  connect(&session_, &Session::LoopRefused, this, &LoopCommands::ShowRefused);
  connect(&session_, &Session::DraftRestored, this, &LoopCommands::ShowPane);
  connect(pane_, &LoopPane::SaveAsked, this, &LoopCommands::SaveText);
  connect(pane_, &LoopPane::SaveAsAsked, this, &LoopCommands::SaveTextAs);
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
  const QString path = QtText(loop.Path);
  const auto edit = [this, path, text = LoopDraft::Decoded(loop.Text)] {
    WhenNothingIsOpen(*this, [this, path, text] { EditText(path, text); });
  };
  ShowReportList({.Name = QStringLiteral("LoopProblemsBox"),
                  .Heading = QStringLiteral("\"%1\" cannot be opened. The present model goes on.")
                                 .arg(QFileInfo(path).fileName()),
                  .Texts = ProblemTexts(loop),
                  .Action = QStringLiteral("&Edit"),
                  .Do = edit});
}

void LoopCommands::New() {
  if (!shelf_.MakeFolder()) return;
  NewLoopDialog dialog(data_.FindFolder(QStringLiteral("loops")), LoopShelf::Folder(), &window_);
  if (dialog.exec() != QDialog::Accepted || !MayLeaveText() || !session_.MayDiscard()) return;
  const std::string path = dialog.Path().toStdString();
  if (!SaveAtomically(path, dialog.Text().toStdString())) return;
  if (session_.OpenAtStart(dialog.Path())) ShowPane();
}

bool LoopCommands::CanEdit() const {
  return session_.Loop() || !session_.Draft().IsEmpty();
}

void LoopCommands::Edit() {
  const loops::LoopFile* const loop = session_.Loop();
  if (loop && session_.Draft().Path() != QtText(loop->Path)) {
    EditText(QtText(loop->Path), LoopDraft::Decoded(loop->Text));
  } else {
    ShowPane();
  }
}

void LoopCommands::EditText(const QString& path, const QString& text) {
  if (!MayLeaveText()) return;
  session_.Draft().Open(path, text);
  ShowPane();
}

// A window of its own where the instruments cannot spare the room.
void LoopCommands::ShowPane() {
  const bool shown = pane_->isVisible();
  if (!shown && window_.width() < RoomForInstruments + NarrowPane) {
    pane_->setFloating(true);
    pane_->resize(FloatingPane);
    pane_->move(window_.geometry().center() - pane_->rect().center());
  }
  pane_->Open();
  if (shown || pane_->isFloating()) return;
  const int width = std::clamp(window_.width() - RoomForInstruments, NarrowPane, WidePane);
  window_.resizeDocks({pane_}, {width}, Qt::Horizontal);
}

bool LoopCommands::MayLeaveText() {
  LoopDraft& draft = session_.Draft();
  if (!draft.Unsaved()) return true;
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Warning"),
                  QStringLiteral("The text of the loop \"%1\" has not been saved.")
                      .arg(QFileInfo(draft.Path()).fileName()),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, &window_);
  box.setObjectName(QStringLiteral("UnsavedLoopBox"));
  box.setTextFormat(Qt::PlainText);
  box.setDefaultButton(QMessageBox::Save);
  switch (box.exec()) {
    case QMessageBox::Save:
      return draft.Save();
    case QMessageBox::Discard:
      draft.Discard();
      return true;
    default:
      return false;
  }
}

bool LoopCommands::MaySaveModel() {
  if (session_.IsLoopInItsFile()) return true;
  QMessageBox box(
      QMessageBox::Warning, QStringLiteral("Warning"),
      QStringLiteral("A model file names the loop's file, and the text that runs is not that in "
                     "\"%1\".")
          .arg(QFileInfo(QtText(session_.Loop()->Path)).fileName()),
      QMessageBox::Cancel, &window_);
  box.setObjectName(QStringLiteral("UnsavedLoopBox"));
  box.setTextFormat(Qt::PlainText);
  auto* const both = box.addButton(QStringLiteral("Save &Both"), QMessageBox::AcceptRole);
  box.setDefaultButton(both);
  box.exec();
  return box.clickedButton() == both && session_.SaveLoop();
}

void LoopCommands::SaveText() {
  if (!session_.Draft().IsEmpty()) session_.Draft().Save();
}

bool LoopCommands::SaveTextAs() {
  const LoopDraft& draft = session_.Draft();
  if (draft.IsEmpty()) return false;
  const QString folder = QFileInfo(draft.Path()).path();
  const bool own = QFileInfo(folder).isWritable();
  if (!own && !shelf_.MakeFolder()) return false;
  QFileDialog dialog(&window_, QStringLiteral("Save Loop As"), own ? folder : LoopShelf::Folder(),
                     LoopTypes);
  dialog.setObjectName(QStringLiteral("SaveLoopDialog"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QStringLiteral("mo"));
  dialog.selectFile(QFileInfo(draft.Path()).fileName());
  if (dialog.exec() != QDialog::Accepted) return false;
  return session_.SaveDraftAs(dialog.selectedFiles().value(0));
}

void LoopCommands::ReadAgain() {
  const bool runs = session_.Loop() && session_.Draft().Path() == QtText(session_.Loop()->Path);
  session_.Draft().ReadAgain();
  if (runs && !pane_->Apply()) ShowPane();
}

}  // namespace torvane
