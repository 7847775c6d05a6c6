#include "ui/desk/tiling.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr int Gap = 4;                 // between windows and around them, pixels
constexpr int ComfortableWidth = 600;  // of a window with a plot beside other plots
constexpr double ScopesShare = 0.56;   // of the width of all plots: constants stand beside theirs
constexpr int GrowthStep = 8;          // in the search for an area

using Tiles = std::vector<Tile>;
using Places = std::vector<QRect>;

// What windows need one above the other or side by side, a gap after each.
QSize StackOf(const Tiles& tiles, TileRole role) {
  QSize stack(0, 0);
  for (const Tile& tile : tiles) {
    if (tile.Role != role) continue;
    stack = {std::max(stack.width(), tile.Least.width() + Gap),
             stack.height() + tile.Least.height() + Gap};
  }
  return stack;
}

int WidthInARow(const Tiles& tiles, TileRole role) {
  int width = 0;
  for (const Tile& tile : tiles) {
    if (tile.Role == role) width += tile.Least.width() + Gap;
  }
  return width;
}

int CountOf(const Tiles& tiles, TileRole role) {
  return static_cast<int>(std::count_if(tiles.begin(), tiles.end(),
                                        [&](const Tile& tile) { return tile.Role == role; }));
}

int HeightAt(const Tile& tile, int width) {
  const bool flat = !tile.Flat.isEmpty() && width >= tile.Flat.width();
  return flat ? tile.Flat.height() : tile.Wanted.height();
}

// Small windows side by side, those that can be flat in lines of their own.
struct Line {
  std::vector<std::size_t> Members;
  int Least = 0;  // width with gaps
};

// At most so many windows in a line.
std::vector<Line> LinesOf(const Tiles& tiles, int width, std::size_t most) {
  std::vector<Line> lines;
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    if (tiles[i].Role != TileRole::Small) continue;
    const int least = tiles[i].Least.width() + Gap;
    const auto joins = [&](const Line& line) {
      return tiles[line.Members.front()].Flat.isEmpty() == tiles[i].Flat.isEmpty() &&
             line.Least + least <= width && line.Members.size() < most;
    };
    if (lines.empty() || !joins(lines.back())) lines.emplace_back();
    lines.back().Members.push_back(i);
    lines.back().Least += least;
  }
  return lines;
}

// With as few lines as the width allows, and these alike.
std::vector<Line> LinesOf(const Tiles& tiles, int width) {
  std::vector<Line> best = LinesOf(tiles, width, tiles.size());
  for (std::size_t most = tiles.size(); most > 1; --most) {
    std::vector<Line> lines = LinesOf(tiles, width, most - 1);
    if (lines.size() > best.size()) break;
    best = std::move(lines);
  }
  return best;
}

// The windows of a line share its width.
int ShareOf(const Line& line, int width) {
  return width / static_cast<int>(line.Members.size()) - Gap;
}

int HeightOf(const Line& line, const Tiles& tiles, int width) {
  int height = 0;
  for (const std::size_t i : line.Members) {
    height = std::max(height, HeightAt(tiles[i], ShareOf(line, width)) + Gap);
  }
  return height;
}

int HeightOfLines(const Tiles& tiles, int width) {
  int height = 0;
  for (const Line& line : LinesOf(tiles, width)) height += HeightOf(line, tiles, width);
  return height;
}

// A room begins with a window and ends with a gap.
void PlaceLines(Places& places, const Tiles& tiles, const QRect& room) {
  int top = room.top();
  for (const Line& line : LinesOf(tiles, room.width())) {
    const int share = ShareOf(line, room.width());
    int left = room.left();
    for (const std::size_t i : line.Members) {
      const int width = std::max(share, tiles[i].Least.width());
      places[i] = QRect(left, top, width, HeightAt(tiles[i], width));
      left += width + Gap;
    }
    top += HeightOf(line, tiles, room.width());
  }
}

void PlaceColumn(Places& places, const Tiles& tiles, const QRect& room) {
  int top = room.top();
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    if (tiles[i].Role != TileRole::Small) continue;
    places[i] = QRect(room.left(), top, room.width() - Gap, tiles[i].Wanted.height());
    top += tiles[i].Wanted.height() + Gap;
  }
}

// Plots of a kind share a room.
void PlacePlots(Places& places, const Tiles& tiles, TileRole role, const QRect& room) {
  const bool stacked = StackOf(tiles, role).height() <= room.height();
  const int count = std::max(CountOf(tiles, role), 1);
  const QSize share(stacked ? room.width() - Gap : room.width() / count - Gap,
                    stacked ? room.height() / count - Gap : room.height() - Gap);
  QPoint at = room.topLeft();
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    if (tiles[i].Role != role) continue;
    places[i] = QRect(at, share.expandedTo(tiles[i].Least));
    at += stacked ? QPoint(0, places[i].height() + Gap) : QPoint(places[i].width() + Gap, 0);
  }
}

QRect RoomOn(const QSize& area) {
  return QRect(Gap, Gap, area.width() - Gap, area.height() - Gap);
}

void PlaceAbove(Places& places, const Tiles& tiles, TileRole role, const QRect& room) {
  const int lines = HeightOfLines(tiles, room.width());
  PlacePlots(places, tiles, role, room.adjusted(0, 0, 0, -lines));
  PlaceLines(places, tiles, room.adjusted(0, room.height() - lines, 0, 0));
}

