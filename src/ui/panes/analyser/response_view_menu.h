#pragma once

#include <QMenu>
#include <QObject>
#include <array>

#include "instruments/analyser/analyser.h"

namespace torvane {

/// The menu that chooses how an analyser shows its responses: as a Bode, Nyquist or Nichols plot,
/// as the open loop of a closed one, with the phase unwrapped, or with the group delay.
class ResponseViewMenu : public QObject {
  Q_OBJECT

 public:
  /// The analyser must outlive it.
  ResponseViewMenu(FrequencyAnalyser& analyser, QWidget* parent);

  QMenu& Menu() { return menu_; }

  /// Shows the settings as they are.
  void Show();

 private:
  struct Switch {
    const char* Name;
    QString Text;
    QString ToolTip;
    bool ResponseView::*On;
  };
  static std::array<Switch, 4> Switches();
  QAction* Add(const QString& text, const char* name, const QString& toolTip);
  void AddPlots();
  void AddSwitches();

  FrequencyAnalyser& analyser_;
  QMenu menu_;
  std::array<QAction*, 3> plots_{};
  std::array<QAction*, 4> switches_{};
};

}  // namespace torvane
