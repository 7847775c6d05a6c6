#include "ui/desk/tiling.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr int Gap = 4;                 // between windows and around them, pixels
constexpr int ComfortableWidth = 600;  // of a window with a plot beside other plots
constexpr double ScopesShare = 0.56;   // of the width of all plots: constants stand beside theirs

// A gap beside or below each window.
void Stack(QSize& stack, const QSize& one) {
  stack = {std::max(stack.width(), one.width() + Gap), stack.height() + one.height() + Gap};
}

QSize Beside(const QSize& left, const QSize& right) {
  return {left.width() + right.width(), std::max(left.height(), right.height())};
}

QSize Below(const QSize& upper, const QSize& lower) {
  return {std::max(upper.width(), lower.width()), upper.height() + lower.height()};
}

// What the windows of each role need, with their gaps.
struct Needs {
  QSize Scopes{0, 0};
  QSize Analysers{0, 0};
  QSize Column{0, 0};  // of the small ones
  QSize Row{0, 0};
  int ScopeCount = 0;
  int AnalyserCount = 0;

  explicit Needs(const std::vector<Tile>& tiles) {
    for (const Tile& tile : tiles) {
      if (tile.Role == TileRole::Scope) {
        ++ScopeCount;
        Stack(Scopes, tile.Least);
      } else if (tile.Role == TileRole::Analyser) {
        ++AnalyserCount;
        Stack(Analysers, tile.Least);
      } else {
        const QSize needed(tile.Least.width(), tile.Wanted.height());
        Stack(Column, needed);
        Row = {Row.width() + needed.width() + Gap, std::max(Row.height(), needed.height() + Gap)};
      }
    }
  }

  QSize WithColumn() const { return Beside(Scopes, Column) + QSize(Gap, Gap); }
  QSize WithRow() const { return Below(Scopes, Row) + QSize(Gap, Gap); }
  QSize Columns() const { return Beside(Beside(Scopes, Analysers), Column) + QSize(Gap, Gap); }
  QSize Sides() const { return Beside(Below(Scopes, Row), Analysers) + QSize(Gap, Gap); }
};

bool Holds(const QSize& area, const QSize& needed) {
  return needed.width() <= area.width() && needed.height() <= area.height();
}

// A column of the area, filled from above.
struct Shelf {
  QRect Room;
  int Each = 0;  // height of one of the windows that share the column

  QRect Share(const QSize& least) {
    const QRect place(Room.topLeft(), QSize(Room.width(), Each).expandedTo(least));
    Room.setTop(Room.top() + Each + Gap);
    return place;
  }
  QRect Take(int height) {
    const QRect place(Room.topLeft(), QSize(Room.width(), height));
    Room.setTop(Room.top() + height + Gap);
    return place;
  }
  QRect TakeBeside(const QSize& size) {
    const QRect place(Room.topLeft(), size);
    Room.setLeft(Room.left() + size.width() + Gap);
    return place;
  }
};

// `width` and `height` with their gaps; the height is shared by so many.
Shelf MakeShelf(const QPoint& corner, int width, int height, int count) {
  const int each = height / std::max(count, 1) - Gap;
  return {QRect(corner, QSize(width - Gap, height - Gap)), each};
}

// Two columns of plots share a width; each has what it needs at least.
int ShareOfScopes(const Needs& needs, int width) {
  if (needs.ScopeCount == 0) return 0;
  if (needs.AnalyserCount == 0) return width;
  const int most = std::max(width - needs.Analysers.width(), needs.Scopes.width());
  return std::clamp(static_cast<int>(ScopesShare * width), needs.Scopes.width(), most);
}

bool IsAmple(const Needs& needs, const QSize& area) {
  const int room = area.width() - Gap - needs.Column.width();
  const int plots = (needs.ScopeCount > 0 ? 1 : 0) + (needs.AnalyserCount > 0 ? 1 : 0);
  return Holds(area, needs.Columns()) && room >= plots * (ComfortableWidth + Gap);
}

struct Shelves {
  Shelf Scopes;
  Shelf Analysers;
  Shelf Small;
  bool Row;  // the small ones stand side by side
};

Shelves MakeShelves(const Needs& needs, const QSize& area) {
  const QPoint corner(Gap, Gap);
  const QSize room = area - QSize(Gap, Gap);
  const bool sides = needs.AnalyserCount > 0 && !IsAmple(needs, area);
  const bool narrow = needs.AnalyserCount == 0 && needs.WithColumn().width() > area.width() &&
                      Holds(area, needs.WithRow());
  const bool row = sides || narrow;
  const int plots = row ? room.width() : room.width() - needs.Column.width();
  const int left = sides ? std::max(ShareOfScopes(needs, plots), needs.Row.width())
                         : ShareOfScopes(needs, plots);
  const int height = row ? room.height() - needs.Row.height() : room.height();
  const QPoint small = row ? corner + QPoint(0, height) : corner + QPoint(plots, 0);
  return {MakeShelf(corner, left, height, needs.ScopeCount),
          MakeShelf(corner + QPoint(left, 0), plots - left, room.height(), needs.AnalyserCount),
          MakeShelf(small, needs.Column.width(), room.height(), 1), row};
}

}  // namespace

std::vector<QRect> TileArea(const std::vector<Tile>& tiles, const QSize& area) {
  Shelves shelves = MakeShelves(Needs(tiles), area);
  std::vector<QRect> places;
  for (const Tile& tile : tiles) {
    if (tile.Role == TileRole::Scope) {
      places.push_back(shelves.Scopes.Share(tile.Least));
    } else if (tile.Role == TileRole::Analyser) {
      places.push_back(shelves.Analysers.Share(tile.Least));
    } else if (shelves.Row) {
      places.push_back(shelves.Small.TakeBeside(QSize(tile.Least.width(), tile.Wanted.height())));
    } else {
      places.push_back(shelves.Small.Take(tile.Wanted.height()));
    }
  }
  return places;
}

bool HasAmpleRoom(const std::vector<Tile>& tiles, const QSize& area) {
  return IsAmple(Needs(tiles), area);
}

QSize LeastTiledArea(const std::vector<Tile>& tiles, const QSize& proportions) {
  const Needs needs(tiles);
  const auto area = [&](const QSize& needed) {
    return proportions.scaled(needed, Qt::KeepAspectRatioByExpanding);
  };
  if (needs.AnalyserCount > 0) return area(needs.Sides());
  const QSize beside = area(needs.WithColumn());
  const QSize below = area(needs.WithRow());
  return below.width() < beside.width() ? below : beside;
}

}  // namespace torvane
