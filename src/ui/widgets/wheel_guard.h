#pragma once

#include <QObject>

namespace torvane {

/// Keeps a turn of the wheel from changing a list or a slider that does not have the focus: what
/// was meant to scroll must not alter a setting. Watches the whole application.
class WheelGuard : public QObject {
 public:
  explicit WheelGuard(QObject* parent);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace torvane
