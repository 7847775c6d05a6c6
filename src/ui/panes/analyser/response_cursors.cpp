#include "ui/panes/analyser/response_cursors.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <cmath>

#include "core/text.h"
#include "instruments/analyser/cursor_reading.h"
#include "ui/widgets/digits.h"

namespace torvane {

namespace {

constexpr int FigureLength = 13;  // with the room around it

QString Text(const std::optional<double>& value) {
  return value ? QString::fromStdString(FormatEdit(*value)) : ReadOutWindow::Unavailable;
}

QStringList Row(const QString& name, const CursorPoint& point) {
  return {name, QString::fromStdString(FormatEdit(point.Hz)), Text(point.Gain), Text(point.Phase),
          Text(point.Delay)};
}

}  // namespace

ResponseCursors::ResponseCursors(FrequencyAnalyser& analyser, const char* name, QWidget* parent)
    : ReadOutWindow(QStringLiteral("Analyzer Cursors"), QStringLiteral("SGXferCursors"),
                    QStringLiteral("The response at each cursor, and its change from 1 to 2"),
                    parent),
      analyser_(analyser),
      slope_(new QLabel(this)) {
  setObjectName(QLatin1String(name));
  Table().horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  AddTraces();
  slope_->setObjectName(QStringLiteral("LSlope"));
  slope_->setToolTip(QStringLiteral("The line from cursor 1 to cursor 2"));
  UseFixedDigits(*slope_);
  Body().addWidget(slope_);
}

void ResponseCursors::AddTraces() {
  auto* row = new QHBoxLayout;
  row->addWidget(new QLabel(QStringLiteral("Trace"), this));
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    auto* trace =
        new QRadioButton(slot == 0 ? QStringLiteral("Current") : QString::number(slot), this);
    trace->setObjectName(slot == 0 ? QStringLiteral("RBColorCurrent")
                                   : QStringLiteral("RBColor%1").arg(slot));
    const QString hint = slot == 0 ? QStringLiteral("Read the current measurement")
                                   : QStringLiteral("Read memory %1").arg(slot);
    trace->setToolTip(hint);
    trace->setAccessibleName(hint);
    connect(trace, &QAbstractButton::clicked, this, [this, slot] { emit TraceChosen(slot); });
    row->addWidget(trace);
    traces_[static_cast<std::size_t>(slot)] = trace;
  }
  Body().insertLayout(0, row);
}

void ResponseCursors::ShowReading(int plotWidth) {
  const ResponseCursorReading reading = ReadResponseCursors(analyser_, plotWidth);
  QList<QStringList> rows;
  for (std::size_t i = 0; i < reading.Points.size(); ++i) {
    rows << Row(QStringLiteral("Cursor %1").arg(i + 1), reading.Points[i]);
  }
  if (reading.Difference) rows << Row(QStringLiteral("Difference"), *reading.Difference);
  QStringList captions{QString(), QStringLiteral("Freq (Hz)"), QStringLiteral("Gain (dB)"),
                       QStringLiteral("Phase (deg)")};
  if (analyser_.ShowsDelay()) captions << QStringLiteral("Delay (s)");
  SetCells(captions, rows);
  const int figure = Table().fontMetrics().horizontalAdvance(QString(FigureLength, u'0'));
  Want(figure * static_cast<int>(captions.size()));
  slope_->setVisible(reading.Difference.has_value());
  slope_->setText(QStringLiteral("Slope %1 dB/decade").arg(Text(reading.Slope)));
  traces_[static_cast<std::size_t>(analyser_.CursorSlot())]->setChecked(true);
}

void ResponseCursors::closeEvent(QCloseEvent* event) {
  analyser_.SetCursors(FrequencyAnalyser::CursorMode::None);
  event->accept();
}

}  // namespace torvane
