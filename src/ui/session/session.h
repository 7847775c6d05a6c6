#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/model.h"
#include "ui/session/collected_reports.h"
#include "ui/session/loop_draft.h"
#include "ui/session/recovery_file.h"

namespace torvane {

class Catalogue;

namespace loops {
struct LoopFile;
struct WantedLoop;
}  // namespace loops

/// A user's work: the current model, the file that it belongs to, what of it is not saved yet, and
/// what keeps that over a crash. Knows no window; windows ask it and follow its signals.
class Session : public QObject {
  Q_OBJECT

 public:
  Session();
  ~Session() override;

  /// The current model; nullptr until the first has been built.
  ZelModel* Model() const;
  /// The built-in models.
  const Catalogue& Models() const;
  /// The own loop that is current; nullptr when a built-in model is.
  const loops::LoopFile* Loop() const;
  /// The text of an own loop that is being written; that of the present loop, unless another one is
  /// not saved yet.
  LoopDraft& Draft() { return draft_; }
  /// The present model is what that text says.
  bool IsApplied() const;
  /// Makes what has been read of that text the current model. Where the present one is the same
  /// file's, what the user has changed of it is kept as far as the loop still has a place for it;
  /// the notes tell of the rest. False when the user keeps the present model.
  bool Apply(const loops::LoopFile& loop, std::vector<std::string>& notes);
  /// While it is made so from another text of the same loop, between AboutToApply and Applied: what
  /// the user has opened and chosen for the loop before holds for the one that comes.
  bool IsApplying() const { return applying_; }
  /// The file of the present loop holds the text that runs, which is what a model file takes it to
  /// do. True for a built-in model.
  bool IsLoopInItsFile() const;
  /// Writes it there. False after a report.
  bool SaveLoop();
  /// Saves the text to another file, which the present model is then one of when it was of the
  /// first.
  bool SaveDraftAs(const QString& path);
  /// Builds the model of that name and makes it current. False after a report when it cannot be
  /// built; the present one stays then.
  bool Choose(const std::string& name);
  /// Builds the present model once more, as it begins, and makes that current.
  bool BuildAnew();
  /// Another one like the present model; nullptr after a report when it cannot be built.
  std::unique_ptr<ZelModel> MakeAnother() const;
  /// Makes the model current; it belongs to no file. The one before is destroyed.
  void MakeCurrent(std::unique_ptr<ZelModel> model);

  /// The file that the model belongs to, which a save may replace; empty when there is none.
  const QString& File() const { return file_; }
  /// Values or instruments are others than those last saved or loaded; windows' places do not
  /// count.
  bool Changed() const;
  /// The settings (SettingsText) as they were last saved or loaded.
  const std::string& SavedSettings() const { return saved_; }
  /// Before anything that discards the model's values: whether they are unchanged or the user
  /// agrees to lose them. The question ends in what OK does ("continue", "close").
  bool MayDiscard(const std::string& toDo = "continue") const;
  /// Title for a window that shows the session.
  QString Title() const;

  /// Whether windows are to go where a file says.
  void SetRestoresWindows(bool on) { restoresWindows_ = on; }
  /// Who knows whether the user has placed the windows by hand; until then nobody has. What is kept
  /// holds the places of windows only when they are the user's.
  void TellPlacedBy(std::function<bool()> placed) { placed_ = std::move(placed); }
  bool WindowsPlaced() const { return placed_ && placed_(); }

  /// Whether a file is there to be read, before anything is discarded for it; reports why not.
  static bool CanRead(const QString& path);
  /// Reads a file into the model, or into the one that it names. What there is to ask is asked
  /// before anything changes, what there is to report comes when all is done. True when the file
  /// was read to its end; it becomes the session's file only when it is a model's file through and
  /// through. A file with an own loop becomes the current model.
  bool Open(const QString& path);
  /// As Open, when nothing can be lost: another model is not asked about.
  bool OpenAtStart(const QString& path);
  /// As OpenAtStart, of what is no document of the user's: it is never the session's file.
  bool OpenConfiguration(const QString& path);
  /// Brings a session back that was kept in a file of the program's: the user's own file where all
  /// had been saved in it, else what was kept, which is unsaved where it was. A file of the user's
  /// that cannot be read any more is told, and what was kept is all that is left of it: unsaved
  /// too. Windows go to their places where they had been placed.
  void ComeBack(const QString& kept, const QString& file, bool changed, bool placed);
  /// Asks the user for the loop that a model file is for, when it cannot be taken from where it
  /// was. The path; empty when there is none.
  using AskForLoop = std::function<QString(const loops::WantedLoop&)>;
  void SetAskForLoop(AskForLoop ask) { askForLoop_ = std::move(ask); }
  /// False after a report when the file could not be written.
  bool Save(const QString& path);

  /// What other processes left behind; keeps what they hold for this one.
  static std::vector<KeptSession> LeftBehind() { return RecoveryFile::LeftBehind(); }
  /// Brings a session back, as unsaved changes of no file. One that could not be read to its end,
  /// or in which there is nothing of a session, is reported and set aside; false then.
  bool Restore(KeptSession kept);
  /// Keeps what is unsaved now.
  void Keep();
  /// Keeps what is unsaved for the next start, though the program ends cleanly.
  void LeaveForNextStart();

 signals:
  /// The present model is about to be destroyed: nothing may view it any more.
  void ModelAboutToChange();
  /// Another model is current, all of it: its file, too, has been read.
  void ModelChanged();
  /// A file has been read into the model; comes after ModelChanged.
  void FileLoaded();
  /// The session has another file.
  void FileChanged();
  /// The present loop makes room for another version of it, and has done so; the model is changed
  /// between.
  void AboutToApply();
  void Applied();
  /// A session that was kept had a loop's text that was not saved.
  void DraftRestored();
  /// A loop has been opened, from its own file.
  void LoopOpened(const QString& path);
  /// A loop cannot be taken for what is wrong with its text; the present model goes on.
  void LoopRefused(const torvane::loops::LoopFile& loop);
  /// Reports of the last loading that are too many to be shown one by one.
  void ManyReports(const CollectedReports::Rest& rest);

 private:
  class Host;
  enum class Source { File, FileAtStart, Configuration, Recovery };

  bool OpenLoop(const QString& path, Source source);
  bool FindLoop(const QString& path, const std::string& text, Source source,
                std::shared_ptr<const loops::LoopFile>& found);
  bool ReplaceLoop(const loops::LoopFile& loop, std::vector<std::string>& notes);
  void FollowLoop();
  std::string KeptLoops() const;
  void RestoreDraft(const std::string& text);
  bool ReadAndLoad(const QString& path, Source source);
  std::string KeptText() const;
  bool Load(const QString& path, const std::string& text, Source source);
  void SetFile(const QString& path);
  void MarkSaved();

  std::unique_ptr<Host> host_;
  LoopDraft draft_;
  AskForLoop askForLoop_;
  QString file_;
  bool restoresWindows_ = true;
  std::function<bool()> placed_;
  bool modelReplaced_ = false;  // while a file loads
  bool applying_ = false;
  std::string saved_;  // the settings as they were last loaded or saved
  RecoveryFile recovery_;
  QTimer keep_;
};

}  // namespace torvane
