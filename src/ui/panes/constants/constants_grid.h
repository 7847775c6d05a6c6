#pragma once

#include <QObject>
#include <QTableWidget>
#include <memory>
#include <vector>

#include "core/bench.h"
#include "core/constant.h"

namespace torvane {

class AdjustDialog;

/// Lets a table show and edit a model's constants: one row a constant with its name, value and
/// unit, in the order of registration. An edited value goes to the constant, which limits or
/// refuses it; the cell then shows what the constant has. A double click or Enter opens the
/// constant's own window, one a constant. The selected value turns like a knob (ValueKnob).
class ConstantsGrid : public QObject, private ConstantObserver {
 public:
  /// The grid belongs to the table; the bench must outlive it.
  ConstantsGrid(QTableWidget& table, ZelBenchTop& bench);
  ~ConstantsGrid() override;

  static constexpr int NameColumn = 0;
  static constexpr int ValueColumn = 1;
  static constexpr int UnitColumn = 2;

  /// What names, values and units need side by side, pixels.
  int FittingWidth() const { return fitting_; }
  void HideDialogs();
  /// Values have come from a file: what the constants' own windows return to begins with them.
  void FileLoaded();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ConstantChanged(const Constant& constant) override;
  void Fill();
  void ShowValue(int row);
  void ShowUnitsIfRoom();
  void CommitCell(int row, int column);
  void Adjust(int row);

  QTableWidget& table_;
  QWidget& viewport_;  // sends events still when the table is no more than its parts
  ZelBenchTop& bench_;
  std::vector<std::unique_ptr<AdjustDialog>> dialogs_;  // by row, made when first asked for
  int values_ = 0;                                      // width of the values' column, pixels
  int units_ = 0;                                       // and of the units'
  int fitting_ = 0;
  bool showing_ = false;  // cells are being written from the constants
};

}  // namespace torvane
