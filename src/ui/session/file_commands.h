#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include "core/files/model_file.h"
#include "ui/session/recovery_file.h"

class QMenu;

namespace torvane {

class TZelControlPanelF;

/// The file commands of the main window: loading, saving, recent files, the start-up configuration
/// and the recovery of a session that ended badly.
class FileCommands : public QObject, private ModelFileHost {
  Q_OBJECT

 public:
  /// The recent files are listed in the menu.
  FileCommands(TZelControlPanelF& panel, QMenu& recent);

  /// At the start of the program, before anything can be lost: a session left behind by a crash is
  /// offered, else the named file is opened or, without one, the start-up configuration "init.tvf"
  /// in the program's folder or the user's configuration folder.
  void Start(const QString& file, bool withConfiguration);

  /// Asks for a file and loads it.
  void Load();
  /// False when the file could not be loaded to its end.
  bool Open(const QString& path);
  /// False when nothing was saved.
  bool Save();
  bool SaveAs();

  /// The file that Save writes; empty when there is none.
  const QString& CurrentFile() const { return file_; }
  /// The model has been replaced by hand: it belongs to no file.
  void ForgetFile();
  /// Shows the file's name and whether constants have changed in the window's title.
  void ShowTitle();

  void SetRestoresWindows(bool on) { restoresWindows_ = on; }

 private:
  ZelModel* CurrentModel() override;
  bool InCatalogue(const std::string& model) const override;
  bool ChangeModel(const std::string& name) override;
  Instrument* AddMeter(const std::string& name) override;
  bool RestoresWindows() const override { return restoresWindows_; }

  bool OpenAtStart(const QString& path);
  bool OfferRecovery();
  bool WriteTo(const QString& path);
  void MarkSaved();
  void KeepSession();
  void AddRecent(const QString& path);
  void FillRecent();

  TZelControlPanelF& panel_;
  QMenu& recent_;
  QString file_;
  bool restoresWindows_ = true;
  std::string saved_;  // the session as it was last loaded or saved
  RecoveryFile recovery_;
  QTimer keep_;
};

}  // namespace torvane
