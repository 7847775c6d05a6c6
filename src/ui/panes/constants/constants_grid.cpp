#include "ui/panes/constants/constants_grid.h"

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "core/constant.h"
#include "core/messages.h"
#include "core/text.h"
#include "ui/panes/constants/adjust_dialog.h"
#include "ui/panes/constants/value_knob.h"
#include "ui/widgets/cell_delegate.h"
#include "ui/widgets/constant_entry.h"
#include "ui/widgets/digits.h"
#include "ui/widgets/edit_shortcuts.h"

namespace torvane {

namespace {

constexpr int ShortUnit = 3;            // characters that values are in line before
constexpr int CellEdges = 8;            // beside a text in its cell
constexpr int LargestMinimum = 150;     // pixels of width that a narrow window must spare
constexpr double NarrowLetters = 0.75;  // of the usual width: are read as easily
constexpr double LeastLetters = 0.55;   // of it, the last of them by smaller ones
constexpr double LettersStep = 0.05;

bool Fits(const QStyleOptionViewItem& cell, const QString& text) {
  return cell.fontMetrics.horizontalAdvance(text) + CellEdges <= cell.rect.width();
}

// Narrower letters, then smaller ones, until the cell holds its text.
void NarrowToFit(QStyleOptionViewItem& cell) {
  if (cell.rect.isEmpty()) return;
  const double size = cell.font.pointSizeF();
  for (double part = 1.0; part > LeastLetters && !Fits(cell, cell.text);) {
    part -= LettersStep;
    const double width = std::max(part, NarrowLetters);
    cell.font.setStretch(static_cast<int>(width * 100.0));
    cell.font.setPointSizeF(part / width * size);
    cell.fontMetrics = QFontMetrics(cell.font);
  }
}

// A closed editor is hidden until it is deleted.
bool IsOpen(const QWidget& editor) {
  return !editor.isHidden();
}

// Edits a value as text, or by a list of choices when the constant has one.
class ValueDelegate : public CellDelegate {
 public:
  ValueDelegate(QTableWidget& table, const ZelBenchTop& bench)
      : CellDelegate(table), table_(table), bench_(bench) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override {
    const Constant& constant = *bench_.ConstAt(index.row());
    QWidget* editor = nullptr;
    if (constant.IsList()) {
      auto* list = new QComboBox(parent);
      for (const std::string& choice : constant.Choices()) {
        list->addItem(QString::fromStdString(choice));
      }
      // A choice made counts at once; there is nothing more to confirm.
      connect(list, &QComboBox::activated, this, [this, list] {
        if (IsOpen(*list)) const_cast<ValueDelegate*>(this)->Settle(*list);
      });
      QTimer::singleShot(0, list, [list] {
        if (IsOpen(*list)) list->showPopup();
      });
      editor = list;
    } else {
      editor = QStyledItemDelegate::createEditor(parent, option, index);
    }
    editor->setAccessibleName(QString::fromStdString("Value of " + constant.Name()));
    return editor;
  }

  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    if (auto* list = qobject_cast<QComboBox*>(editor)) {
      list->setCurrentText(index.data().toString());
      return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
  }

  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override {
    if (auto* list = qobject_cast<QComboBox*>(editor)) {
      model->setData(index, list->currentText());
      return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
  }

 protected:
  // Where units have no column, each stands behind its value.
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    // What the column needs is asked without a place, and is the values' own.
    if (!table_.isColumnHidden(ConstantsGrid::UnitColumn) || option->rect.isEmpty()) return;
    const QString unit = QString::fromStdString(bench_.ConstAt(index.row())->Unit());
    for (const QString& behind : {unit.leftJustified(ShortUnit), unit}) {
      const QString text = option->text + u' ' + behind;
      if (behind != unit && !Fits(*option, text)) continue;
      option->text = text;
      NarrowToFit(*option);
      return;
    }
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (auto* editor = qobject_cast<QLineEdit*>(watched)) {
      const auto commit = [this, editor] { emit commitData(editor); };
      if (SettleShortcut(*editor, *event, editor->isModified(), commit)) return true;
    }
    return CellDelegate::eventFilter(watched, event);
  }

