#pragma once

#include <vector>

#include "drawing/folds.h"
#include "drawing/gap.h"
#include "drawing/placing.h"

namespace torvane::drawing {

/// The room between two columns, or its half before or behind a fold.
struct Strip {
  std::vector<GapNet> Nets;
  int Left = 0;
  int FirstTrack = 0;
  int Right = 0;

  /// Where the tracks' upright pieces stand.
  int TrackAt(int track) const { return FirstTrack + track * BetweenTracks; }
  /// A net's ends; null for one that does not come here.
  const GapNet* Of(int net) const;
};

/// A net's way from a row's end round to the beginning of the next one.
struct WayRound {
  int Net = -1;
  int Exit = 0;  ///< height at which it leaves the row
  int Entry = 0;
  int Out = 0;  ///< where it goes down behind the row's end
  int In = 0;   ///< and before the next one's beginning
  int Channel = 0;
};

/// The columns side by side, in as many rows as that takes to be read.
struct Rows {
  Heights At;  ///< of nodes and crossings, in their rows
  std::vector<int> ColumnAt;
  std::vector<int> ColumnWidth;
  std::vector<Strip> Before;                 ///< gap g at g + 1; at a fold its half before that
  std::vector<Strip> Behind;                 ///< at a fold the half behind it
  std::vector<std::vector<WayRound>> Round;  ///< at a fold those of the nets that go on
  int Width = 0;
};

/// Moves the nets' pins with what is moved.
Rows PlaceInRows(const Arrangement& arrangement, const std::vector<Shape>& shapes,
                 std::vector<Net>& nets, Heights heights);

}  // namespace torvane::drawing
