#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <utility>

#include "ui/session/collected_reports.h"
#include "ui/session/data_folder.h"

class QMenu;
class QWidget;

namespace torvane {

class Session;
struct KeptSession;

/// The file commands of the main window: the dialogs and questions around loading and saving, the
/// recent files, the start-up configuration and the offer of a session that ended badly.
class FileCommands : public QObject {
  Q_OBJECT

 public:
  /// Dialogs stand over the window; the recent files are listed in the menu.
  FileCommands(QWidget& window, QMenu& recent, Session& session, const DataFolder& data);

  /// At the start of the program, before anything can be lost: a session left behind by a crash is
  /// offered, else the named file is opened or, without one, the start-up configuration "init.tvf"
  /// in the program's folder or the user's configuration folder.
  /// Where there is neither, the last session comes back unless the user has turned that off.
  void Start(const QString& file, bool withConfiguration);
  /// Before the program ends: keeps the session for the next start to bring back, if it does so.
  /// Comes back when the user has read why it cannot be kept.
  void KeepForNextStart();

  /// What is asked before a model file is written, once its path is known; false when it is not to
  /// be.
  void AskBeforeSaving(std::function<bool()> ask) { maySave_ = std::move(ask); }

  /// Asks for a file and loads it.
  void Load();
  /// False when nothing was saved.
  bool Save();
  bool SaveAs();
  /// Before what is unsaved is lost: offers to save it. False when that is cancelled.
  bool OfferToSave();
  /// Asks for a model file to write, for which it proposes the name; empty when there is to be
  /// none.
  QString AskWhereToSave(const QString& name);

 private:
  enum class Recovery { Restore, Discard, NotNow };

  bool OfferRecovery();
  Recovery AskAboutRecovery(const KeptSession& kept);
  bool MayOverwrite(const QString& path);
  QString StartFolder() const;
  QString SaveFolder() const;
  void ShowManyReports(const CollectedReports::Rest& rest);
  void AddRecent(const QString& path);
  void FillRecent();

  QWidget& window_;
  QMenu& recent_;
  Session& session_;
  const DataFolder& data_;
  std::function<bool()> maySave_ = [] { return true; };
  bool comesBack_ = false;  // as it was started without a model or file of its own
};

}  // namespace torvane