 private:
  const QTableWidget& table_;
  const ZelBenchTop& bench_;
};

// Units in a column that may be narrow.
class UnitDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    NarrowToFit(*option);
  }
};

QString Range(const Constant& constant) {
  if (constant.IsList()) {
    QStringList choices;
    for (const std::string& choice : constant.Choices()) choices << QString::fromStdString(choice);
    return QStringLiteral("one of: ") + choices.join(QStringLiteral(", "));
  }
  return QString::fromStdString(FormatEdit(constant.Lower()) + " to " +
                                FormatEdit(constant.Upper()) +
                                (constant.Unit().empty() ? "" : " " + constant.Unit()));
}

// What the constant is and what values it takes.
QString Hint(const Constant& constant) {
  QString hint = QString::fromStdString(constant.Name());
  if (!constant.Description().empty()) {
    hint += QStringLiteral(": ") + QString::fromStdString(constant.Description());
  }
  return hint + QStringLiteral("\n") + Range(constant);
}

}  // namespace

ConstantsGrid::ConstantsGrid(QTableWidget& table, ZelBenchTop& bench)
    : QObject(&table), table_(table), viewport_(*table.viewport()), bench_(bench) {
  table.setItemDelegateForColumn(ValueColumn, new ValueDelegate(table, bench));
  table.setItemDelegateForColumn(UnitColumn, new UnitDelegate(&table));
  Fill();
  connect(&table, &QTableWidget::cellChanged, this, &ConstantsGrid::CommitCell);
  // The whole row stands for its value.
  connect(&table, &QTableWidget::currentCellChanged, this, [this](int row, int column) {
    if (row >= 0 && column != ValueColumn) table_.setCurrentCell(row, ValueColumn);
  });
  connect(&table, &QTableWidget::cellDoubleClicked, this, &ConstantsGrid::Adjust);
  table.installEventFilter(this);
  viewport_.installEventFilter(this);
  new ValueKnob(table, ValueColumn, bench);
  for (Constant* constant : bench.Constants()) constant->Observe(*this);
}

ConstantsGrid::~ConstantsGrid() {
  for (Constant* constant : bench_.Constants()) constant->Unobserve(*this);
}

bool ConstantsGrid::eventFilter(QObject* watched, QEvent* event) {
  if (IsEnter(*event) && table_.currentRow() >= 0) {
    Adjust(table_.currentRow());
    return true;
  }
  if (watched == &viewport_ && event->type() == QEvent::Resize) {
    // Once the header knows the new width too.
    QMetaObject::invokeMethod(this, &ConstantsGrid::ShowUnitsIfRoom, Qt::QueuedConnection);
  }
  return QObject::eventFilter(watched, event);
}

void ConstantsGrid::Adjust(int row) try {
  const auto index = static_cast<std::size_t>(row);
  dialogs_.resize(bench_.Constants().size());
  std::unique_ptr<AdjustDialog>& dialog = dialogs_[index];
  if (!dialog) {
    dialog = std::make_unique<AdjustDialog>(*bench_.Constants()[index], table_.window());
  }
  const QRect cell = table_.visualItemRect(table_.item(row, NameColumn));
  dialog->OpenBeside({table_.viewport()->mapToGlobal(cell.topLeft()), cell.size()});
} catch (const std::exception&) {
  Error("Fault in TZelScopeF :: SGConstsDblClick - could not create form");
}

void ConstantsGrid::HideDialogs() {
  for (const auto& dialog : dialogs_) {
    if (dialog) dialog->hide();
  }
}

void ConstantsGrid::FileLoaded() {
  for (const auto& dialog : dialogs_) {
    if (dialog) dialog->KeepValue();
  }
}

