#pragma once

#include <QFrame>

class QLabel;

namespace torvane {

class LoopDraft;

/// Stands above the instruments while another program has written the loop's file, and offers to
/// read it again.
class LoopChangeBar : public QFrame {
  Q_OBJECT

 public:
  explicit LoopChangeBar(LoopDraft& draft);

 signals:
  void ReadAgainAsked();

 private:
  void Follow();

  LoopDraft& draft_;
  QLabel* text_;
};

}  // namespace torvane
