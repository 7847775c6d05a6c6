#pragma once

#include <QList>
#include <QObject>
#include <set>

#include "core/instrument_kind.h"

class QAction;
class QMenu;

namespace torvane {

class Workspace;

/// Lists the instruments at the end of a menu; checked ones have their window on the workspace.
/// Choosing one brings its window to where it can be seen, or hides it where nothing covers it. A
/// hidden instrument goes on measuring. F7 and F8 bring the analysers, and hide them again.
class WindowMenu : public QObject {
 public:
  WindowMenu(QMenu& menu, Workspace& workspace);

 private:
  void Fill();
  QString KeyOf(InstrumentKind kind);

  QMenu& menu_;
  Workspace& workspace_;
  QList<QAction*> listed_;
  std::set<InstrumentKind> keyed_;
};

}  // namespace torvane
