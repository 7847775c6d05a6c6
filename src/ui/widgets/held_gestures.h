#pragma once

#include <QObject>
#include <functional>

namespace torvane {

class ZelUndo;

/// Makes one undo entry of what a held button, a slider, a splitter or a header does between press
/// and release, by mouse or by key. Watches the whole application.
class HeldGestures : public QObject {
 public:
  /// `history` gives the history of the present model; nullptr when there is none.
  HeldGestures(QObject* parent, std::function<ZelUndo*()> history);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Begin();
  void End();

  std::function<ZelUndo*()> history_;
  int gestures_ = 0;
  bool held_ = false;
};

}  // namespace torvane
