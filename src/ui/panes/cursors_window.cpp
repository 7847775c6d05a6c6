#include "ui/panes/cursors_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QVBoxLayout>

#include "core/text.h"
#include "ui/widgets/digits.h"

namespace torvane {

namespace {

constexpr int NameColumn = 0;
constexpr int ValueColumn = 1;
constexpr int UnitColumn = 2;

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

// "Time 0.004 sec   1/Time 250"
QString TimeText(const ZelScope& scope, const CursorReading& reading) {
  const Variable& time = scope.TimeChannel().Signal();
  std::string text = "Time " + FormatEdit(reading.Time) + " " + time.Unit();
  if (reading.Time != 0.0) text += "   1/Time " + FormatEdit(1.0 / reading.Time);
  return Text(text);
}

}  // namespace

CursorsWindow::CursorsWindow(ZelScope& scope, QWidget* parent)
    : QWidget(parent, Qt::Tool),
      scope_(scope),
      table_(new QTableWidget(0, 3, this)),
      time_(new QLabel(this)) {
  setObjectName(QStringLiteral("TZelCursorsF"));
  setWindowTitle(QStringLiteral("Scope Cursors"));
  setAttribute(Qt::WA_ShowWithoutActivating);
  table_->setObjectName(QStringLiteral("SGCursors"));
  table_->setAccessibleName(QStringLiteral("Values at the cursors"));
  table_->setToolTip(
      QStringLiteral("Each trace at the cursor, or its change from cursor to cursor"));
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionMode(QAbstractItemView::NoSelection);
  table_->setShowGrid(false);
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 7);
  table_->horizontalHeader()->setStretchLastSection(true);
  UseFixedDigits(*table_);
  time_->setObjectName(QStringLiteral("LCursorTime"));
  UseFixedDigits(*time_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(6, 6, 6, 6);
  column->addWidget(table_);
  column->addWidget(time_);
  table_->setColumnWidth(NameColumn, 80);
  resize(260, 160);
}

void CursorsWindow::SetCell(int row, int column, const QString& text) {
  QTableWidgetItem* item = table_->item(row, column);
  if (!item) {
    item = new QTableWidgetItem;
    if (column == ValueColumn) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    table_->setItem(row, column, item);
  }
  if (item->text() != text) item->setText(text);
}

void CursorsWindow::ShowReading(const std::optional<CursorReading>& reading) {
  const bool two = scope_.Cursors().Mode == 2;
  table_->setHorizontalHeaderLabels({QStringLiteral("Channel"),
                                     two ? QStringLiteral("Difference") : QStringLiteral("Value"),
                                     QStringLiteral("Unit")});
  const std::vector<std::size_t> displayed = scope_.DisplayedChannels();
  table_->setRowCount(static_cast<int>(displayed.size()));
  for (int row = 0; row < table_->rowCount(); ++row) {
    const auto k = static_cast<std::size_t>(row);
    const ZelChannel& channel = *scope_.Channels()[displayed[k]];
    SetCell(row, NameColumn, Text(channel.Name()));
    SetCell(row, ValueColumn,
            reading ? Text(FormatEdit(reading->Values[k])) : QStringLiteral("Unavailable"));
    SetCell(row, UnitColumn, Text(channel.Signal().Unit()));
  }
  time_->setVisible(two);
  time_->setText(reading ? TimeText(scope_, *reading) : QStringLiteral("Time Unavailable"));
}

void CursorsWindow::closeEvent(QCloseEvent* event) {
  scope_.SetCursorMode(0);
  event->accept();
}

}  // namespace torvane
