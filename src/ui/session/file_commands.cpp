#include "ui/session/file_commands.h"

#include <QAction>
#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>

#include "core/messages.h"
#include "instruments/meter/meter.h"
#include "models/catalogue.h"
#include "ui/desk/control_panel.h"
#include "ui/session/load_reports.h"

namespace torvane {

namespace {

constexpr int KeepMilliseconds = 2000;
constexpr int MostRecent = 8;
const QString RecentKey = QStringLiteral("recentFiles");
const QString Configuration = QStringLiteral("init.tvf");
const QString FileTypes = QStringLiteral("Torvane File (*.tvf *.TVF);;All files (*)");

QSettings Settings() {
  return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("torvane"),
                   QStringLiteral("torvane"));
}

// What a user would miss after a crash: where windows stand is not part of it.
std::string SessionText(const ZelModel& model) {
  const std::string text = ModelFileText(model);
  std::string session;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
    const std::string_view line(text.data() + start, end - start);
    if (line.find(",Display,") == std::string_view::npos) session += line;
    start = end;
  }
  return session;
}

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

}  // namespace

FileCommands::FileCommands(TZelControlPanelF& panel, QMenu& recent)
    : panel_(panel), recent_(recent) {
  connect(&recent_, &QMenu::aboutToShow, this, &FileCommands::FillRecent);
  connect(&keep_, &QTimer::timeout, this, &FileCommands::KeepSession);
  keep_.start(KeepMilliseconds);
  FillRecent();
}

void FileCommands::Start(const QString& file, bool withConfiguration) {
  if (OfferRecovery()) return;
  if (!file.isEmpty()) {
    if (OpenAtStart(file)) {
      file_ = QFileInfo(file).absoluteFilePath();
      AddRecent(file_);
    }
  } else if (withConfiguration) {
    if (const QString configuration = ConfigurationFile(); !configuration.isEmpty()) {
      OpenAtStart(configuration);
    }
  }
  ShowTitle();
}

// The file's model is built before its records are read, so that nothing has to be asked.
bool FileCommands::OpenAtStart(const QString& path) {
  std::string text;
  LoadReports reports;
  bool loaded = ReadModelText(path.toStdString(), text);
  if (loaded) {
    const std::string name = ModelNameIn(text);
    if (InCatalogue(name) && panel_.Model()->Name() != name) ChangeModel(name);
    loaded = LoadModelText(text, *this);
  }
  reports.Finish(&panel_);
  panel_.RestorePlacements();
  MarkSaved();
  return loaded;
}

bool FileCommands::OfferRecovery() {
  const QStringList left = RecoveryFile::LeftBehind();
  bool recovered = false;
  for (const QString& path : left) {
    if (!recovered &&
        WarningQuestion("Torvane did not end properly the last time.\n"
                        "Press OK to bring back the constants and instruments of that session,\n"
                        "or Cancel to discard them.")) {
      recovered = OpenAtStart(path);
      if (!recovered) continue;
      saved_.clear();
      panel_.Model()->Bench().SetConstantsChanged(true);
      KeepSession();
    }
    QFile::remove(path);
    if (recovered) break;
  }
  if (recovered) ShowTitle();
  return recovered;
}

void FileCommands::Load() {
  QFileDialog dialog(&panel_, QStringLiteral("Load"), QFileInfo(file_).path(), FileTypes);
  dialog.setObjectName(QStringLiteral("LoadDialog"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(QStringLiteral("tvf"));
  if (dialog.exec() == QDialog::Accepted) Open(dialog.selectedFiles().value(0));
}

bool FileCommands::Open(const QString& path) {
  LoadReports reports;
  const bool loaded = LoadModelFile(path.toStdString(), *this);
  reports.Finish(&panel_);
  if (restoresWindows_) panel_.RestorePlacements();
  if (loaded) {
    file_ = QFileInfo(path).absoluteFilePath();
    AddRecent(file_);
    MarkSaved();
  }
  ShowTitle();
  return loaded;
}

bool FileCommands::Save() {
  return file_.isEmpty() ? SaveAs() : WriteTo(file_);
}

bool FileCommands::SaveAs() {
  QFileDialog dialog(&panel_, QStringLiteral("Save As"), QFileInfo(file_).path(), FileTypes);
  dialog.setObjectName(QStringLiteral("SaveDialog"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QStringLiteral("tvf"));
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  if (!file_.isEmpty()) dialog.selectFile(QFileInfo(file_).fileName());
  if (dialog.exec() != QDialog::Accepted) return false;
  const QString path = dialog.selectedFiles().value(0);
  if (QFileInfo::exists(path)) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("File Exsits"),
                    path + QStringLiteral(" already exists. Overwrite?"),
                    QMessageBox::Ok | QMessageBox::Cancel, &panel_);
    box.setTextFormat(Qt::PlainText);
    box.setObjectName(QStringLiteral("OverwriteBox"));
    if (box.exec() != QMessageBox::Ok) return false;
  }
  return WriteTo(path);
}

bool FileCommands::WriteTo(const QString& path) {
  if (!SaveModelFile(*panel_.Model(), path.toStdString())) return false;
  file_ = QFileInfo(path).absoluteFilePath();
  AddRecent(file_);
  MarkSaved();
  ShowTitle();
  return true;
}

void FileCommands::ForgetFile() {
  file_.clear();
  MarkSaved();
  ShowTitle();
}

void FileCommands::MarkSaved() {
  saved_ = SessionText(*panel_.Model());
  recovery_.Remove();
}

void FileCommands::KeepSession() {
  if (!panel_.Model()) return;
  if (SessionText(*panel_.Model()) == saved_) {
    recovery_.Remove();
  } else {
    recovery_.Write(ModelFileText(*panel_.Model()));
  }
}

void FileCommands::ShowTitle() {
  QString title = QString::fromLatin1(ApplicationTitle);
  if (!file_.isEmpty()) title = QFileInfo(file_).fileName() + QStringLiteral(" - ") + title;
  if (panel_.Model() && panel_.Model()->Bench().ConstantsChanged()) {
    title.prepend(QStringLiteral("* "));
  }
  if (panel_.windowTitle() != title) panel_.setWindowTitle(title);
}

void FileCommands::AddRecent(const QString& path) {
  QSettings settings = Settings();
  QStringList files = settings.value(RecentKey).toStringList();
  files.removeAll(path);
  files.prepend(path);
  settings.setValue(RecentKey, QStringList(files.mid(0, MostRecent)));
}

void FileCommands::FillRecent() {
  recent_.clear();
  const QStringList files = Settings().value(RecentKey).toStringList();
  for (const QString& path : files) {
    QString shown = path;
    recent_.addAction(shown.replace(u'&', QStringLiteral("&&")), this,
                      [this, path] { Open(path); });
  }
  if (files.isEmpty()) recent_.addAction(QStringLiteral("No files yet"))->setEnabled(false);
}

ZelModel* FileCommands::CurrentModel() {
  return panel_.Model();
}

bool FileCommands::InCatalogue(const std::string& model) const {
  return FindModel(model) >= 0;
}

bool FileCommands::ChangeModel(const std::string& name) {
  auto model = LoadModel(FindModel(name));
  if (!model) return false;
  panel_.MakeCurrent(std::move(model));
  return true;
}

Instrument* FileCommands::AddMeter(const std::string& name) {
  return torvane::AddMeter(*panel_.Model(), name);
}

}  // namespace torvane
