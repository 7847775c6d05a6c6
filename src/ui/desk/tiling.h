#pragma once

#include <QRect>
#include <vector>

namespace torvane {

/// How a window shares an area: scopes and analysers take what room there is, others what they
/// need.
enum class TileRole { Scope, Analyser, Small };

/// What a window needs in a tiling.
struct Tile {
  TileRole Role;
  QSize Least;
  QSize Wanted;
};

/// Places of the windows on an area, in their order. Scopes stand one above the other, the small
/// ones in a column to the right of them or, where that is too narrow but high enough, in a row
/// below. Analysers have a column between the two where there is ample room; else they have the
/// right side, and the others share the left one.
std::vector<QRect> TileArea(const std::vector<Tile>& tiles, const QSize& area);

/// Whether scopes, analysers and small windows find room side by side, with plots that are
/// comfortably wide.
bool HasAmpleRoom(const std::vector<Tile>& tiles, const QSize& area);

/// The smallest area of the given proportions on which no window covers another.
QSize LeastTiledArea(const std::vector<Tile>& tiles, const QSize& proportions);

}  // namespace torvane
