#include "ui/panes/constants/constants_splitter.h"

#include <QHeaderView>
#include <QScopedValueRollback>
#include <algorithm>

#include "ui/panes/constants/constants_grid.h"

namespace torvane {

ConstantsSplitter::ConstantsSplitter(QSplitter& splitter, QTableWidget& constants, ZelScope& scope,
                                     int width, QObject* parent)
    : QObject(parent), splitter_(splitter), constants_(constants), scope_(scope), width_(width) {
  splitter.setCollapsible(0, false);
  splitter.setStretchFactor(0, 1);
  splitter.setStretchFactor(1, 0);
  splitter.setSizes({3 * width, width});
  connect(&splitter, &QSplitter::splitterMoved, this, [this] {
    shown_.Width = splitter_.sizes().value(1);
    shown_.Shown = shown_.Width > 0;
    // A panel folded away keeps its width for later.
    if (!shown_.Shown) shown_.Width = scope_.ConstForm().Width;
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

void ConstantsSplitter::Divide() {
  const ConstantsPanel& panel = scope_.ConstForm();
  const int width = !panel.Shown ? 0 : panel.Width > 0 ? panel.Width : width_;
  const int room = splitter_.isVisible() ? splitter_.width() - splitter_.handleWidth() : 4 * width_;
  constants_.setVisible(panel.Shown);
  splitter_.setSizes({std::max(room - width, 0), width});
}

}  // namespace torvane
