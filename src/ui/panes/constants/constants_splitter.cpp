#include "ui/panes/constants/constants_splitter.h"

#include <QEvent>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <algorithm>

#include "ui/panes/constants/constants_grid.h"

namespace torvane {

namespace {

constexpr int RowsBelow = 2;  // of constants that stand below the screen, at least

}  // namespace

ConstantsSplitter::ConstantsSplitter(QSplitter& splitter, QTableWidget& constants, ZelScope& scope,
                                     int width, QObject* parent)
    : QObject(parent), splitter_(splitter), constants_(constants), scope_(scope), width_(width) {
  splitter.setCollapsible(0, false);
  splitter.setStretchFactor(0, 1);
  splitter.setStretchFactor(1, 0);
  splitter.setSizes({3 * width, width});
  splitter.installEventFilter(this);
  connect(&splitter, &QSplitter::splitterMoved, this, [this] {
    const int extent = splitter_.sizes().value(1);
    shown_.Shown = extent > 0;
    // A panel folded away keeps its width for later.
    shown_.Width = shown_.Shown && !IsBelow() ? extent : scope_.ConstForm().Width;
    if (shown_.Shown && IsBelow()) height_ = extent;
    constants_.setVisible(shown_.Shown);
    Record();
  });
  connect(constants.horizontalHeader(), &QHeaderView::sectionResized, this,
          [this](int column, int, int size) {
            if (column != ConstantsGrid::NameColumn || showing_) return;
            shown_.NameWidth = size;
            Record();
          });
}

// Below the screen the constants give way to it, and take what it leaves.
bool ConstantsSplitter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize && IsBelow()) Divide();
  return QObject::eventFilter(watched, event);
}

void ConstantsSplitter::Record() {
  scope_.SetConstForm(shown_);
}

// What the user has just dragged stands there already.
void ConstantsSplitter::Show() {
  const QScopedValueRollback showing(showing_, true);
  const ConstantsPanel& panel = scope_.ConstForm();
  if (panel.Shown != shown_.Shown || panel.Width != shown_.Width) Divide();
  const int nameWidth = panel.NameWidth;
  const bool newNameWidth = nameWidth != shown_.NameWidth;
  shown_ = panel;
  if (newNameWidth && nameWidth > 0) {
    constants_.setColumnWidth(ConstantsGrid::NameColumn, nameWidth);
  } else if (newNameWidth) {
    constants_.resizeColumnToContents(ConstantsGrid::NameColumn);
  }
}

int ConstantsSplitter::HeightOf(int rows) const {
  return constants_.horizontalHeader()->sizeHint().height() +
         rows * constants_.verticalHeader()->defaultSectionSize() + 2 * constants_.frameWidth();
}

QSize ConstantsSplitter::Least() const {
  if (!scope_.ConstForm().Shown) return {0, 0};
  const int handle = splitter_.handleWidth();
  return {handle + constants_.minimumWidth(), handle + HeightOf(RowsBelow)};
}

void ConstantsSplitter::SetBelow(bool below) {
  if (below == IsBelow()) return;
  splitter_.setOrientation(below ? Qt::Vertical : Qt::Horizontal);
  constants_.setMinimumHeight(below ? HeightOf(RowsBelow) : 0);
  Divide();
}

// Of the constants along the splitter.
int ConstantsSplitter::Extent(int room) const {
  const ConstantsPanel& panel = scope_.ConstForm();
  if (!panel.Shown) return 0;
  if (IsBelow() && height_ > 0) return height_;
  if (IsBelow()) {
    return std::max(HeightOf(RowsBelow), std::min(HeightOf(constants_.rowCount()), room - screen_));
  }
  return panel.Width > 0 ? panel.Width : width_;
}

void ConstantsSplitter::Divide() {
  constants_.setVisible(scope_.ConstForm().Shown);
  const int along = IsBelow() ? splitter_.height() : splitter_.width();
  const int room = splitter_.isVisible() ? along - splitter_.handleWidth() : 4 * width_;
  const int extent = Extent(room);
  splitter_.setSizes({std::max(room - extent, 0), extent});
}

}  // namespace torvane
