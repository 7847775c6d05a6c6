#include "ui/desk/file_commands.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <utility>

#include "core/files/model_file.h"
#include "loops/loop_file.h"
#include "plot/qt_text.h"
#include "ui/desk/report_list.h"
#include "ui/session/box_queue.h"
#include "ui/session/last_session.h"
#include "ui/session/session.h"
#include "ui/session/user_settings.h"

namespace torvane {

namespace {

constexpr int MostRecent = 8;
const QString RecentKey = QStringLiteral("recentFiles");
const QString LastFolderKey = QStringLiteral("lastFolder");
const QString Configuration = QStringLiteral("init.tvf");
// The dialog gives a name the ending of the first.
const QString FileTypes = QStringLiteral("Torvane File (*.tvf *.TVF)");

QString ConfigurationFile() {
  const QString folders[] = {
      QCoreApplication::applicationDirPath(),
      QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
          QStringLiteral("/torvane")};
  for (const QString& folder : folders) {
    const QString path = folder + u'/' + Configuration;
    if (QFileInfo(path).isFile()) return path;
  }
  return {};
}

// The file that the user chooses; empty when none. Remembers its folder.
QString Choose(QFileDialog& dialog) {
  dialog.setDefaultSuffix(QStringLiteral("tvf"));
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  if (dialog.exec() != QDialog::Accepted) return {};
  const QString path = dialog.selectedFiles().value(0);
  UserSettings().setValue(LastFolderKey, QFileInfo(path).absolutePath());
  return path;
}

}  // namespace

FileCommands::FileCommands(QWidget& window, QMenu& recent, Session& session, const DataFolder& data)
    : window_(window), recent_(recent), session_(session), data_(data) {
  connect(&recent_, &QMenu::aboutToShow, this, &FileCommands::FillRecent);
  connect(&session_, &Session::FileChanged, this, [this] { AddRecent(session_.File()); });
  connect(&session_, &Session::LoopOpened, this, &FileCommands::AddRecent);
  connect(&session_, &Session::ManyReports, this, &FileCommands::ShowManyReports);
  FillRecent();
}

void FileCommands::Start(const QString& file, bool withConfiguration) {
  comesBack_ = file.isEmpty() && withConfiguration;
  if (OfferRecovery()) return;
  if (!file.isEmpty()) {
    session_.OpenAtStart(file);
  } else if (withConfiguration) {
    const QString configuration = ConfigurationFile();
    if (!configuration.isEmpty()) {
      session_.OpenConfiguration(configuration);
    } else if (last_session::IsOn()) {
      last_session::Bring(session_);
    }
  }
}

void FileCommands::KeepForNextStart() {
  if (!comesBack_ || !last_session::IsOn()) return;
  if (!last_session::Keep(session_)) BoxQueue::OfApplication().Finish();
}

bool FileCommands::OfferRecovery() {
  for (KeptSession& kept : Session::LeftBehind()) {
    // What a session manager ended and starts again goes on as it was.
    switch (qGuiApp->isSessionRestored() ? Recovery::Restore : AskAboutRecovery(kept)) {
      case Recovery::Restore:
        if (session_.Restore(std::move(kept))) return true;
        break;
      case Recovery::Discard:
        kept.File.Remove();
        break;
      case Recovery::NotNow:
        return false;
    }
  }
  return false;
}

FileCommands::Recovery FileCommands::AskAboutRecovery(const KeptSession& kept) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Warning"),
                  QStringLiteral("Torvane did not end properly the last time."),
                  QMessageBox::NoButton, &window_);
  box.setObjectName(QStringLiteral("RecoveryBox"));
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(
      QStringLiteral("The constants and instruments of \"%1\" as they were on %2 have been kept.")
          .arg(QString::fromStdString(ModelNameIn(kept.Text)),
               QLocale().toString(kept.When, QLocale::ShortFormat)));
  const auto* restore = box.addButton(QStringLiteral("&Restore"), QMessageBox::AcceptRole);
  const auto* discard = box.addButton(QStringLiteral("&Discard"), QMessageBox::DestructiveRole);
  box.setEscapeButton(box.addButton(QStringLiteral("&Not Now"), QMessageBox::RejectRole));
  BoxQueue::OfApplication().Finish();
  box.exec();
  if (box.clickedButton() == restore) return Recovery::Restore;
  return box.clickedButton() == discard ? Recovery::Discard : Recovery::NotNow;
}

// Where the user was; the first time, the folder of the examples.
QString FileCommands::StartFolder() const {
  const QString last = UserSettings().value(LastFolderKey).toString();
  if (!last.isEmpty() && QFileInfo(last).isDir()) return last;
  return data_.FindFolder(QStringLiteral("examples"));
}

