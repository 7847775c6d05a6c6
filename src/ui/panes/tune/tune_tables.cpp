#include "ui/panes/tune/tune_tables.h"

#include <QHeaderView>
#include <QScopedValueRollback>
#include <algorithm>
#include <cmath>
#include <optional>

#include "core/bench.h"
#include "core/constant.h"
#include "core/text.h"
#include "study/measures.h"
#include "ui/widgets/cell_delegate.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/typed_number.h"

namespace torvane {

namespace {

constexpr int LeastRows = 3;
constexpr std::size_t LongestUnit = 4;  // beside its measure
constexpr int LeastWidth = 300;
constexpr double Decade = 10.0;

// Columns of constants, and of measures.
enum VaryColumn { Name, Present, From, To, Log, Found };
enum RequireColumn { Measure, AtMost, AtLeast, Reached, Keeps };

struct Bound {
  RequireColumn Column;
  const char* Sign;
};
constexpr Bound Bounds[] = {{AtMost, "<="}, {AtLeast, ">="}};

std::optional<double> Typed(const std::string& text) {
  return ParseNumber(WithoutSuffix(text));
}

// On a logarithm where both limits have the constant's sign.
StudyRange Proposed(const Constant& constant) {
  const double value = constant.Value();
  StudyRange range{constant.Name(), value / Decade, value * Decade, {}, value > 0.0};
  if (value < 0.0) std::swap(range.From, range.To);
  if (value == 0.0) range = {constant.Name(), constant.Lower(), constant.Upper(), {}, false};
  if (value == 0.0 && range.To > 0.0) range.From = std::max(range.From, 0.0);
  range.From = std::max(range.From, constant.Lower());
  range.To = std::min(range.To, constant.Upper());
  range.Log = range.Log && range.From > 0.0;
  return range;
}

const RunMeasure& MeasureAt(int row) {
  const std::string caption = RequireTable::Captions()[static_cast<std::size_t>(row)];
  return *std::ranges::find(Measures(), caption, &RunMeasure::Caption);
}

}  // namespace

TuneTable::TuneTable(const char* name, const QString& title, const QStringList& columns)
    : QTableWidget(0, static_cast<int>(columns.size())) {
  setItemDelegate(new CellDelegate(*this));
  setObjectName(QLatin1String(name));
  setAccessibleName(title);
  setHorizontalHeaderLabels(columns);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  SetEditable(true);
  setTabKeyNavigation(false);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 7);
  horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  UseFixedDigits(*this);
}

QSize TuneTable::sizeHint() const {
  int width = 2 * frameWidth() + fontMetrics().averageCharWidth() * 4;
  for (int column = 0; column < columnCount(); ++column) {
    width += std::max(sizeHintForColumn(column), horizontalHeader()->sectionSizeHint(column));
  }
  return {width, horizontalHeader()->sizeHint().height() +
                     rowCount() * verticalHeader()->defaultSectionSize() + 2 * frameWidth()};
}

QSize TuneTable::minimumSizeHint() const {
  return {LeastWidth, horizontalHeader()->sizeHint().height() +
                          LeastRows * verticalHeader()->defaultSectionSize() + 2 * frameWidth()};
}

void TuneTable::Show(const TableFault& fault) {
  setCurrentCell(fault.Row, fault.Column);
  scrollToItem(item(fault.Row, fault.Column));
  setFocus();
  ShowNotice(*viewport(), visualItemRect(item(fault.Row, fault.Column)),
             QString::fromStdString(fault.Text));
}

void TuneTable::SetEditable(bool on) {
  setEditTriggers(on ? DoubleClicked | EditKeyPressed | AnyKeyPressed
                     : EditTriggers(NoEditTriggers));
}

QTableWidgetItem& TuneTable::AddCell(int row, int column, const std::string& text, bool editable) {
  auto* cell = new QTableWidgetItem(QString::fromStdString(text));
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (editable) flags |= Qt::ItemIsEditable;
  cell->setFlags(flags);
  if (column > 0) cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  setItem(row, column, cell);
  return *cell;
}

void TuneTable::SetText(int row, int column, const std::string& text) {
  QTableWidgetItem& cell = *item(row, column);
  const QString shown = QString::fromStdString(text);
  if (cell.text() != shown) cell.setText(shown);
}

