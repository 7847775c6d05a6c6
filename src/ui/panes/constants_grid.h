#pragma once

#include <QObject>
#include <QTableWidget>
#include <QTimer>
#include <memory>
#include <vector>

#include "core/bench.h"

class QWheelEvent;

namespace torvane {

class TZelAdjustF;

/// Lets a table show and edit a model's constants: one row a constant with its name, value and
/// unit, in the order of registration. An edited value goes to the constant, which limits or
/// refuses it; the cell then shows what the constant has. A double click or Enter opens the
/// constant's own window, one a constant. The wheel turns the selected value, finely with Shift.
class ConstantsGrid : public QObject {
 public:
  /// The grid belongs to the table; the bench must outlive it.
  ConstantsGrid(QTableWidget& table, ZelBenchTop& bench);
  ~ConstantsGrid() override;

  static constexpr int NameColumn = 0;
  static constexpr int ValueColumn = 1;
  static constexpr int UnitColumn = 2;

  void ShowConstant(const std::string& name);
  void HideDialogs();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Fill();
  void ShowValue(int row);
  void ShowUnitsIfRoom();
  void CommitCell(int row, int column);
  void Adjust(int row);
  bool Turn(const QWheelEvent& wheel);

  QTableWidget& table_;
  ZelBenchTop& bench_;
  std::vector<std::unique_ptr<TZelAdjustF>> dialogs_;  // by row, made when first asked for
  QTimer turnEnd_;                                     // active while the wheel turns a value
  int namesAndValues_ = 0;                             // width of these columns, pixels
  int units_ = 0;                                      // and of the units'
  int turned_ = 0;        // eighths of a degree that are no whole step yet
  bool showing_ = false;  // cells are being written from the constants
};

}  // namespace torvane
