#pragma once

#include <QObject>
#include <vector>

class QMainWindow;

namespace torvane {

class Workspace;

/// The keys that lead through a window: F6 gives the focus to the next pane and Shift+F6 to the one
/// before (the strip with the run controls, each instrument's window that is shown, each panel that
/// is docked), where it was in that pane before; F10 opens the menu bar.
class PaneKeys : public QObject {
 public:
  /// The strip is the widget that holds the run controls.
  PaneKeys(QMainWindow& window, QWidget& strip, Workspace& workspace);

 private:
  void Go(int step);
  std::vector<QWidget*> Panes() const;

  QMainWindow& window_;
  QWidget& strip_;
  Workspace& workspace_;
};

}  // namespace torvane
