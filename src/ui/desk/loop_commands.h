#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace torvane {

class LoopShelf;
class Session;

namespace loops {
struct LoopFile;
struct WantedLoop;
}  // namespace loops

/// The commands of the main window for the user's own loops, with the dialogs and boxes around
/// them.
class LoopCommands : public QObject {
  Q_OBJECT

 public:
  /// Dialogs stand over the window.
  LoopCommands(QWidget& window, Session& session, LoopShelf& shelf);

  /// Asks for a loop's file and opens it.
  void Open();

 private:
  QString AskForLoop(const loops::WantedLoop& wanted);
  void ShowRefused(const loops::LoopFile& loop);
  QString ChooseFile(const QString& title, const QString& folder);

  QWidget& window_;
  Session& session_;
  LoopShelf& shelf_;
};

}  // namespace torvane
