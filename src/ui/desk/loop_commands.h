#pragma once

#include <QObject>
#include <QString>

class QAction;
class QMainWindow;

namespace torvane {

class DataFolder;
class LoopPane;
class LoopShelf;
class Session;

namespace loops {
struct LoopFile;
struct WantedLoop;
}  // namespace loops

/// The commands of the main window for the user's own loops, with the dialogs and boxes around them
/// and the pane in which a loop's text is written.
class LoopCommands : public QObject {
  Q_OBJECT

 public:
  /// Dialogs stand over the window, the pane is docked in it.
  LoopCommands(QMainWindow& window, Session& session, LoopShelf& shelf, const DataFolder& data);

  /// Asks for a loop's file and opens it.
  void Open();
  /// Asks what a new loop is to begin as, and opens it with its text.
  void New();
  /// Shows the text of the loop that runs, else the one that was written last.
  void Edit();
  /// Whether there is a text to edit.
  bool CanEdit() const;
  /// Before the text goes: whether it is saved, or saved now, or the user gives it up.
  bool MayLeaveText();
  /// Before a model file is written, when all else is settled: whether the file that it names holds
  /// the loop that runs, or has been given it now.
  bool MaySaveModel();
  /// Takes what another program has written into the loop's file; the model follows when it is that
  /// loop.
  void ReadAgain();

 private:
  QString AskForLoop(const loops::WantedLoop& wanted);
  void ShowRefused(const loops::LoopFile& loop);
  QString ChooseFile(const QString& title, const QString& folder);
  void SaveText();
  bool SaveTextAs();
  void EditText(const QString& path, const QString& text);
  void ShowPane();

  QMainWindow& window_;
  Session& session_;
  LoopShelf& shelf_;
  const DataFolder& data_;
  LoopPane* pane_;
};

}  // namespace torvane
