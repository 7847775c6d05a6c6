#pragma once

#include <QLabel>
#include <optional>

#include "instruments/scope/scope_cursors.h"
#include "ui/panes/read_out_window.h"

namespace torvane {

/// The read-out of a scope's cursors: a row for each displayed channel and, with two cursors, the
/// time between them with its inverse. To close it is to switch the cursors off.
class CursorsWindow : public ReadOutWindow {
 public:
  /// The scope must outlive the window.
  CursorsWindow(ZelScope& scope, QWidget* parent);

  /// Nothing is "Unavailable".
  void ShowReading(const std::optional<CursorReading>& reading);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  ZelScope& scope_;
  QLabel* time_;
};

}  // namespace torvane