// One kind of plot, and the small ones beside or below it.
Places PlaceOneKind(const Tiles& tiles, TileRole role, const QSize& area) {
  const QRect room = RoomOn(area);
  const int column = StackOf(tiles, TileRole::Small).width();
  Places beside(tiles.size());
  PlacePlots(beside, tiles, role, room.adjusted(0, 0, -column, 0));
  PlaceColumn(beside, tiles, room.adjusted(room.width() - column, 0, 0, 0));
  Places below(tiles.size());
  PlaceAbove(below, tiles, role, room);
  if (!AreApart(below, area)) return beside;
  const auto plots = [&](const QSize& size) { return size.width() * size.height(); };
  const int low = HeightOfLines(tiles, room.width());
  const bool larger =
      plots({room.width(), room.height() - low}) >= plots({room.width() - column, room.height()});
  return larger || !AreApart(beside, area) ? below : beside;
}

// Scopes with the small ones below them, and analysers to the right.
Places PlaceBothKinds(const Tiles& tiles, const QSize& area) {
  const QRect room = RoomOn(area);
  const QSize stack = StackOf(tiles, TileRole::Analyser);
  const bool stacked = stack.height() <= room.height();
  const int right = stacked ? stack.width() : WidthInARow(tiles, TileRole::Analyser);
  const int scopes = StackOf(tiles, TileRole::Scope).width();
  const int least = stacked ? scopes : std::max(scopes, ComfortableWidth + Gap);
  const int share = static_cast<int>(ScopesShare * room.width());
  const int left = std::max(std::min(share, room.width() - right), least);
  Places places(tiles.size());
  PlaceAbove(places, tiles, TileRole::Scope, room.adjusted(0, 0, left - room.width(), 0));
  PlacePlots(places, tiles, TileRole::Analyser, room.adjusted(left, 0, 0, 0));
  return places;
}

// Those of some kinds with their controls folded.
Tiles Folded(Tiles tiles, const std::vector<TileRole>& folding) {
  for (Tile& tile : tiles) {
    const bool folds = std::find(folding.begin(), folding.end(), tile.Role) != folding.end();
    if (folds && !tile.Folded.isEmpty()) tile.Least = tile.Folded;
  }
  return tiles;
}

// Controls are not folded to bring one window more to the screen.
bool NeedsFolding(const Tiles& tiles, const QSize& area) {
  Tiles pair;
  for (const TileRole role : {TileRole::Scope, TileRole::Analyser}) {
    pair.push_back(*std::find_if(tiles.begin(), tiles.end(),
                                 [&](const Tile& tile) { return tile.Role == role; }));
  }
  return !AreApart(PlaceBothKinds(pair, area), area);
}

// The analysers cover the others.
Places PlaceInFront(const Tiles& tiles, const QSize& area) {
  Tiles behind;
  std::copy_if(tiles.begin(), tiles.end(), std::back_inserter(behind),
               [](const Tile& tile) { return tile.Role != TileRole::Analyser; });
  const Places found = PlaceOneKind(behind, TileRole::Scope, area);
  Places places;
  auto next = found.begin();
  for (const Tile& tile : tiles) {
    const QSize whole = area.expandedTo(tile.Least);
    places.push_back(tile.Role == TileRole::Analyser ? QRect(QPoint(), whole) : *next++);
  }
  return places;
}

}  // namespace

bool AreApart(const std::vector<QRect>& places, const QSize& area) {
  const QRect room(QPoint(), area);
  for (auto place = places.begin(); place != places.end(); ++place) {
    const auto covers = [&](const QRect& other) { return other.intersects(*place); };
    if (!room.contains(*place) || std::any_of(places.begin(), place, covers)) return false;
  }
  return true;
}

std::vector<QRect> TileArea(const std::vector<Tile>& tiles, const QSize& area) {
  if (CountOf(tiles, TileRole::Analyser) == 0) return PlaceOneKind(tiles, TileRole::Scope, area);
  if (CountOf(tiles, TileRole::Scope) == 0) {
    Places places = PlaceOneKind(tiles, TileRole::Analyser, area);
    return AreApart(places, area) ? places : PlaceInFront(tiles, area);
  }
  std::vector<std::vector<TileRole>> foldings{{}};
  if (NeedsFolding(tiles, area))
    foldings = {{TileRole::Analyser}, {TileRole::Analyser, TileRole::Scope}};
  for (const std::vector<TileRole>& folding : foldings) {
    Places places = PlaceBothKinds(Folded(tiles, folding), area);
    if (AreApart(places, area)) return places;
  }
  return PlaceInFront(tiles, area);
}

bool HasAmpleRoom(const std::vector<Tile>& tiles, const QSize& area) {
  const std::vector<QRect> places = TileArea(tiles, area);
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    if (tiles[i].Role != TileRole::Small && places[i].width() < ComfortableWidth) return false;
  }
  return AreApart(places, area);
}

QSize LeastTiledArea(const std::vector<Tile>& tiles, const QSize& proportions) {
  for (int width = GrowthStep;; width += GrowthStep) {
    const QSize area(width, width * proportions.height() / proportions.width());
    if (AreApart(TileArea(tiles, area), area)) return area;
  }
}

}  // namespace torvane
