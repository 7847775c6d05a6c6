#include "drawing/placing.h"

#include <algorithm>

#include "drawing/gap.h"

namespace torvane::drawing {

namespace {

constexpr int BeforeTracks = 14;  // from a column's edge to the first track
constexpr int BehindTracks = 26;  // from the last one on, where arrows have their heads
constexpr int BetweenTracks = 14;
constexpr int Clear = 8;         // between a line and what it passes
constexpr int HeadRoom = 14;     // for an arrow's head
constexpr int StraightGap = 28;  // without a track

class Placer {
 public:
  Placer(const BlockGraph& graph, const Arrangement& arrangement, const std::vector<Shape>& shapes,
         const std::vector<Net>& nets, Heights heights)
      : graph_(graph),
        arrangement_(arrangement),
        shapes_(shapes),
        nets_(nets),  // a copy
        heights_(std::move(heights)) {}

  Placing Make() {
    MoveToTop();
    for (std::size_t k = 0; k < nets_.size(); ++k) Straighten(k);
    CollectGaps();
    PlaceColumns();
    for (std::size_t k = 0; k < shapes_.size(); ++k) {
      const auto column = At(arrangement_.Columns[k]);
      const int x = columnAt_[column] + (columnWidth_[column] - shapes_[k].Width) / 2;
      placing_.Nodes.push_back({x, heights_.Nodes[k]});
      placing_.Height = std::max(placing_.Height, heights_.Nodes[k] + shapes_[k].Height);
    }
    for (std::size_t k = 0; k < nets_.size(); ++k) AddRoute(static_cast<int>(k));
    return std::move(placing_);
  }

 private:
  void MoveToTop() {
    if (heights_.Nodes.empty()) return;
    int top = *std::min_element(heights_.Nodes.begin(), heights_.Nodes.end());
    for (const int y : heights_.Crossings) top = std::min(top, y);
    for (int& y : heights_.Nodes) y -= top;
    for (int& y : heights_.Crossings) {
      y -= top;
      placing_.Height = std::max(placing_.Height, y + 8);
    }
  }

  int HeightOf(const Pin& pin) const { return heights_.Nodes[At(pin.Node)] + pin.Y; }

  // A line that comes from below or above goes as far as below or above the sign on its own height,
  // where nothing stands in its way.
  void Straighten(std::size_t index) {
    Net& net = nets_[index];
    firstCrossing_.push_back(crossings_);
    for (Pin& pin : net.Pins) {
      if (pin.How == Pin::Way::Straight) continue;
      const auto height = OnlyOtherEnd(net, pin);
      const int own = HeightOf(pin);
      if (!height || (*height > own) != (pin.How == Pin::Way::FromBelow)) continue;
      if (IsFree(pin, std::min(own, *height), std::max(own, *height))) pin.Y += *height - own;
    }
    crossings_ += At(net.LastGap - net.FirstGap);
  }

  // Height of what the pin is joined to in its gap, when that is one end at the gap's other edge.
  std::optional<int> OnlyOtherEnd(const Net& net, const Pin& pin) const {
    const int gap = Net::GapOf(pin, arrangement_);
    std::optional<int> height;
    const auto add = [&](bool atLeft, int y) {
      if (atLeft == pin.AtRight || height) return false;
      height = y;
      return true;
    };
    const std::size_t before = firstCrossing_.back() + At(gap - net.FirstGap);
    if (gap > net.FirstGap && !add(true, heights_.Crossings[before - 1])) return {};
    if (gap < net.LastGap && !add(false, heights_.Crossings[before])) return {};
    for (const Pin& other : net.Pins) {
      if (&other == &pin || Net::GapOf(other, arrangement_) != gap) continue;
      if (!add(other.AtRight, HeightOf(other))) return {};
    }
    return height;
  }

  bool IsFree(const Pin& pin, int top, int bottom) const {
    const int column = arrangement_.Columns[At(pin.Node)];
    for (std::size_t k = 0; k < shapes_.size(); ++k) {
      if (static_cast<int>(k) == pin.Node || arrangement_.Columns[k] != column) continue;
      const int y = heights_.Nodes[k];
      if (y < bottom + Clear && y + shapes_[k].Height > top - Clear) return false;
    }
    const Shape& own = shapes_[At(pin.Node)];
    return std::none_of(own.Pins.begin(), own.Pins.end(), [&](const Pin& other) {
      const int y = HeightOf(other);
      return other.Y != pin.Y && y > top - Clear && y < bottom + Clear;
    });
  }

  void CollectGaps() {
    int columns = 0;
    for (const int column : arrangement_.Columns) columns = std::max(columns, column + 1);
    columnWidth_.resize(At(columns));
    for (std::size_t k = 0; k < shapes_.size(); ++k) {
      int& width = columnWidth_[At(arrangement_.Columns[k])];
      width = std::max(width, shapes_[k].Width);
    }
    gaps_.resize(At(columns + 1));  // the first one lies before the first column
    std::size_t crossing = 0;
    for (std::size_t k = 0; k < nets_.size(); ++k) {
      const Net& net = nets_[k];
      for (int gap = net.FirstGap; gap <= net.LastGap; ++gap) {
        GapNet ends;
        ends.Net = static_cast<int>(k);
        const auto within = At(gap - net.FirstGap);
        if (gap > net.FirstGap) ends.Left.push_back(heights_.Crossings[crossing + within - 1]);
        if (gap < net.LastGap) ends.Right.push_back(heights_.Crossings[crossing + within]);
        for (const Pin& pin : net.Pins) {
          if (Net::GapOf(pin, arrangement_) != gap) continue;
          (pin.AtRight ? ends.Left : ends.Right).push_back(HeightOf(pin));
        }
        gaps_[At(gap + 1)].push_back(std::move(ends));
      }
      crossing += At(net.LastGap - net.FirstGap);
    }
  }

