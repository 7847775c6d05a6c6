#pragma once

#include <QLabel>
#include <QTableWidget>
#include <optional>

#include "instruments/scope/scope_cursors.h"

namespace torvane {

/// The read-out of a scope's cursors: a row for each displayed channel and, with two cursors, the
/// time between them with its inverse. To close it is to switch the cursors off.
class CursorsWindow : public QWidget {
 public:
  /// The scope must outlive the window.
  CursorsWindow(ZelScope& scope, QWidget* parent);

  /// Nothing is "Unavailable".
  void ShowReading(const std::optional<CursorReading>& reading);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void SetCell(int row, int column, const QString& text);

  ZelScope& scope_;
  QTableWidget* table_;
  QLabel* time_;
};

}  // namespace torvane
