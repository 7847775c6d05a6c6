#pragma once

#include <QObject>

class QAction;

namespace torvane {

/// Gives every control of the program the sentence that the table of help texts has for it, and
/// shows it: of the control that has the focus on F1, of any other after the action for that.
class ControlHelp : public QObject {
 public:
  /// Watches the whole application.
  explicit ControlHelp(QObject* parent);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace torvane
