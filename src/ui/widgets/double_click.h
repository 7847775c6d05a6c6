#pragma once

#include <QObject>
#include <functional>

class QComboBox;

namespace torvane {

/// Runs an action when a list is double-clicked. The first click of the two opens the list, so the
/// second one may fall on the opened list instead of the control; both are watched.
class DoubleClick : public QObject {
 public:
  /// The watch belongs to the list.
  DoubleClick(QComboBox& list, std::function<void()> action);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QComboBox& list_;
  std::function<void()> action_;
};

}  // namespace torvane
