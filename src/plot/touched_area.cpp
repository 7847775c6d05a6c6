#include "plot/touched_area.h"

#include <algorithm>

namespace torvane {

void TouchedArea::Clear(const QSize& screen) {
  screen_ = screen;
  bounds_ = {};
  rows_.fill({});
}

void TouchedArea::Add(const QRect& rectangle) {
  const QRect area = rectangle & QRect(QPoint(), screen_);
  if (area.isEmpty()) return;
  bounds_ |= area;
  for (int column = 0; column < Columns; ++column) {
    if (LeftOf(column) > area.right()) break;
    if (LeftOf(column + 1) <= area.left()) continue;
    Rows& rows = rows_[static_cast<std::size_t>(column)];
    const bool first = rows.High < rows.Low;
    rows.Low = first ? area.top() : std::min(rows.Low, area.top());
    rows.High = first ? area.bottom() : std::max(rows.High, area.bottom());
  }
}

void TouchedArea::Add(const TouchedArea& other) {
  for (int column = 0; column < Columns; ++column) Add(other.ColumnRows(column));
}

QRect TouchedArea::ColumnRows(int column) const {
  const Rows& rows = rows_[static_cast<std::size_t>(column)];
  return {QPoint(LeftOf(column), rows.Low), QPoint(LeftOf(column + 1) - 1, rows.High)};
}

QRegion TouchedArea::Region() const {
  QRegion region;
  for (int column = 0; column < Columns; ++column) region |= ColumnRows(column);
  return region;
}

}  // namespace torvane