void FileCommands::Load() {
  QFileDialog dialog(&window_, QStringLiteral("Load"), StartFolder(), FileTypes);
  dialog.setObjectName(QStringLiteral("LoadDialog"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  const QString path = Choose(dialog);
  if (!path.isEmpty()) session_.Open(path);
}

bool FileCommands::Save() {
  if (session_.File().isEmpty()) return SaveAs();
  return maySave_() && session_.Save(session_.File());
}

// Where the file is that is being saved, or the loop that it is for, else where the user was last;
// never the program's own.
QString FileCommands::SaveFolder() const {
  const QString file = session_.File().isEmpty() && session_.Loop() ? QtText(session_.Loop()->Path)
                                                                    : session_.File();
  const QString folder =
      file.isEmpty() ? UserSettings().value(LastFolderKey).toString() : QFileInfo(file).path();
  const QFileInfo found(folder);
  const bool shipped = std::ranges::any_of(std::array{"examples", "loops"}, [&](const char* name) {
    return found.canonicalFilePath() ==
           QFileInfo(data_.FindFolder(QLatin1String(name))).canonicalFilePath();
  });
  const bool own = !folder.isEmpty() && found.isDir() && found.isWritable() && !shipped &&
                   found.canonicalFilePath() != QCoreApplication::applicationDirPath();
  return own ? folder : QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

bool FileCommands::SaveAs() {
  const QString name =
      session_.File().isEmpty()
          ? QString::fromStdString(session_.Model()->Name()) + QStringLiteral(".tvf")
          : QFileInfo(session_.File()).fileName();
  const QString path = AskWhereToSave(name);
  return !path.isEmpty() && session_.Save(path);
}

QString FileCommands::AskWhereToSave(const QString& name) {
  QFileDialog dialog(&window_, QStringLiteral("Save As"), SaveFolder(), FileTypes);
  dialog.setObjectName(QStringLiteral("SaveDialog"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.selectFile(name);
  const QString path = Choose(dialog);
  return !path.isEmpty() && MayOverwrite(path) && maySave_() ? path : QString();
}

bool FileCommands::OfferToSave() {
  if (!session_.Changed()) return true;
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Warning"),
                  QStringLiteral("Parameter values have changed since the last File Save."),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, &window_);
  box.setObjectName(QStringLiteral("UnsavedBox"));
  box.setInformativeText(QStringLiteral("The experiment sets the model up anew."));
  box.setDefaultButton(QMessageBox::Save);
  BoxQueue::OfApplication().Finish();
  const int answer = box.exec();
  return answer == QMessageBox::Save ? Save() : answer == QMessageBox::Discard;
}

bool FileCommands::MayOverwrite(const QString& path) {
  if (!QFileInfo::exists(path)) return true;
  QMessageBox box(QMessageBox::Warning, QStringLiteral("File Exsits"),
                  path + QStringLiteral(" already exists. Overwrite?"),
                  QMessageBox::Ok | QMessageBox::Cancel, &window_);
  box.setTextFormat(Qt::PlainText);
  box.setObjectName(QStringLiteral("OverwriteBox"));
  return box.exec() == QMessageBox::Ok;
}

void FileCommands::ShowManyReports(const CollectedReports::Rest& rest) {
  QString texts;
  for (const std::string& text : rest.Texts) {
    texts += QString::fromStdString(text).replace(u'\r', u'\n') + QStringLiteral("\n\n");
  }
  if (rest.Count > rest.Texts.size()) {
    texts += QStringLiteral("And %1 more.").arg(rest.Count - rest.Texts.size());
  }
  ShowReportList({.Name = QStringLiteral("LoadReportBox"),
                  .Heading = QStringLiteral("The file gave %1 more reports:").arg(rest.Count),
                  .Texts = texts.trimmed(),
                  .Action = {},
                  .Do = {}});
}

void FileCommands::AddRecent(const QString& path) {
  if (path.isEmpty()) return;
  QSettings settings = UserSettings();
  QStringList files = settings.value(RecentKey).toStringList();
  files.removeAll(path);
  files.prepend(path);
  settings.setValue(RecentKey, QStringList(files.mid(0, MostRecent)));
}

void FileCommands::FillRecent() {
  recent_.clear();
  const QStringList files = UserSettings().value(RecentKey).toStringList();
  for (const QString& path : files) {
    QString shown = path;
    recent_.addAction(shown.replace(u'&', QStringLiteral("&&")), this,
                      [this, path] { session_.Open(path); });
  }
  if (files.isEmpty()) recent_.addAction(QStringLiteral("No files yet"))->setEnabled(false);
}

}  // namespace torvane
