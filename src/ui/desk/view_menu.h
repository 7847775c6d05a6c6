#pragma once

#include <QObject>

#include "plot/scope_colours.h"
#include "ui/desk/theme.h"

class QAction;
class QMenu;

namespace torvane {

/// The entries of the View menu: the theme, and how traces are told apart. What is chosen counts at
/// once.
class ViewMenu : public QObject {
  Q_OBJECT

 public:
  /// Whether the user's choices are kept from one start to the next.
  enum class Memory { Kept, None };

  ViewMenu(QMenu& menu, Memory memory);

  TraceLook Look() const;

 signals:
  void LookChanged();

 private:
  void AddThemes(QMenu& menu);
  QAction* AddSwitch(QMenu& menu, const char* name, const QString& text, const QString& tip);

  Memory memory_;
  QAction* apart_ = nullptr;
  QAction* patterns_ = nullptr;
};

}  // namespace torvane
