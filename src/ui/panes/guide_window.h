#pragma once

#include <QDockWidget>

#include "ui/session/data_folder.h"

class QMainWindow;

namespace torvane {

class GuideText;

/// The guide for new users, as it stands in docs/guide.md: a panel at the side of the instruments
/// where these keep room enough, else a window of its own. Says so when it is missing.
class GuideWindow : public QDockWidget {
  Q_OBJECT

 public:
  /// Of the window, in which it can be docked.
  GuideWindow(const DataFolder& folder, QMainWindow& window);

  /// Shows it, at the side when there are pixels enough of width that the instruments can spare.
  void Open(int spare);

 private:
  QMainWindow& window_;
  GuideText* text_;
};

}  // namespace torvane
