#pragma once

#include <QObject>
#include <QSplitter>
#include <QTableWidget>

#include "instruments/scope/scope.h"

namespace torvane {

/// Keeps a scope's constants panel and its record alike: the splitter between screen and constants
/// and the width of the column of names, which the user drags. In a narrow window the constants
/// stand below the screen.
class ConstantsSplitter : public QObject {
 public:
  /// The constants are the splitter's second widget, of the given width as long as no other is on
  /// record. Splitter and scope must outlive it.
  ConstantsSplitter(QSplitter& splitter, QTableWidget& constants, ZelScope& scope, int width,
                    QObject* parent);

  /// Brings splitter and column to what is on record.
  void Show();
  /// The constants have the width that is on record, as far as there is room; below the screen as
  /// many rows as there is room for.
  void Divide();
  /// Whether the constants stand below the screen, and not beside it.
  void SetBelow(bool below);
  /// The height that the constants below the screen leave it before they have rows to spare.
  void LeaveScreen(int height) { screen_ = height; }
  bool IsBelow() const { return splitter_.orientation() == Qt::Vertical; }
  /// What the constants need with the splitter's handle, beside the screen and below it.
  QSize Least() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Record();
  int HeightOf(int rows) const;
  int Extent(int room) const;

  QSplitter& splitter_;
  QTableWidget& constants_;
  ZelScope& scope_;
  int width_;
  int height_ = 0;  // below the screen, where the user has chosen it
  int screen_ = 0;
  ConstantsPanel shown_;
  bool showing_ = false;  // sizes are being set from the record
};

}  // namespace torvane