void ConstantsGrid::Fill() {
  const QScopedValueRollback showing(showing_, true);
  const auto& constants = bench_.Constants();
  table_.setRowCount(static_cast<int>(constants.size()));
  QFont digits = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  digits.setPointSizeF(table_.font().pointSizeF());
  for (int row = 0; row < table_.rowCount(); ++row) {
    const Constant& constant = *constants[static_cast<std::size_t>(row)];
    const QString texts[] = {QString::fromStdString(constant.Name()), QString(),
                             QString::fromStdString(constant.Unit())};
    for (int column = NameColumn; column <= UnitColumn; ++column) {
      auto* item = new QTableWidgetItem(texts[column]);
      item->setToolTip(Hint(constant));
      if (column == ValueColumn) {
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        item->setFont(digits);
      } else {
        item->setFlags(Qt::ItemIsEnabled);
      }
      table_.setItem(row, column, item);
    }
    ShowValue(row);
  }
  table_.resizeColumnsToContents();
  // Values to come may be longer than these.
  const int value = QFontMetrics(digits).horizontalAdvance(QStringLiteral("0.00000")) + CellEdges;
  values_ = std::max(table_.columnWidth(ValueColumn), value);
  table_.setColumnWidth(ValueColumn, values_);
  const int namesAndValues = table_.columnWidth(NameColumn) + values_;
  // The last column is stretched, and has room to spare.
  table_.horizontalHeader()->setSectionResizeMode(UnitColumn, QHeaderView::Stretch);
  const QAbstractItemView& view = table_;
  units_ = std::max(table_.horizontalHeader()->sectionSizeHint(UnitColumn),
                    view.sizeHintForColumn(UnitColumn));
  const int around = table_.verticalScrollBar()->sizeHint().width() + 2 * table_.frameWidth();
  table_.setMinimumWidth(std::min(namesAndValues + around, LargestMinimum));
  fitting_ = namesAndValues + units_ + around;
  table_.verticalHeader()->setDefaultSectionSize(table_.fontMetrics().height() + 9);
  if (table_.rowCount() > 0) table_.setCurrentCell(0, ValueColumn);
}

// In a narrow window values have no room to spare, and units smaller letters; where these could
// not be read, the values' column has the room of the units', which stand in it then.
void ConstantsGrid::ShowUnitsIfRoom() {
  const QAbstractItemView& view = table_;
  const int room = table_.viewport()->width() - table_.columnWidth(NameColumn);
  const int least = std::max(view.sizeHintForColumn(ValueColumn),
                             table_.horizontalHeader()->sectionSizeHint(ValueColumn));
  const int values = std::clamp(room - units_, least, std::max(values_, least));
  const int widest = std::max(view.sizeHintForColumn(UnitColumn) - CellEdges, 1);
  const double letters = 1.0 * (room - values - CellEdges) / widest;
  const bool hide = letters < LeastLetters;
  if (hide != table_.isColumnHidden(UnitColumn)) {
    table_.setColumnHidden(UnitColumn, hide);
    table_.horizontalHeader()->setSectionResizeMode(
        ValueColumn, hide ? QHeaderView::Stretch : QHeaderView::Interactive);
  }
  if (!hide && table_.columnWidth(ValueColumn) != values)
    table_.setColumnWidth(ValueColumn, values);
}

void ConstantsGrid::ConstantChanged(const Constant& constant) {
  const auto& constants = bench_.Constants();
  const auto row = std::find(constants.begin(), constants.end(), &constant) - constants.begin();
  ShowValue(static_cast<int>(row));
  ShowUnitsIfRoom();
}

void ConstantsGrid::ShowValue(int row) {
  const QScopedValueRollback showing(showing_, true);
  const Constant& constant = *bench_.Constants()[static_cast<std::size_t>(row)];
  table_.item(row, ValueColumn)->setText(QString::fromStdString(constant.DisplayText()));
}

void ConstantsGrid::CommitCell(int row, int column) {
  if (showing_ || column != ValueColumn) return;
  Constant& constant = *bench_.Constants()[static_cast<std::size_t>(row)];
  const std::string text = table_.item(row, column)->text().toStdString();
  // Unchanged text is no edit: it may show fewer digits than the constant has.
  if (text != constant.DisplayText()) {
    EnterConstant(constant, text, *table_.viewport(),
                  table_.visualItemRect(table_.item(row, column)));
  }
  ShowValue(row);
}

}  // namespace torvane