std::string TuneTable::Text(int row, int column) const {
  return item(row, column)->text().trimmed().toStdString();
}

VaryTable::VaryTable()
    : TuneTable("SGVary", QStringLiteral("Constants to vary"),
                {QStringLiteral("Constant"), QStringLiteral("Present"), QStringLiteral("From"),
                 QStringLiteral("To"), QStringLiteral("Log"), QStringLiteral("Best")}) {
  setToolTip(
      QStringLiteral("Switch on what the search may vary, and say between which values; with "
                     "Log they are spread evenly over decades"));
  // Who types limits wants the constant varied.
  connect(this, &QTableWidget::itemChanged, this, [this](const QTableWidgetItem* cell) {
    const bool limit = cell->column() == From || cell->column() == To;
    if (limit && !filling_) item(cell->row(), Name)->setCheckState(Qt::Checked);
  });
}

void VaryTable::ShowConstants(const ZelBenchTop& bench) {
  filling_ = true;
  setRowCount(0);
  for (const Constant* constant : bench.Constants()) {
    if (constant->IsList() || constant->Lower() >= constant->Upper()) continue;
    const int row = rowCount();
    setRowCount(row + 1);
    QTableWidgetItem& name = AddCell(row, Name, constant->Name(), false);
    name.setFlags(name.flags() | Qt::ItemIsUserCheckable);
    name.setCheckState(Qt::Unchecked);
    name.setToolTip(QString::fromStdString(constant->Description()));
    AddCell(row, Present, constant->DisplayText(), false);
    AddCell(row, From, {}, true);
    AddCell(row, To, {}, true);
    QTableWidgetItem& log = AddCell(row, Log, {}, false);
    log.setFlags(log.flags() | Qt::ItemIsUserCheckable);
    AddCell(row, Found, {}, false);
    Propose(row, Proposed(*constant));
  }
  if (rowCount() > 0) setCurrentCell(0, 0);
  filling_ = false;
}

void VaryTable::FollowText(const ZelBenchTop& bench) {
  std::map<std::string, std::vector<QTableWidgetItem>> before;
  for (int row = 0; row < rowCount(); ++row) {
    std::vector<QTableWidgetItem>& cells = before[Text(row, Name)];
    for (int column = 0; column < columnCount(); ++column) cells.push_back(*item(row, column));
  }
  ShowConstants(bench);
  filling_ = true;
  for (int row = 0; row < rowCount(); ++row) {
    const auto found = before.find(Text(row, Name));
    if (found == before.end()) continue;
    const auto& cells = found->second;
    item(row, Found)->setText(cells[Found].text());
    if (cells[Name].checkState() != Qt::Checked) continue;
    for (const int column : {From, To})
      item(row, column)->setText(cells[static_cast<std::size_t>(column)].text());
    for (const int column : {Name, Log})
      item(row, column)->setCheckState(cells[static_cast<std::size_t>(column)].checkState());
  }
  filling_ = false;
}

// A limit remembers what was proposed for it.
void VaryTable::Propose(int row, const StudyRange& range) {
  const QScopedValueRollback filling(filling_, true);
  for (const auto& [column, limit] : {std::pair{From, range.From}, std::pair{To, range.To}}) {
    SetText(row, column, FormatEdit(limit));
    item(row, column)->setData(Qt::UserRole, item(row, column)->text());
  }
  item(row, Log)->setCheckState(range.Log ? Qt::Checked : Qt::Unchecked);
}

bool VaryTable::IsProposed(int row) const {
  const auto isProposed = [&](int column) {
    return item(row, column)->text() == item(row, column)->data(Qt::UserRole).toString();
  };
  return item(row, Name)->checkState() != Qt::Checked && isProposed(From) && isProposed(To);
}

void VaryTable::ShowPresent(const ZelBenchTop& bench) {
  for (int row = 0; row < rowCount(); ++row) {
    const Constant* const constant = bench.FindConst(Text(row, Name));
    if (!constant || Text(row, Present) == constant->DisplayText()) continue;
    SetText(row, Present, constant->DisplayText());
    if (IsProposed(row)) Propose(row, Proposed(*constant));
  }
}

