#pragma once

#include <QRect>
#include <vector>

namespace torvane {

/// What a window needs in a tiling. Scopes take what room there is, others what they need.
struct Tile {
  bool IsScope;
  QSize Least;
  QSize Wanted;
};

/// Places of the windows on an area, in their order. Scopes stand one above the other, the others
/// in a column to the right of them or, where that is too narrow but high enough, in a row below.
std::vector<QRect> TileArea(const std::vector<Tile>& tiles, const QSize& area);

/// The smallest area of the given proportions on which no window covers another.
QSize LeastTiledArea(const std::vector<Tile>& tiles, const QSize& proportions);

}  // namespace torvane
