#include "drawing/rows.h"

#include <algorithm>

namespace torvane::drawing {

namespace {

constexpr int BeforeTracks = 14;  // from a column's edge to the first track
constexpr int BehindTracks = 26;  // from the last one on, where arrows have their heads
constexpr int StraightGap = 28;   // without a track

// From the left edge of what the tracks begin in to the next column.
int WidthBehind(int tracks) {
  return tracks > 0 ? (tracks - 1) * BetweenTracks + BehindTracks : BehindTracks - BetweenTracks;
}

class RowPlacer {
 public:
  RowPlacer(const Arrangement& arrangement, const std::vector<Shape>& shapes,
            std::vector<Net>& nets, Heights heights)
      : arrangement_(arrangement), shapes_(shapes), nets_(nets) {
    made_.At = std::move(heights);
    int columns = 0;
    for (const int column : arrangement.Columns) columns = std::max(columns, column + 1);
    made_.ColumnWidth.resize(At(columns));
    for (std::size_t k = 0; k < shapes.size(); ++k) {
      int& width = made_.ColumnWidth[ColumnOf(k)];
      width = std::max(width, shapes[k].Width);
    }
  }

  // In one row first; what is too wide then goes on below.
  Rows Make() {
    PlaceColumns();
    const std::vector<ColumnRoom> rooms = Rooms();
    folds_ = Folds(rooms);
    if (folds_.empty()) return std::move(made_);
    MoveDown(rooms);
    PlaceColumns();
    return std::move(made_);
  }

 private:
  std::size_t ColumnOf(std::size_t node) const { return At(arrangement_.Columns[node]); }
  bool IsFold(int gap) const {
    return std::find(folds_.begin(), folds_.end(), gap) != folds_.end();
  }

  void PlaceColumns() {
    CollectStrips();
    made_.ColumnAt.clear();
    made_.Width = 0;
    int x = 0;
    for (std::size_t gap = 0; gap < made_.Before.size(); ++gap) {
      Strip& strip = made_.Before[gap];
      const int tracks = GiveTracks(strip.Nets);
      const bool outermost = gap == 0 || gap + 1 == made_.Before.size();
      strip.Left = x;
      strip.FirstTrack = x + BeforeTracks;
      strip.Right = tracks > 0  ? strip.FirstTrack + WidthBehind(tracks)
                    : outermost ? x
                                : x + StraightGap;
      x = strip.Right;
      if (IsFold(static_cast<int>(gap) - 1)) {
        strip.Right = strip.TrackAt(tracks);
        x = PlaceFold(gap);
      }
      made_.Width = std::max(made_.Width, strip.Right);
      if (gap + 1 == made_.Before.size()) break;
      made_.ColumnAt.push_back(x);
      x += made_.ColumnWidth[gap];
    }
  }

  // What leaves a row highest turns outermost, so that none crosses another. Returns where the next
  // row's first column stands.
  int PlaceFold(std::size_t gap) {
    std::vector<WayRound>& round = made_.Round[gap];
    const int exit = made_.Before[gap].Right;
    const auto fold = std::find(folds_.begin(), folds_.end(), static_cast<int>(gap) - 1);
    for (WayRound& way : round) {
      const auto below = [&](int WayRound::*height) {
        return BetweenTracks * static_cast<int>(std::count_if(round.begin(), round.end(),
                                                              [&](const WayRound& other) {
                                                                return other.*height > way.*height;
                                                              }));
      };
      way.Out = exit + below(&WayRound::Exit);
      way.In = below(&WayRound::Entry);
      way.Channel =
          channels_[static_cast<std::size_t>(fold - folds_.begin())] + below(&WayRound::Exit);
      made_.Width = std::max(made_.Width, way.Out);
    }
    Strip& entry = made_.Behind[gap];
    const int tracks = GiveTracks(entry.Nets);
    entry.Left = entry.FirstTrack = static_cast<int>(round.size()) * BetweenTracks;
    entry.Right = entry.FirstTrack + WidthBehind(tracks);
    return entry.Right;
  }

  void CollectStrips() {
    made_.Before.assign(made_.ColumnWidth.size() + 1, {});  // the first one is before all columns
    made_.Behind = made_.Before;
    made_.Round.assign(made_.Before.size(), {});
    std::size_t crossing = 0;
    for (std::size_t k = 0; k < nets_.size(); ++k) {
      const Net& net = nets_[k];
      for (int gap = net.FirstGap; gap <= net.LastGap; ++gap) {
        GapNet ends;
        ends.Net = static_cast<int>(k);
        const std::size_t within = crossing + At(gap - net.FirstGap);
        if (gap > net.FirstGap) ends.Left.push_back(made_.At.Crossings[within - 1]);
        if (gap < net.LastGap) ends.Right.push_back(made_.At.Crossings[within]);
        for (const Pin& pin : net.Pins) {
          if (Net::GapOf(pin, arrangement_) != gap) continue;
          (pin.AtRight ? ends.Left : ends.Right).push_back(made_.At.Nodes[At(pin.Node)] + pin.Y);
        }
        AddToStrips(gap, std::move(ends));
      }
      crossing += At(net.LastGap - net.FirstGap);
    }
  }