void VaryTable::ShowBest(const std::map<std::string, std::string>& values) {
  for (int row = 0; row < rowCount(); ++row) {
    const auto found = values.find(Text(row, Name));
    SetText(row, Found, found == values.end() ? std::string() : found->second);
  }
}

StudyRange VaryTable::RangeOf(int row) const {
  StudyRange range{Text(row, Name), 0.0, 0.0, {}, item(row, Log)->checkState() == Qt::Checked};
  for (const auto& [column, limit] : {std::pair{From, &range.From}, std::pair{To, &range.To}}) {
    const auto number = Typed(Text(row, column));
    if (!number) throw VaryFault{{row, column, "this is no number"}};
    *limit = *number;
  }
  const std::string fault = range.Fault();
  if (!fault.empty()) throw VaryFault{{row, From, fault}};
  return range;
}

std::vector<StudyRange> VaryTable::Ranges() const {
  std::vector<StudyRange> ranges;
  for (int row = 0; row < rowCount(); ++row) {
    if (item(row, Name)->checkState() == Qt::Checked) ranges.push_back(RangeOf(row));
  }
  if (ranges.empty()) throw VaryFault{{0, Name, "switch on at least one constant to vary"}};
  return ranges;
}

RequireTable::RequireTable()
    : TuneTable("SGRequire", QStringLiteral("Requirements"),
                {QStringLiteral("Measure"), QStringLiteral("At most"), QStringLiteral("At least"),
                 QStringLiteral("Best"), QStringLiteral("Met")}) {
  setToolTip(QStringLiteral("Type the bounds that the tuning is to keep"));
  for (const std::string& caption : Captions()) {
    const int row = rowCount();
    setRowCount(row + 1);
    const std::string unit = MeasureAt(row).Unit;
    const bool isShort = !unit.empty() && unit.size() <= LongestUnit;
    QTableWidgetItem& name =
        AddCell(row, Measure, isShort ? caption + " (" + unit + ")" : caption, false);
    name.setToolTip(QString::fromStdString(unit));
    AddCell(row, AtMost, {}, true);
    AddCell(row, AtLeast, {}, true);
    AddCell(row, Reached, {}, false);
    AddCell(row, Keeps, {}, false);
  }
  setCurrentCell(0, AtMost);
}

void RequireTable::Clear() {
  for (int row = 0; row < rowCount(); ++row) {
    for (const int column : {AtMost, AtLeast, Reached, Keeps}) SetText(row, column, {});
  }
}

// What needs a window of one length for all runs, or another signal, is not asked for here.
std::vector<std::string> RequireTable::Captions() {
  std::vector<std::string> captions;
  for (const RunMeasure& measure : Measures()) {
    const bool step = measure.Needs == MeasureNeeds::Step;
    if (measure.Value == &RunReadings::Window || measure.Value == &RunReadings::RmsError) continue;
    if (step || measure.OfLoop()) captions.emplace_back(measure.Caption);
  }
  return captions;
}

std::vector<std::string> RequireTable::Requirements() const {
  std::vector<std::string> all;
  for (int row = 0; row < rowCount(); ++row) {
    for (const Bound& bound : Bounds) {
      const std::string text = Text(row, bound.Column);
      if (text.empty()) continue;
      const auto number = Typed(text);
      if (!number) throw TableFault{row, bound.Column, "this is no number"};
      all.push_back(MeasureAt(row).Caption + std::string(bound.Sign) + FormatShortest(*number));
    }
  }
  return all;
}

std::string RequireTable::Kept(int row, const std::string& value) const {
  const auto most = Typed(Text(row, AtMost));
  const auto least = Typed(Text(row, AtLeast));
  if (!most && !least) return {};
  const auto reached = ParseNumber(value);
  const bool kept = reached && (!most || *reached <= *most) && (!least || *reached >= *least);
  return kept ? "yes" : "no";
}

void RequireTable::ShowBest(const std::map<std::string, std::string>& values) {
  for (int row = 0; row < rowCount(); ++row) {
    const auto found = values.find(MeasureAt(row).Caption);
    const std::string value = found == values.end() ? std::string() : found->second;
    SetText(row, Reached, value);
    SetText(row, Keeps, values.empty() ? std::string() : Kept(row, value));
  }
}

}  // namespace torvane
