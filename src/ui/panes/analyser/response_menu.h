#pragma once

#include <QMenu>
#include <QObject>
#include <array>
#include <cstddef>
#include <string>

#include "instruments/analyser/analyser.h"

namespace torvane {

/// The menu of an analyser's plot: stores the current measurement in a memory, of the model's other
/// analyser too, or loads one from there or from a file, chooses the trace that the cursors read
/// and how the screen is divided, and gives picture and data away.
class ResponseMenu : public QObject {
  Q_OBJECT

 public:
  /// Analyser and bench must outlive it. `exports` is the submenu for what the plot gives away.
  ResponseMenu(FrequencyAnalyser& analyser, const ZelBenchTop& bench, QMenu& exports,
               QWidget* parent);

  QMenu& Menu() { return menu_; }

  /// Shows the settings as they are.
  void Show();

 signals:
  void CursorTraceChosen(int slot);

 private:
  QAction* Add(QMenu& menu, const QString& text, const char* name);
  void AddSave();
  void AddLoad();
  void Load(int slot);
  std::size_t MemoriesFor(int first, std::size_t responses, const std::string& file) const;
  void AddOthers(const ZelBenchTop& bench);
  void AddCopy(QMenu& menu, const char* text, FrequencyAnalyser& from, FrequencyAnalyser& to);
  void AddShow();
  void AddScreen();

  FrequencyAnalyser& analyser_;
  QWidget* window_;
  QMenu menu_;
  QMenu* save_ = nullptr;
  QMenu* load_ = nullptr;
  std::array<QAction*, FrequencyAnalyser::SlotCount> cursorTraces_{};
  QAction* single_ = nullptr;
  QAction* split_ = nullptr;
};

}  // namespace torvane
