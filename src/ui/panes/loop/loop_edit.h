#pragma once

#include <QPlainTextEdit>
#include <vector>

#include "loops/problems.h"

namespace torvane {

class LoopColours;

/// An editor of a loop's text: line numbers, colours, and marks at the places where something is
/// wrong, which tell what it is when the mouse rests there.
class LoopEdit : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit LoopEdit(QWidget* parent = nullptr);

  /// Puts another text in place of the one there is, as one step that can be undone.
  void Replace(const QString& text);
  void SetProblems(const std::vector<loops::Problem>& problems);
  /// Goes to the place, in sight.
  void GoTo(loops::Place place);

 signals:
  /// Ctrl+Return.
  void ApplyAsked();
  /// Ctrl+S.
  void SaveAsked();

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  class Numbers;

  QTextCursor At(loops::Place place) const;
  const loops::Problem* ProblemOf(int line) const;
  int NumbersWidth() const;
  void PlaceNumbers();
  void PaintNumbers(QPaintEvent& event);
  void MarkProblems();
  void TakeGround();

  Numbers* numbers_;
  LoopColours* colours_;
  std::vector<loops::Problem> problems_;
};

}  // namespace torvane
