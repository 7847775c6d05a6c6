#include "ui/panes/analyser/margins_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QLayout>
#include <algorithm>
#include <cmath>

#include "core/text.h"

namespace torvane {

namespace {

constexpr std::size_t MostCrossings = 8;  // more are noise

std::string Figure(double value) {
  return FormatGeneral(value, 4, 1);
}

}  // namespace

MarginsWindow::MarginsWindow(FrequencyAnalyser& analyser, QWidget* parent)
    : ReadOutWindow(QStringLiteral("Margins"), QStringLiteral("SGMargins"),
                    QStringLiteral("Bandwidth and margins of the trace that the cursors read"),
                    parent),
      analyser_(analyser),
      trust_(new QLabel(this)) {
  setObjectName(QStringLiteral("TZelMarginsF"));
  Table().horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  Table().horizontalHeader()->setStretchLastSection(true);
  trust_->setObjectName(QStringLiteral("LTrust"));
  trust_->setWordWrap(true);
  layout()->addWidget(trust_);
  resize(370, 200);
}

void MarginsWindow::ReadTrace() {
  rows_.clear();
  marks_.clear();
  highest_ = 0.0;
  const int slot = analyser_.CursorSlot();
  if (analyser_.TraceAt(slot).Shown && analyser_.HasData(slot) && !analyser_.OutputOnly()) {
    const bool opened = analyser_.View().OpenLoop;
    const Margins& margins = reader_.Read(analyser_, slot, opened);
    if (margins.Closed) {
      AddBandwidths(margins);
      AddMargins(reader_.Read(analyser_, slot, true), false);
    } else {
      AddMargins(margins, true);
    }
    if (analyser_.View().Unwrapped) MoveMarksToTrace(slot);
  }
  if (rows_.isEmpty()) rows_ << QStringList{Unavailable, {}, {}, {}};
  SetCells({QStringLiteral("Measure"), QStringLiteral("Value"), QStringLiteral("Unit"),
            QStringLiteral("Freq (Hz)")},
           rows_);
  ShowWholeColumns();
  const double accurate = analyser_.AccurateUpTo();
  trust_->setVisible(highest_ > accurate);
  trust_->setText(QStringLiteral("The sample time is short enough for what is read up to %1 Hz; "
                                 "choose a shorter one for what is read above.")
                      .arg(QString::fromStdString(Figure(accurate))));
  // A text that is wrapped asks for no height by itself.
  resize(width(), std::max(height(), layout()->totalMinimumHeightForWidth(width())));
}

// The longest names come with responses of closed loops.
void MarginsWindow::ShowWholeColumns() {
  const QAbstractItemView& cells = Table();
  int width = 2 * Table().frameWidth();
  for (int column = 0; column < Table().columnCount(); ++column) {
    width += std::max(cells.sizeHintForColumn(column),
                      Table().horizontalHeader()->sectionSizeHint(column));
  }
  Table().setMinimumWidth(width);
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

// The smallest margins first. Those of the open loop that a closed one has if its feedback is its
// output are not on the plot.
void MarginsWindow::AddMargins(const Margins& margins, bool onPlot) {
  using enum ResponseQuantity;
  const std::string condition = onPlot ? "" : " (unity feedback)";
  const auto add = [&](const char* name, const char* unit, const Margins::Reading* least,
                       const std::vector<Margins::Reading>& all, auto mark) {
    if (!least) return;
    AddRow(std::string("Smallest ") + name + condition, least->Value, unit, least->Hz);
    if (onPlot) marks_.push_back(mark(*least));
    if (!onPlot || all.size() < 2 || all.size() > MostCrossings) return;
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
