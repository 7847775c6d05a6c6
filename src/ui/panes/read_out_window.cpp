#include "ui/panes/read_out_window.h"

#include <QHeaderView>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/widgets/digits.h"

namespace torvane {

namespace {

constexpr int MostRows = 14;  // without scrolling

}  // namespace

ReadOutWindow::ReadOutWindow(const QString& title, const QString& table, const QString& hint,
                             QWidget* parent)
    : QWidget(parent, Qt::Tool), table_(new QTableWidget(this)) {
  setWindowTitle(title);
  setAttribute(Qt::WA_ShowWithoutActivating);
  table_->setObjectName(table);
  table_->setAccessibleName(title);
  table_->setToolTip(hint);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionMode(QAbstractItemView::NoSelection);
  table_->setShowGrid(false);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 7);
  UseFixedDigits(*table_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(table_);
}

// Only what differs is written, for these figures change ten times a second.
void ReadOutWindow::SetCells(const QStringList& header, const QList<QStringList>& rows) {
  const QSize before(table_->columnCount(), table_->rowCount());
  table_->setColumnCount(static_cast<int>(header.size()));
  table_->setRowCount(static_cast<int>(rows.size()));
  for (int column = 0; column < header.size(); ++column) {
    const QTableWidgetItem* title = table_->horizontalHeaderItem(column);
    if (!title || title->text() != header[column]) {
      table_->setHorizontalHeaderItem(column, new QTableWidgetItem(header[column]));
    }
    for (int row = 0; row < rows.size(); ++row) {
      QTableWidgetItem* item = table_->item(row, column);
      if (!item) {
        item = new QTableWidgetItem;
        if (column > 0) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        table_->setItem(row, column, item);
      }
      if (item->text() != rows[row][column]) item->setText(rows[row][column]);
    }
  }
  if (QSize(table_->columnCount(), table_->rowCount()) != before) FitTable();
}

void ReadOutWindow::FitTable() {
  const QHeaderView& columns = *table_->horizontalHeader();
  const int rows = std::min(table_->rowCount(), MostRows);
  const int edges = 2 * table_->frameWidth();
  table_->setMinimumHeight(columns.sizeHint().height() +
                           rows * table_->verticalHeader()->defaultSectionSize() + edges);
  const QMargins around = layout()->contentsMargins();
  int wide = edges + around.left() + around.right();
  const QAbstractItemView& view = *table_;
  for (int column = 0; column < table_->columnCount(); ++column) {
    wide += std::max(columns.sectionSizeHint(column), view.sizeHintForColumn(column));
  }
  resize(std::max(width(), wide), minimumSizeHint().height());
}

}  // namespace torvane
