#include "ui/panes/read_out_window.h"

#include <QHeaderView>
#include <QLayout>
#include <QMainWindow>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/widgets/digits.h"

namespace torvane {

namespace {

constexpr int MostRows = 18;  // without scrolling
constexpr int LeastRows = 3;  // that are always seen
constexpr int LeastWidth = 120;
constexpr int Edge = 4;

}  // namespace

ReadOutWindow::ReadOutWindow(const QString& title, const QString& table, const QString& hint,
                             QWidget* parent)
    : QDockWidget(title, parent), table_(new QTableWidget), body_(new QVBoxLayout) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  table_->setObjectName(table);
  table_->setAccessibleName(title);
  table_->setToolTip(hint);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionMode(QAbstractItemView::NoSelection);
  table_->setShowGrid(false);
  table_->setMinimumWidth(LeastWidth);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 7);
  UseFixedDigits(*table_);
  auto* middle = new QWidget;
  body_->setContentsMargins(Edge, Edge, Edge, Edge);
  body_->addWidget(table_);
  middle->setLayout(body_);
  setWidget(middle);
  connect(this, &QDockWidget::topLevelChanged, this, [this](bool alone) {
    FitTable();  // a window of its own has edges, which a docked one has not
    if (alone) resize(wanted_);
  });
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
        if (column > 0 || rowsAreNamed_) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        table_->setItem(row, column, item);
      }
      if (item->text() != rows[row][column]) item->setText(rows[row][column]);
    }
  }
  if (QSize(table_->columnCount(), table_->rowCount()) != before) FitTable();
}

void ReadOutWindow::NameRows(const QStringList& names) {
  rowsAreNamed_ = true;
  table_->setRowCount(static_cast<int>(names.size()));
  table_->setVerticalHeaderLabels(names);
  QHeaderView& header = *table_->verticalHeader();
  header.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  header.setSectionsClickable(false);
  header.show();
  FitTable();
}

void ReadOutWindow::OpenIn(QMainWindow& dock, int leave) {
  if (isVisible()) return;
  FollowRoom(dock, leave);
  show();
  TakeRoom(dock);
}

void ReadOutWindow::FollowRoom(QMainWindow& dock, int leave) {
  const Qt::DockWidgetArea now = dock.dockWidgetArea(this);
  if (isFloating() || now != placed_) return;
  const bool beside = dock.width() - wanted_.width() >= leave;
  placed_ = beside ? Qt::RightDockWidgetArea : Qt::BottomDockWidgetArea;
  if (now == placed_) return;
  dock.addDockWidget(placed_, this);
  TakeRoom(dock);
}

void ReadOutWindow::TakeRoom(QMainWindow& dock) {
  if (isFloating() || isHidden()) return;
  dock.resizeDocks({this}, {wanted_.width()}, Qt::Horizontal);
  dock.resizeDocks({this}, {wanted_.height()}, Qt::Vertical);
}

void ReadOutWindow::GiveRoom(QMainWindow& dock) {
  if (!isFloating() && !isHidden()) dock.resizeDocks({this}, {1}, Qt::Vertical);
}

void ReadOutWindow::Want(int width) {
  asked_ = width;
  FitTable();
}

void ReadOutWindow::FitTable() {
  const QHeaderView& columns = *table_->horizontalHeader();
  const int row = table_->verticalHeader()->defaultSectionSize();
  const int edges = 2 * table_->frameWidth();
  const auto highWith = [&](int rows) { return columns.sizeHint().height() + rows * row + edges; };
  table_->setMinimumHeight(highWith(std::min(table_->rowCount(), LeastRows)));
  int wide = edges + 2 * Edge + (rowsAreNamed_ ? table_->verticalHeader()->sizeHint().width() : 0);
  const QAbstractItemView& view = *table_;
  for (int column = 0; column < table_->columnCount(); ++column) {
    const int content = std::max(columns.sectionSizeHint(column), view.sizeHintForColumn(column));
    const bool fixed = columns.sectionResizeMode(column) == QHeaderView::Interactive;
    wide += std::max(content, fixed ? table_->columnWidth(column) : 0);
  }
  const int more = highWith(std::min(table_->rowCount(), MostRows)) - table_->minimumHeight();
  wanted_ = {std::max(wide, asked_), minimumSizeHint().height() + more};
  if (isFloating()) resize(wanted_.expandedTo({width(), 0}));
}

QMainWindow& MakeDockAround(QWidget& widget) {
  auto* dock = new QMainWindow;
  dock->setWindowFlags(Qt::Widget);
  dock->setSizePolicy(widget.sizePolicy());
  dock->setAnimated(false);
  dock->setContextMenuPolicy(Qt::NoContextMenu);
  if (auto* splitter = qobject_cast<QSplitter*>(widget.parentWidget())) {
    splitter->replaceWidget(splitter->indexOf(&widget), dock);
  } else if (QLayout* layout = widget.parentWidget()->layout()) {
    delete layout->replaceWidget(&widget, dock);
  }
  dock->setCentralWidget(&widget);
  widget.show();
  return *dock;
}

}  // namespace torvane
