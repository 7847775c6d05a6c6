#pragma once

#include <utility>
#include <vector>

namespace torvane::drawing {

/// The heights that a row's signs and lines take; more than a little room between them is left out.
class TakenHeights {
 public:
  void Add(int top, int bottom);
  void Add(const TakenHeights& other);

  /// Of all without the room left out.
  int Height() const;
  /// Where a height that was added comes to, from 0.
  int Closed(int y) const;

 private:
  std::vector<std::pair<int, int>> taken_;  ///< from above, none touches another
};

/// What stands in one column of a drawing in a single row, in units of the drawing.
struct ColumnRoom {
  int Left = 0;
  int Right = 0;
  TakenHeights Taken;
  int Lines = 0;  ///< that go through the gap behind it
};

// Lines that lead from a row's end to the beginning of the next one lie so far apart, and their
// channel between the rows keeps a distance from both.
inline constexpr int BetweenTracks = 14;
inline constexpr int AroundChannel = 20;

/// The columns behind which a drawing that is too wide to be read goes on in a new row: as it comes
/// out largest on a screen or a page, with few lines led round. Empty for one that is readable in
/// one row.
std::vector<int> Folds(const std::vector<ColumnRoom>& columns);

}  // namespace torvane::drawing
