#pragma once

#include <QStringList>
#include <QTableWidget>

namespace torvane {

/// A small window above the others that shows a table of figures. It is as high as its rows, and
/// wide enough for its columns; the user may make it larger.
class ReadOutWindow : public QWidget {
 public:
  /// What does not exist is shown as this.
  static inline const QString Unavailable = QStringLiteral("Unavailable");

  /// `table` names the table for tests and tools; the hint says what it shows.
  ReadOutWindow(const QString& title, const QString& table, const QString& hint, QWidget* parent);

 protected:
  /// Texts of all rows; figures stand at the right of their columns, the first column is of names.
  void SetCells(const QStringList& header, const QList<QStringList>& rows);
  QTableWidget& Table() { return *table_; }

 private:
  void FitTable();

  QTableWidget* table_;
};

}  // namespace torvane
