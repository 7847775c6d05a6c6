#pragma once

#include <QMenu>
#include <QObject>
#include <array>

#include "instruments/analyser/analyser.h"

namespace torvane {

/// The menu of an analyser's plot: stores the current measurement in a memory, chooses the trace
/// that the cursors read, and how the screen is divided.
class ResponseMenu : public QObject {
  Q_OBJECT

 public:
  /// The analyser must outlive it.
  ResponseMenu(FrequencyAnalyser& analyser, QWidget* parent);

  QMenu& Menu() { return menu_; }

  /// Shows the settings as they are.
  void Show();

 signals:
  void CursorTraceChosen(int slot);

 private:
  QAction* Add(QMenu& menu, const QString& text, const char* name);
  void AddSave();
  void AddShow();
  void AddScreen();

  FrequencyAnalyser& analyser_;
  QMenu menu_;
  QMenu* save_ = nullptr;
  std::array<QAction*, FrequencyAnalyser::SlotCount> cursorTraces_{};
  QAction* single_ = nullptr;
  QAction* split_ = nullptr;
};

}  // namespace torvane
