#include "drawing/folds.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace torvane::drawing {

namespace {

// A drawing of this size can be read on a small screen, and on a page on its side.
constexpr double PageWidth = 1500.0;
constexpr double PageHeight = 900.0;
constexpr double Readable = 0.85;   // of that size
constexpr double WidestRow = 2.0;   // pages
constexpr double Narrower = 0.95;   // what is tried next
constexpr int MostBetween = 30;     // of the room that signs leave one below the other
constexpr int CostOfLine = 40;      // that is led round, in units of height
constexpr double CostOfRest = 400;  // of a row that is left empty

struct Folding {
  std::vector<int> Behind;
  int Width = 0;
  int Height = 0;

  double Scale() const { return std::min(PageWidth / Width, PageHeight / Height); }
};

// The lowest one whose rows are no wider than the limit.
std::optional<Folding> Lowest(const std::vector<ColumnRoom>& columns, int limit) {
  constexpr int Unfolded = std::numeric_limits<int>::max() / 2;
  const std::size_t count = columns.size();
  std::vector<int> height(count + 1, Unfolded);  // of the rows before a column
  std::vector<std::size_t> begin(count + 1);     // of the last one of these
  std::vector<int> width(count + 1);
  height[0] = 0;
  for (std::size_t first = 0; first < count; ++first) {
    if (height[first] == Unfolded) continue;
    TakenHeights taken;
    const int led = first > 0 ? columns[first - 1].Lines : 0;
    for (std::size_t last = first; last < count; ++last) {
      if (columns[last].Right - columns[first].Left > limit) break;
      taken.Add(columns[last].Taken);
      const int lines = last + 1 < count ? columns[last].Lines : 0;
      const int wide = columns[last].Right - columns[first].Left + (led + lines) * BetweenTracks;
      if (wide > limit) continue;
      const int channel =
          last + 1 < count ? 2 * AroundChannel + lines * (BetweenTracks + CostOfLine) : 0;
      const double rest = static_cast<double>(limit - wide) / limit;
      const int high =
          height[first] + taken.Height() + channel + static_cast<int>(CostOfRest * rest * rest);
      if (high >= height[last + 1]) continue;
      height[last + 1] = high;
      begin[last + 1] = first;
      width[last + 1] = std::max(width[first], wide);
    }
  }
  if (height[count] == Unfolded) return {};
  Folding folding{{}, width[count], height[count]};
  for (std::size_t at = begin[count]; at > 0; at = begin[at]) {
    folding.Behind.insert(folding.Behind.begin(), static_cast<int>(at) - 1);
  }
  return folding;
}

}  // namespace

void TakenHeights::Add(int top, int bottom) {
  const auto first = std::find_if(taken_.begin(), taken_.end(),
                                  [&](const auto& span) { return span.second >= top; });
  auto end = first;
  for (; end != taken_.end() && end->first <= bottom; ++end) {
    top = std::min(top, end->first);
    bottom = std::max(bottom, end->second);
  }
  taken_.insert(taken_.erase(first, end), {top, bottom});
}

void TakenHeights::Add(const TakenHeights& other) {
  for (const auto& [top, bottom] : other.taken_) Add(top, bottom);
}

int TakenHeights::Height() const {
  return taken_.empty() ? 0 : Closed(taken_.back().second);
}

int TakenHeights::Closed(int y) const {
  int closed = 0;
  for (std::size_t k = 0; k < taken_.size(); ++k) {
    const auto [top, bottom] = taken_[k];
    if (k > 0) closed += std::min(top - taken_[k - 1].second, MostBetween);
    if (y <= bottom) return closed + y - top;
    closed += bottom - top;
  }
  return closed;
}

std::vector<int> Folds(const std::vector<ColumnRoom>& columns) {
  if (columns.empty()) return {};
  const double width = columns.back().Right - columns.front().Left;
  if (width * Readable <= PageWidth) return {};
  std::optional<Folding> best;
  double limit = std::min(width, WidestRow * PageWidth);
  while (true) {
    auto next = Lowest(columns, static_cast<int>(limit));
    if (!next) return best ? best->Behind : std::vector<int>();
    if (!best || next->Scale() > best->Scale()) best = std::move(next);
    limit *= Narrower;
  }
}

}  // namespace torvane::drawing
