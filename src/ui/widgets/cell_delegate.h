#pragma once

#include <QStyledItemDelegate>

class QAbstractItemView;

namespace torvane {

/// Edits cells of a table. Enter counts at once: what waited for the message loop would find the
/// editor closed when another key or a click comes first.
class CellDelegate : public QStyledItemDelegate {
 public:
  explicit CellDelegate(QAbstractItemView& table);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  /// Takes what the editor holds and closes it.
  void Settle(QWidget& editor);
};

/// A press of Return or Enter.
bool IsEnter(const QEvent& event);

}  // namespace torvane
