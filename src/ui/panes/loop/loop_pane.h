#pragma once

#include <QDockWidget>
#include <QTimer>
#include <string>
#include <vector>

#include "loops/loop_file.h"

class QLabel;
class QListWidget;

namespace torvane {

class LoopDraft;
class LoopEdit;
class Session;

/// The text of a loop, docked beside the instruments: what is wrong with it stands at its lines and
/// below, as it is written; Apply makes it the model that runs.
class LoopPane : public QDockWidget {
  Q_OBJECT

 public:
  LoopPane(Session& session, QWidget* parent);

  /// Shows the pane, with the focus in the text.
  void Open();
  /// Makes the text the current model. What is wrong with it is shown, and the model goes on then;
  /// false also when the user keeps another model.
  bool Apply();

 signals:
  void SaveAsked();
  void SaveAsAsked();

 private:
  void AddControls();
  QWidget* MakeButton(const char* name, const QString& text, const QString& hint);
  void TakeText();
  void TextWritten();
  loops::LoopFile Check();
  void ShowProblems(const std::vector<loops::Problem>& problems,
                    const std::vector<std::string>& notes);
  void ShowState();
  void GoToProblem(int row);
  void CopyProblems() const;

  Session& session_;
  LoopDraft& draft_;
  LoopEdit* edit_;
  QListWidget* list_;
  QLabel* state_;
  QTimer check_;
  QString path_;  ///< of the text in the editor
  std::vector<loops::Problem> problems_;
  std::vector<std::string> notes_;  ///< of the last Apply
};

}  // namespace torvane
