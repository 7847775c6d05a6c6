#pragma once

#include <QObject>
#include <QSplitter>
#include <QTableWidget>

#include "instruments/scope/scope.h"

namespace torvane {

/// Keeps a scope's constants panel and its record alike: the splitter between screen and constants
/// and the width of the column of names, which the user drags.
class ConstantsSplitter : public QObject {
 public:
  /// The constants are the splitter's second widget, of the given width as long as no other is on
  /// record. Splitter and scope must outlive it.
  ConstantsSplitter(QSplitter& splitter, QTableWidget& constants, ZelScope& scope, int width,
                    QObject* parent);

  /// Brings splitter and column to what is on record.
  void Show();
  /// The constants have the width that is on record, as far as there is room.
  void Divide();

 private:
  void Record();

  QSplitter& splitter_;
  QTableWidget& constants_;
  ZelScope& scope_;
  int width_;
  ConstantsPanel shown_;
  bool showing_ = false;  // sizes are being set from the record
};

}  // namespace torvane
