#include "ui/desk/tiling.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr int Gap = 4;  // between windows and around them, pixels

// What the windows need, with a gap beside or below each.
struct Needs {
  QSize Scopes{0, 0};
  QSize Column{0, 0};
  QSize Row{0, 0};
  int ScopeCount = 0;

  explicit Needs(const std::vector<Tile>& tiles) {
    for (const Tile& tile : tiles) {
      if (tile.IsScope) {
        ++ScopeCount;
        Stack(Scopes, tile.Least);
      } else {
        Stack(Column, {tile.Least.width(), tile.Wanted.height()});
        Row = {Row.width() + tile.Least.width() + Gap,
               std::max(Row.height(), tile.Wanted.height() + Gap)};
      }
    }
  }

  static void Stack(QSize& stack, const QSize& one) {
    stack = {std::max(stack.width(), one.width() + Gap), stack.height() + one.height() + Gap};
  }

  QSize WithColumn() const {
    return QSize(Scopes.width() + Column.width(), std::max(Scopes.height(), Column.height())) +
           QSize(Gap, Gap);
  }
  QSize WithRow() const {
    return QSize(std::max(Scopes.width(), Row.width()), Scopes.height() + Row.height()) +
           QSize(Gap, Gap);
  }
};

bool Holds(const QSize& area, const QSize& needed) {
  return needed.width() <= area.width() && needed.height() <= area.height();
}

}  // namespace

std::vector<QRect> TileArea(const std::vector<Tile>& tiles, const QSize& area) {
  const Needs needs(tiles);
  const bool row = needs.WithColumn().width() > area.width() && Holds(area, needs.WithRow());
  const QSize scopes = area - (row ? QSize(0, needs.Row.height()) : QSize(needs.Column.width(), 0));
  const int each = (scopes.height() - Gap) / std::max(needs.ScopeCount, 1);
  QPoint nextScope(Gap, Gap);
  QPoint next = row ? QPoint(Gap, scopes.height()) : QPoint(scopes.width(), Gap);
  std::vector<QRect> places;
  for (const Tile& tile : tiles) {
    if (tile.IsScope) {
      const QSize share(scopes.width() - 2 * Gap, each - Gap);
      places.emplace_back(nextScope, share.expandedTo(tile.Least));
      nextScope.ry() += each;
    } else if (row) {
      places.emplace_back(next, QSize(tile.Least.width(), tile.Wanted.height()));
      next.rx() += tile.Least.width() + Gap;
    } else {
      places.emplace_back(next, QSize(needs.Column.width() - Gap, tile.Wanted.height()));
      next.ry() += tile.Wanted.height() + Gap;
    }
  }
  return places;
}

QSize LeastTiledArea(const std::vector<Tile>& tiles, const QSize& proportions) {
  const Needs needs(tiles);
  const QSize beside = proportions.scaled(needs.WithColumn(), Qt::KeepAspectRatioByExpanding);
  const QSize below = proportions.scaled(needs.WithRow(), Qt::KeepAspectRatioByExpanding);
  return below.width() < beside.width() ? below : beside;
}

}  // namespace torvane
