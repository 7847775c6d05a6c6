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
  QSize Flat{};    ///< a small one that is given this width needs no more than this height
  QSize Folded{};  ///< a plot that folds some of its controls makes do with this
};

/// Places of the windows on an area, in their order. Plots stand one above the other or, where that
/// is too low for them, side by side; analysers to the right of the scopes. The small ones stand in
/// lines below the scopes, or in a column to the right of them where that leaves these more room
/// and there are no analysers. Where not even a scope and one analyser find room, the analysers
/// fold their controls, then the scopes too; where that does not help, the analysers cover the
/// area.
std::vector<QRect> TileArea(const std::vector<Tile>& tiles, const QSize& area);

/// Whether each place is within the area and covers no other.
bool AreApart(const std::vector<QRect>& places, const QSize& area);

/// Whether all find room together, with plots that are comfortably wide.
bool HasAmpleRoom(const std::vector<Tile>& tiles, const QSize& area);

/// The smallest area of the given proportions on which no window covers another.
QSize LeastTiledArea(const std::vector<Tile>& tiles, const QSize& proportions);

}  // namespace torvane
