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

constexpr const char* Decibels = "dB";
constexpr const char* Degrees = "deg";
constexpr const char* NoUnit = "";
constexpr int RemarksEdge = 8;

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
  column_ = 0;
  closed_.reset();
  const int slot = analyser_.CursorSlot();
  const std::vector<std::string> reasons = ReasonsFor(slot);
  if (analyser_.View().Unwrapped) MoveMarksToTrace(slot);
  if (analyser_.ShowsTheory()) ReadTheory();
  ShowRows();
  ShowWholeColumns();
  ShowRemarks(reasons);
}

void MarginsWindow::ShowRows() {
  const bool both = analyser_.ShowsTheory();
  QStringList header{QStringLiteral("Measure"), QStringLiteral("Value"), QStringLiteral("Unit"),
                     QStringLiteral("Freq (Hz)")};
  if (both) {
    header.insert(2, QStringLiteral("Theory"));
    header << QStringLiteral("Theory (Hz)");
  }
  const auto figure = [](const std::optional<Margins::Reading>& of,
                         double Margins::Reading::*what) {
    return of ? QString::fromStdString(Figure((*of).*what)) : QStringLiteral("-");
  };
  QList<QStringList> cells;
  for (const Row& row : rows_) {
    QStringList line{QString::fromStdString(row.Name), figure(row.Of[0], &Margins::Reading::Value),
                     QLatin1String(row.Unit), figure(row.Of[0], &Margins::Reading::Hz)};
    if (both) {
      line.insert(2, figure(row.Of[1], &Margins::Reading::Value));
      line << figure(row.Of[1], &Margins::Reading::Hz);
    }
    cells << line;
  }
  if (cells.isEmpty()) {
    cells << QStringList(header.size());
    cells.front().front() = Unavailable;
  }
  SetCells(header, cells);
}

// Reads what there is; the reasons say why something is not.
std::vector<std::string> MarginsWindow::ReasonsFor(int slot) {
  ShowChoice(false);
  if (!analyser_.TraceAt(slot).Shown || !analyser_.HasData(slot)) {
    return {"the trace that the cursors read is not shown"};
  }
  if (analyser_.OutputOnly()) return {"a spectrum has no margins"};
  const Margins& margins = reader_.Read(analyser_, slot);
  AddMargins(margins);
  return margins.Missing;
}

// Taken for what the trace is.
void MarginsWindow::ReadTheory() {
  if (!analyser_.HasData(FrequencyAnalyser::TheorySlot)) return;
  column_ = 1;
  const ResponseView& view = analyser_.View();
  ReadAs as = view.OpenLoop ? ReadAs::Unity : view.MarginsAs;
  if (as == ReadAs::Auto && closed_) as = *closed_ ? ReadAs::Closed : ReadAs::Open;
  AddMargins(reader_.Read(analyser_, FrequencyAnalyser::TheorySlot, as));
}

void MarginsWindow::AddMargins(const Margins& margins) {
  if (!closed_) ShowChoice(margins.Closed);
  closed_ = margins.Closed;
  if (margins.Closed) {
    AddBandwidths(margins);
  } else {
    AddCrossings(margins, analyser_.View().OpenLoop ? " (unity feedback)" : "");
  }
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
    remarks << QStringLiteral("What is read above %1 Hz needs a shorter sample time.")
                   .arg(QString::fromStdString(Figure(accurate)));
  }
  trust_->setVisible(!remarks.isEmpty());
  trust_->setText(remarks.join(QLatin1Char('\n')));
  GiveRemarksRoom();
  if (isFloating()) {
    resize(width(), std::max(height(), layout()->totalMinimumHeightForWidth(width())));
  }
}

// A text that is wrapped asks for no height by itself.
void MarginsWindow::GiveRemarksRoom() {
  trust_->setMinimumHeight(0);  // it would count
  trust_->setMinimumHeight(std::max(0, trust_->heightForWidth(width() - 2 * RemarksEdge)));
}

void MarginsWindow::resizeEvent(QResizeEvent* event) {
  ReadOutWindow::resizeEvent(event);
  GiveRemarksRoom();
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

// Beside what the trace has of that name, in order.
void MarginsWindow::AddRow(const std::string& name, const char* unit,
                           const Margins::Reading& reading) {
  if (column_ == 0) highest_ = std::max(highest_, reading.Hz);
  auto row = std::ranges::find_if(rows_, [&](const Row& one) {
    return one.Name == name && one.Unit == unit && !one.Of[column_];
  });
  if (row == rows_.end()) row = rows_.insert(row, {name, unit, {}});
  row->Of.at(column_) = reading;
}

// The marks are the trace's.
void MarginsWindow::AddMark(const ResponseMark& mark) {
  if (column_ == 0) marks_.push_back(mark);
}

void MarginsWindow::AddBandwidths(const Margins& margins) {
  using enum ResponseQuantity;
  if (const auto hz = margins.GainBandwidth) {
    AddRow("Bandwidth", Decibels, {*hz, Margins::BandwidthGain});
    AddMark({Gain, *hz, Margins::BandwidthGain, Margins::BandwidthGain, Figure(*hz) + " Hz"});
  }
  if (const auto hz = margins.PhaseBandwidth) {
    AddRow("Bandwidth", Degrees, {*hz, Margins::BandwidthPhase});
    AddMark({Phase, *hz, Margins::BandwidthPhase, Margins::BandwidthPhase, Figure(*hz) + " Hz"});
  }
  if (const auto peak = margins.Peaking) {
    AddRow("Peaking", Decibels, *peak);
    AddMark({Gain, peak->Hz, peak->Value, peak->Value, Figure(peak->Value) + " dB"});
  }
}

// The smallest margins first.
void MarginsWindow::AddCrossings(const Margins& margins, const std::string& condition) {
  using enum ResponseQuantity;
  const auto add = [&](const char* name, const char* unit, const Margins::Reading* least,
                       const std::vector<Margins::Reading>& all, auto mark) {
    if (!least) return;
    AddRow(std::string("Smallest ") + name + condition, unit, *least);
    AddMark(mark(*least));
    for (const Margins::Reading& one : all) {
      if (&one == least) continue;
      AddRow(std::string("Other ") + name, unit, one);
      AddMark(mark(one));
    }
  };
  add("phase margin", Degrees, margins.SmallestPhaseMargin(), margins.PhaseMargins,
      [](const Margins::Reading& one) {
        return ResponseMark{Phase, one.Hz, -180.0, one.Value - 180.0, Figure(one.Value) + " deg"};
      });
  add("gain margin", Decibels, margins.SmallestGainMargin(), margins.GainMargins,
      [](const Margins::Reading& one) {
        return ResponseMark{Gain, one.Hz, 0.0, -one.Value, Figure(one.Value) + " dB"};
      });
  if (const auto& peak = margins.Sensitivity) AddRow("Sensitivity peak (Ms)", NoUnit, *peak);
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
