#pragma once

#include <QList>
#include <QObject>

class QAction;
class QMenu;

namespace torvane {

class Workspace;

/// Lists the instruments at the end of a menu; checked ones have their window on the workspace. A
/// hidden instrument goes on measuring.
class WindowMenu : public QObject {
 public:
  WindowMenu(QMenu& menu, Workspace& workspace);

 private:
  void Fill();

  QMenu& menu_;
  Workspace& workspace_;
  QList<QAction*> listed_;
};

}  // namespace torvane
