#pragma once

#include <QObject>
#include <QTableWidget>

#include "core/bench.h"

namespace torvane {

/// Lets a table show and edit a model's constants: one row a constant with its name, value and
/// unit, in the order of registration. An edited value goes to the constant, which limits or
/// refuses it; the cell then shows what the constant has.
class ConstantsGrid : public QObject {
 public:
  /// The grid belongs to the table; the bench must outlive it.
  ConstantsGrid(QTableWidget& table, ZelBenchTop& bench);

  static constexpr int NameColumn = 0;
  static constexpr int ValueColumn = 1;
  static constexpr int UnitColumn = 2;

  void ShowConstant(const std::string& name);

 private:
  void Fill();
  void ShowValue(int row);
  void CommitCell(int row, int column);

  QTableWidget& table_;
  ZelBenchTop& bench_;
  bool showing_ = false;  // cells are being written from the constants
};

}  // namespace torvane
