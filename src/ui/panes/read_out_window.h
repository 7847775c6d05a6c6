#pragma once

#include <QDockWidget>
#include <QStringList>
#include <QTableWidget>

class QMainWindow;
class QVBoxLayout;

namespace torvane {

/// A table of figures in a panel, which stands docked beside what it reads, or below, and never
/// over it. The user can take it out, as a window of its own that is as high as its rows and wide
/// enough for its columns, and put it back.
class ReadOutWindow : public QDockWidget {
 public:
  /// What does not exist is shown as this.
  static inline const QString Unavailable = QStringLiteral("Unavailable");

  /// `table` names the table for tests and tools; the hint says what it shows.
  ReadOutWindow(const QString& title, const QString& table, const QString& hint, QWidget* parent);

  /// The room that it would like to have, where it is docked.
  QSize Wanted() const { return wanted_; }

  /// Shows it in the dock: beside the middle where that leaves it so many pixels of width, else
  /// below, or where the user has put it.
  void OpenIn(QMainWindow& dock, int leave);
  /// The dock has more room, or less: moves to where it now belongs, unless the user has put it
  /// elsewhere.
  void FollowRoom(QMainWindow& dock, int leave);
  /// Has the size that it wants, as far as the middle leaves it.
  void TakeRoom(QMainWindow& dock);
  /// Is as low as can be, where it is docked.
  void GiveRoom(QMainWindow& dock);

 protected:
  /// Texts of all rows; figures stand at the right of their columns. The first column is of names,
  /// unless the rows have theirs.
  void SetCells(const QStringList& header, const QList<QStringList>& rows);
  /// Names that stay in sight while the columns scroll.
  void NameRows(const QStringList& names);
  QTableWidget& Table() { return *table_; }
  /// Where the table and what belongs to it stand, one below the other.
  QVBoxLayout& Body() { return *body_; }
  /// Makes sure of so many pixels of width.
  void Want(int width);

 private:
  void FitTable();

  QTableWidget* table_;
  QVBoxLayout* body_;
  QSize wanted_;
  int asked_ = 0;  ///< the width that Want has been told
  bool rowsAreNamed_ = false;
  Qt::DockWidgetArea placed_ = Qt::NoDockWidgetArea;  ///< not by the user
};

/// Puts a widget, in its place, into the middle of a window of its own around which panels can be
/// docked.
QMainWindow& MakeDockAround(QWidget& widget);

}  // namespace torvane
