#include "ui/panes/scope/cursors_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QVBoxLayout>

#include "core/text.h"
#include "plot/qt_text.h"
#include "ui/widgets/digits.h"

namespace torvane {

namespace {

constexpr int UnitColumn = 2;
constexpr int CellEdges = 12;  // beside a value in its cell

// "Time 0.004 sec   1/Time 250"
QString TimeText(const ZelScope& scope, const CursorReading& reading) {
  const Variable& time = scope.TimeChannel().Signal();
  std::string text = "Time " + FormatEdit(reading.Time) + " " + time.Unit();
  if (reading.Time != 0.0) text += "   1/Time " + FormatEdit(1.0 / reading.Time);
  return QtText(text);
}

}  // namespace

CursorsWindow::CursorsWindow(ZelScope& scope, QWidget* parent)
    : ReadOutWindow(QStringLiteral("Scope Cursors"), QStringLiteral("SGCursors"),
                    QStringLiteral("Each trace at the cursor, or its change from cursor to cursor"),
                    parent),
      scope_(scope),
      time_(new QLabel(this)) {
  setObjectName(QStringLiteral("TZelCursorsF"));
  const int widest = Table().fontMetrics().horizontalAdvance(Unavailable);
  Table().horizontalHeader()->setDefaultSectionSize(widest + CellEdges);
  time_->setObjectName(QStringLiteral("LCursorTime"));
  UseFixedDigits(*time_);
  Body().addWidget(time_);
}

void CursorsWindow::ShowReading(const std::optional<CursorReading>& reading) {
  const bool two = scope_.Cursors().Mode == 2;
  QList<QStringList> rows;
  for (const std::size_t k : scope_.DisplayedChannels()) {
    const ZelChannel& channel = *scope_.Channels()[k];
    const auto row = static_cast<std::size_t>(rows.size());
    rows << QStringList{QtText(channel.Name()),
                        reading ? QtText(FormatEdit(reading->Values[row])) : Unavailable,
                        QtText(channel.Signal().Unit())};
  }
  const QString value = two ? QStringLiteral("Difference") : QStringLiteral("Value");
  SetCells({QStringLiteral("Channel"), value, QStringLiteral("Unit")}, rows);
  Table().horizontalHeader()->setSectionResizeMode(UnitColumn, QHeaderView::Stretch);
  time_->setVisible(two);
  time_->setText(reading ? TimeText(scope_, *reading) : QStringLiteral("Time Unavailable"));
}

void CursorsWindow::closeEvent(QCloseEvent* event) {
  scope_.SetCursorMode(0);
  event->accept();
}

}  // namespace torvane