  void PlaceColumns() {
    int x = 0;
    for (std::size_t gap = 0; gap < gaps_.size(); ++gap) {
      const int tracks = GiveTracks(gaps_[gap]);
      gapAt_.push_back(x);
      const bool outermost = gap == 0 || gap + 1 == gaps_.size();
      if (tracks > 0) {
        x += BeforeTracks + (tracks - 1) * BetweenTracks + BehindTracks;
      } else if (!outermost) {
        x += StraightGap;
      }
      if (gap + 1 == gaps_.size()) break;
      columnAt_.push_back(x);
      x += columnWidth_[gap];
    }
    placing_.Width = x;
  }

  int LeftEdge(const Pin& pin) const { return placing_.Nodes[At(pin.Node)].X; }

  void AddRoute(int index) {
    const Net& net = nets_[At(index)];
    Route route;
    route.Net = index;
    for (int gap = net.FirstGap; gap <= net.LastGap; ++gap) AddGap(net, gap, route);
    for (const Pin& pin : net.Pins) AddEnd(pin, route);
    for (int column = net.FirstGap + 1; column <= net.LastGap; ++column) {
      const int y = heights_.Crossings[firstCrossing_[At(index)] + At(column - net.FirstGap - 1)];
      const int x = columnAt_[At(column)];
      route.Segments.push_back({{x, y}, {x + columnWidth_[At(column)], y}});
    }
    placing_.Routes.push_back(std::move(route));
  }

  void AddGap(const Net& net, int gap, Route& route) const {
    const auto& nets = gaps_[At(gap + 1)];
    const auto ends = std::find_if(nets.begin(), nets.end(), [&](const GapNet& other) {
      return &nets_[At(other.Net)] == &net;
    });
    const int left = gapAt_[At(gap + 1)];
    const int right = At(gap + 1) < columnAt_.size() ? columnAt_[At(gap + 1)] : placing_.Width;
    if (ends->Track < 0) {
      if (!ends->Left.empty() && !ends->Right.empty()) {
        route.Segments.push_back({{left, ends->Top()}, {right, ends->Top()}});
      }
      return;
    }
    const int x = left + BeforeTracks + ends->Track * BetweenTracks;
    route.Segments.push_back({{x, ends->Top()}, {x, ends->Bottom()}});
    for (const int y : ends->Left) route.Segments.push_back({{left, y}, {x, y}});
    for (const int y : ends->Right) route.Segments.push_back({{x, y}, {right, y}});
    AddDots(*ends, x, route);
  }

  static void AddDots(const GapNet& ends, int x, Route& route) {
    std::vector<int> heights = ends.Left;
    heights.insert(heights.end(), ends.Right.begin(), ends.Right.end());
    std::sort(heights.begin(), heights.end());
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
    for (const int y : heights) {
      const auto lines = std::count(ends.Left.begin(), ends.Left.end(), y) +
                         std::count(ends.Right.begin(), ends.Right.end(), y) +
                         (y > ends.Top() ? 1 : 0) + (y < ends.Bottom() ? 1 : 0);
      if (lines > 2) route.Dots.push_back({x, y});
    }
  }

  // From the column's edge to the sign.
  void AddEnd(const Pin& pin, Route& route) const {
    const Shape& shape = shapes_[At(pin.Node)];
    const Point frame = placing_.Nodes[At(pin.Node)];
    const int y = frame.Y + pin.Y;
    const auto column = At(arrangement_.Columns[At(pin.Node)]);
    const int edge = columnAt_[column] + (pin.AtRight ? columnWidth_[column] : 0);
    const bool circle = IsCircle(pin.Node);
    const int inset = circle ? shape.Width / 2 - SumRadius : 0;
    const int sign = pin.AtRight ? frame.X + shape.Width - inset : frame.X + inset;
    if (pin.How == Pin::Way::Straight) {
      // A block as wide as its column has its arrows' heads in the gap.
      const int from = pin.Source ? edge : edge + (pin.AtRight ? HeadRoom : -HeadRoom);
      const Segment line{{from, y}, {sign, y}};
      const bool label = graph_.Nodes[At(pin.Node)].What == Node::Sign::Label;
      (pin.Source || label ? route.Segments : route.Arrows).push_back(line);
      return;
    }
    const int x = frame.X + pin.X;
    const int end = frame.Y + (pin.How == Pin::Way::FromBelow ? shape.Bottom : shape.Top);
    route.Segments.push_back({{edge, y}, {x, y}});
    route.Arrows.push_back({{x, y}, {x, end}});
  }

  bool IsCircle(int node) const {
    const Node::Sign what = graph_.Nodes[At(node)].What;
    return what == Node::Sign::Sum || what == Node::Sign::Product;
  }

  const BlockGraph& graph_;
  const Arrangement& arrangement_;
  const std::vector<Shape>& shapes_;
  std::vector<Net> nets_;
  Heights heights_;
  std::vector<std::size_t> firstCrossing_;  ///< of each net
  std::size_t crossings_ = 0;
  std::vector<std::vector<GapNet>> gaps_;  ///< gap g at g + 1
  std::vector<int> gapAt_;
  std::vector<int> columnAt_;
  std::vector<int> columnWidth_;
  Placing placing_;
};

}  // namespace

Placing Place(const BlockGraph& graph, const Arrangement& arrangement,
              const std::vector<Shape>& shapes, const std::vector<Net>& nets, Heights heights) {
  return Placer(graph, arrangement, shapes, nets, std::move(heights)).Make();
}

}  // namespace torvane::drawing
