#pragma once

#include <QDialog>
#include <functional>
#include <optional>
#include <string>

#include "ui/session/constant_group.h"
#include "ui/session/tuning_run.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace torvane {

class RequireTable;
class Session;
class VaryTable;
class ZelScope;

/// Looks for the constants with which the session's model does best: which to vary, what is
/// required and what is to be best; then the best so far in figures and as kept traces on the
/// scope, while the model itself goes on. Closing it ends the search; what was typed and found is
/// there when it is opened again. Another model closes it and has it begin anew, another text of
/// the same loop does not.
class TuneWindow : public QDialog {
  Q_OBJECT

 public:
  /// Asks for the file to save to, for which it proposes a name; empty for none.
  using AskFile = std::function<QString(const QString& name)>;

  /// The session must outlive it.
  TuneWindow(Session& session, AskFile askFile, QWidget* parent);

  /// For the session's model as it is.
  void Open();
  /// Whoever sets constants: their present values.
  void Refresh();

 protected:
  void hideEvent(QHideEvent* event) override;

 private:
  void Prepare();
  QWidget* MakeSignals();
  QWidget* MakeGoal();
  QWidget* MakeButtons();
  void ProposeSignals();
  void FollowText();
  /// Says how far the search has come.
  void Tell(const QString& state);
  ZelScope* Scope() const;
  TuningTask Task() const;
  void Begin();
  void ShowProgress(const TuningProgress& progress);
  void ShowResponse(const QString& file);
  void ShowEnd(const QString& fault);
  /// Whether the scope's kept traces are those of the search.
  bool IsOnScope() const;
  void TakeOffScope();
  void ShowButtons();
  std::map<std::string, double> Found() const;
  void Apply();
  void SaveAs();

  Session& session_;
  AskFile askFile_;
  ConstantGroup group_;
  TuningRun run_;
  QComboBox* command_;
  QComboBox* response_;
  VaryTable* vary_;
  RequireTable* require_;
  QComboBox* best_;
  QLineEdit* until_;
  QLineEdit* runs_;
  QProgressBar* bar_;
  QLabel* state_;
  QPushButton* start_;
  QPushButton* stop_;
  QPushButton* apply_;
  QPushButton* save_;
  TuningTask task_;  ///< of the search that is on, or was the last
  std::optional<TuningProgress> progress_;
  QString told_;  ///< of the search, empty before the first
  bool stopped_ = false;
  bool prepared_ = false;  ///< for the present model
  int before_ = 0;         ///< which traces the scope had kept before the search
  int kept_ = 0;           ///< which of the scope's kept traces are those of the search
  bool isKept_ = false;    ///< these are the present ones, while a loop is given another text
};

}  // namespace torvane