  // At a fold a net that goes on has one end at the row's edge, on the height of its first one.
  void AddToStrips(int gap, GapNet ends) {
    const std::size_t strip = At(gap + 1);
    if (!IsFold(gap)) {
      made_.Before[strip].Nets.push_back(std::move(ends));
      return;
    }
    GapNet exit = ends;
    GapNet entry = ends;
    exit.Right.clear();
    entry.Left.clear();
    if (!ends.Left.empty() && !ends.Right.empty()) {
      exit.Right.push_back(ends.Left[0]);
      entry.Left.push_back(ends.Right[0]);
      WayRound way;
      way.Net = ends.Net;
      way.Exit = ends.Left[0];
      way.Entry = ends.Right[0];
      made_.Round[strip].push_back(way);
    }
    if (!ends.Left.empty()) made_.Before[strip].Nets.push_back(std::move(exit));
    if (!ends.Right.empty()) made_.Behind[strip].Nets.push_back(std::move(entry));
  }

  std::vector<ColumnRoom> Rooms() const {
    std::vector<ColumnRoom> rooms(made_.ColumnAt.size());
    for (std::size_t k = 0; k < rooms.size(); ++k) {
      rooms[k].Left = made_.ColumnAt[k];
      rooms[k].Right = made_.ColumnAt[k] + made_.ColumnWidth[k];
    }
    for (std::size_t k = 0; k < shapes_.size(); ++k) {
      const int y = made_.At.Nodes[k];
      rooms[ColumnOf(k)].Taken.Add(y, y + shapes_[k].Height);
    }
    for (std::size_t gap = 0; gap < made_.Before.size(); ++gap) {
      for (const GapNet& net : made_.Before[gap].Nets) {
        for (const int y : net.Left) rooms[gap - 1].Taken.Add(y - Clear, y + Clear);
        for (const int y : net.Right) rooms[gap].Taken.Add(y - Clear, y + Clear);
        if (!net.Left.empty() && !net.Right.empty()) ++rooms[gap - 1].Lines;
      }
    }
    return rooms;
  }

  void MoveDown(const std::vector<ColumnRoom>& rooms) {
    std::vector<TakenHeights> rows(folds_.size() + 1);
    std::vector<std::size_t> rowOf;
    for (const ColumnRoom& room : rooms) {
      const bool begins = !rowOf.empty() && IsFold(static_cast<int>(rowOf.size()) - 1);
      rowOf.push_back(rowOf.empty() ? 0 : rowOf.back() + (begins ? 1 : 0));
      rows[rowOf.back()].Add(room.Taken);
    }
    std::vector<int> tops{0};
    for (std::size_t row = 0; row < folds_.size(); ++row) {
      channels_.push_back(tops.back() + rows[row].Height() + AroundChannel);
      tops.push_back(channels_.back() + (rooms[At(folds_[row])].Lines - 1) * BetweenTracks +
                     AroundChannel);
    }
    const auto moved = [&](int column, int y) {
      const std::size_t row = rowOf[At(column)];
      return tops[row] + rows[row].Closed(y);
    };
    // A line that comes from below may leave its column where the sign is long past.
    for (Net& net : nets_) {
      for (Pin& pin : net.Pins) {
        const int column = arrangement_.Columns[At(pin.Node)];
        const int y = made_.At.Nodes[At(pin.Node)];
        pin.Y = moved(column, y + pin.Y) - moved(column, y);
      }
    }
    for (std::size_t k = 0; k < shapes_.size(); ++k) {
      made_.At.Nodes[k] = moved(arrangement_.Columns[k], made_.At.Nodes[k]);
    }
    const auto crossings = Crossings(nets_);
    for (std::size_t k = 0; k < crossings.size(); ++k) {
      made_.At.Crossings[k] = moved(crossings[k].Column, made_.At.Crossings[k]);
    }
  }

  const Arrangement& arrangement_;
  const std::vector<Shape>& shapes_;
  std::vector<Net>& nets_;
  std::vector<int> folds_;     ///< gaps in which a row ends
  std::vector<int> channels_;  ///< below each row
  Rows made_;
};

}  // namespace

const GapNet* Strip::Of(int net) const {
  const auto found =
      std::find_if(Nets.begin(), Nets.end(), [&](const GapNet& other) { return other.Net == net; });
  return found == Nets.end() ? nullptr : &*found;
}

Rows PlaceInRows(const Arrangement& arrangement, const std::vector<Shape>& shapes,
                 std::vector<Net>& nets, Heights heights) {
  return RowPlacer(arrangement, shapes, nets, std::move(heights)).Make();
}

}  // namespace torvane::drawing
