#include "ui/panes/analyser/margins_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "core/text.h"

namespace torvane {

namespace {

std::string Figure(double value) {
  return FormatGeneral(value, 4, 1);
}

}  // namespace

MarginsWindow::MarginsWindow(FrequencyAnalyser& analyser, QWidget* parent)
    : ReadOutWindow(QStringLiteral("Margins"), QStringLiteral("SGMargins"),
                    QStringLiteral("Bandwidth and margins of the trace that the cursors read"),
                    parent),
      analyser_(analyser),
      as_(new QComboBox(this)),
      trust_(new QLabel(this)) {
  setObjectName(QStringLiteral("TZelMarginsF"));
  Table().horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  Table().horizontalHeader()->setStretchLastSection(true);
  as_->setObjectName(QStringLiteral("CmBMarginsAs"));
  as_->setAccessibleName(QStringLiteral("What the response is taken for"));
  as_->setToolTip(
      QStringLiteral("Whether margins are read, of an open loop, or bandwidth and "
                     "peaking, of a closed one"));
  as_->addItems(
      {QStringLiteral("Automatic"), QStringLiteral("Open loop"), QStringLiteral("Closed loop")});
  connect(as_, &QComboBox::activated, this, [this](int index) {
    ResponseView view = analyser_.View();
    view.MarginsAs = static_cast<ReadAs>(index);
    analyser_.SetView(view);
    ReadTrace();
  });
  Body().insertWidget(0, as_);
  trust_->setObjectName(QStringLiteral("LTrust"));
  trust_->setWordWrap(true);
  Body().addWidget(trust_);
}

void MarginsWindow::ReadTrace() {
  rows_.clear();
  marks_.clear();
  highest_ = 0.0;
  const int slot = analyser_.CursorSlot();
  const std::vector<std::string> reasons = ReasonsFor(slot);
  if (analyser_.View().Unwrapped) MoveMarksToTrace(slot);
  if (rows_.isEmpty()) rows_ << QStringList{Unavailable, {}, {}, {}};
  SetCells({QStringLiteral("Measure"), QStringLiteral("Value"), QStringLiteral("Unit"),
            QStringLiteral("Freq (Hz)")},
           rows_);
  ShowWholeColumns();
  ShowRemarks(reasons);
}

// Reads what there is; the reasons say why something is not.
std::vector<std::string> MarginsWindow::ReasonsFor(int slot) {
  ShowChoice(false);
  if (!analyser_.TraceAt(slot).Shown || !analyser_.HasData(slot)) {
    return {"the trace that the cursors read is not shown"};
  }
  if (analyser_.OutputOnly()) return {"a spectrum has no margins"};
  const Margins& margins = reader_.Read(analyser_, slot);
  ShowChoice(margins.Closed);
  if (margins.Closed) {
    AddBandwidths(margins);
  } else {
    AddMargins(margins, analyser_.View().OpenLoop ? " (unity feedback)" : "");
  }
  return margins.Missing;
}

// The automatic choice says what it has come to.
void MarginsWindow::ShowChoice(bool closed) {
  const bool opened = analyser_.View().OpenLoop;
  as_->setItemText(0, closed ? QStringLiteral("Automatic: closed loop")
                             : QStringLiteral("Automatic: open loop"));
  as_->setCurrentIndex(opened ? static_cast<int>(ReadAs::Open)
                              : static_cast<int>(analyser_.View().MarginsAs));
  as_->setEnabled(!opened && !analyser_.OutputOnly());
}

void MarginsWindow::ShowRemarks(const std::vector<std::string>& reasons) {
  QStringList remarks;
  for (const std::string& reason : reasons) {
    const QString clause = QString::fromStdString(reason);
    remarks << clause.left(1).toUpper() + clause.mid(1) + QLatin1Char('.');
  }
  const double accurate = analyser_.ResponseAt(analyser_.CursorSlot()).Subject().AccurateUpTo;
  if (highest_ > accurate) {
    remarks << QStringLiteral(
                   "The sample time is short enough for what is read up to %1 Hz; "
                   "choose a shorter one for what is read above.")
                   .arg(QString::fromStdString(Figure(accurate)));
  }
  trust_->setVisible(!remarks.isEmpty());
  trust_->setText(remarks.join(QLatin1Char('\n')));
  // A text that is wrapped asks for no height by itself.
  if (isFloating()) {
    resize(width(), std::max(height(), layout()->totalMinimumHeightForWidth(width())));
  }
}

// The longest names come with responses of closed loops.
void MarginsWindow::ShowWholeColumns() {
  const QAbstractItemView& cells = Table();
  int width = 2 * Table().frameWidth();
  for (int column = 0; column < Table().columnCount(); ++column) {
    width += std::max(cells.sizeHintForColumn(column),
                      Table().horizontalHeader()->sectionSizeHint(column));
  }
  Want(width + Table().verticalScrollBar()->sizeHint().width());
}

void MarginsWindow::AddRow(const std::string& name, double value, const char* unit, double hz) {
  highest_ = std::max(highest_, hz);
  rows_ << QStringList{QString::fromStdString(name), QString::fromStdString(Figure(value)),
                       QLatin1String(unit), QString::fromStdString(Figure(hz))};
}

void MarginsWindow::AddBandwidths(const Margins& margins) {
  using enum ResponseQuantity;
  if (const auto hz = margins.GainBandwidth) {
    AddRow("Bandwidth", Margins::BandwidthGain, "dB", *hz);
    marks_.push_back(
        {Gain, *hz, Margins::BandwidthGain, Margins::BandwidthGain, Figure(*hz) + " Hz"});
  }
  if (const auto hz = margins.PhaseBandwidth) {
    AddRow("Bandwidth", Margins::BandwidthPhase, "deg", *hz);
    marks_.push_back(
        {Phase, *hz, Margins::BandwidthPhase, Margins::BandwidthPhase, Figure(*hz) + " Hz"});
  }
  if (const auto peak = margins.Peaking) {
    AddRow("Peaking", peak->Value, "dB", peak->Hz);
    marks_.push_back({Gain, peak->Hz, peak->Value, peak->Value, Figure(peak->Value) + " dB"});
  }
}

// The smallest margins first.
void MarginsWindow::AddMargins(const Margins& margins, const std::string& condition) {
  using enum ResponseQuantity;
  const auto add = [&](const char* name, const char* unit, const Margins::Reading* least,
                       const std::vector<Margins::Reading>& all, auto mark) {
    if (!least) return;
    AddRow(std::string("Smallest ") + name + condition, least->Value, unit, least->Hz);
    marks_.push_back(mark(*least));
    for (const Margins::Reading& one : all) {
      if (&one == least) continue;
      AddRow(std::string("Other ") + name, one.Value, unit, one.Hz);
      marks_.push_back(mark(one));
    }
  };
  add("phase margin", "deg", margins.SmallestPhaseMargin(), margins.PhaseMargins,
      [](const Margins::Reading& one) {
        return ResponseMark{Phase, one.Hz, -180.0, one.Value - 180.0, Figure(one.Value) + " deg"};
      });
  add("gain margin", "dB", margins.SmallestGainMargin(), margins.GainMargins,
      [](const Margins::Reading& one) {
        return ResponseMark{Gain, one.Hz, 0.0, -one.Value, Figure(one.Value) + " dB"};
      });
}

// An unwrapped phase may have made turns.
void MarginsWindow::MoveMarksToTrace(int slot) {
  for (ResponseMark& mark : marks_) {
    const auto phase = analyser_.PhaseRead(slot, mark.Hz);
    if (mark.Quantity != ResponseQuantity::Phase || !phase) continue;
    const double turns = 360.0 * std::round((*phase - mark.To) / 360.0);
    mark.From += turns;
    mark.To += turns;
  }
}

void MarginsWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  emit Closed();
}

}  // namespace torvane
