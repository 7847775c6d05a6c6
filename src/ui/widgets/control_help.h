#pragma once

#include <QObject>
#include <functional>

namespace torvane {

/// Gives every control of the program the sentence that the table of help texts has for it, and
/// shows it: of the control that has the focus on F1, of any other after the action for that.
class ControlHelp : public QObject {
 public:
  /// Watches the whole application. What F1 does where no control with a sentence has the focus and
  /// no box is open is given.
  ControlHelp(QObject* parent, std::function<void()> otherwise);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<void()> otherwise_;
};

}  // namespace torvane
