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

  /// The constants' side has at least so much width, for what else stands there; 0 for nothing.
  void SetLeast(int width);

 private:
  void Record();
  void Divide();

  QSplitter& splitter_;
  QTableWidget& constants_;
  ZelScope& scope_;
  int width_;
  int least_ = 0;
  ConstantsPanel shown_;
  bool showing_ = false;  // sizes are being set from the record
};

}  // namespace torvane
