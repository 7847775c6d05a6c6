#pragma once

#include <vector>

namespace torvane::drawing {

/// A net in a gap between two columns: the heights at which it comes to the gap's left and right
/// edge. Where they are not one height, it has an upright piece on a track.
struct GapNet {
  int Net = -1;
  std::vector<int> Left;
  std::vector<int> Right;
  int Track = -1;  ///< from 0, left to right; -1 for a line that goes straight through

  int Top() const;
  int Bottom() const;
};

/// Gives the nets their tracks so that few lines cross and none lie upon each other; returns how
/// many tracks there are.
int GiveTracks(std::vector<GapNet>& nets);

}  // namespace torvane::drawing
