#include "drawing/gap.h"

#include <algorithm>
#include <limits>

namespace torvane::drawing {

namespace {

constexpr int Overlap = 1000;  // what two lines upon each other are, in crossings
constexpr int Near = 6;        // lines at less than that lie upon each other
constexpr int Rounds = 20;

// What it costs when a's track is left of b's.
int CostOf(const GapNet& a, const GapNet& b) {
  int cost = 0;
  for (const int y : a.Right) {
    if (y > b.Top() && y < b.Bottom()) ++cost;
    for (const int other : b.Left) {
      if (std::abs(y - other) < Near) cost += Overlap;
    }
  }
  for (const int y : b.Left) {
    if (y > a.Top() && y < a.Bottom()) ++cost;
  }
  return cost;
}

// Neighbours change places while that helps.
void Order(std::vector<GapNet*>& nets) {
  bool changed = true;
  for (int round = 0; changed && round < Rounds; ++round) {
    changed = false;
    for (std::size_t k = 1; k < nets.size(); ++k) {
      if (CostOf(*nets[k], *nets[k - 1]) >= CostOf(*nets[k - 1], *nets[k])) continue;
      std::swap(nets[k], nets[k - 1]);
      changed = true;
    }
  }
}

bool Meets(const GapNet& a, const GapNet& b) {
  return a.Top() < b.Bottom() + Near && b.Top() < a.Bottom() + Near;
}

}  // namespace

int GapNet::Top() const {
  int top = std::numeric_limits<int>::max();
  for (const auto* const side : {&Left, &Right}) {
    for (const int y : *side) top = std::min(top, y);
  }
  return top;
}

int GapNet::Bottom() const {
  int bottom = std::numeric_limits<int>::min();
  for (const auto* const side : {&Left, &Right}) {
    for (const int y : *side) bottom = std::max(bottom, y);
  }
  return bottom;
}

int GiveTracks(std::vector<GapNet>& nets) {
  std::vector<GapNet*> upright;
  for (GapNet& net : nets) {
    if (net.Top() < net.Bottom()) upright.push_back(&net);
  }
  Order(upright);
  int tracks = 0;
  std::size_t first = 0;  // of the present track
  for (std::size_t k = 0; k < upright.size(); ++k) {
    const bool fits =
        k > 0 && std::none_of(upright.begin() + static_cast<std::ptrdiff_t>(first),
                              upright.begin() + static_cast<std::ptrdiff_t>(k),
                              [&](const GapNet* n) { return Meets(*n, *upright[k]); });
    if (!fits) {
      ++tracks;
      first = k;
    }
    upright[k]->Track = tracks - 1;
  }
  return tracks;
}

}  // namespace torvane::drawing
