#include "drawing/placing.h"

#include <algorithm>

#include "drawing/rows.h"
#include "drawing/straighten.h"

namespace torvane::drawing {

namespace {

constexpr int HeadRoom = 14;  // for an arrow's head

class Placer {
 public:
  Placer(const BlockGraph& graph, const Arrangement& arrangement, const std::vector<Shape>& shapes,
         const std::vector<Net>& nets)
      : graph_(graph), arrangement_(arrangement), shapes_(shapes), nets_(nets) {}  // a copy

  Placing Make(Heights heights) {
    MoveToTop(heights);
    Straighten(arrangement_, shapes_, heights, nets_);
    rows_ = PlaceInRows(arrangement_, shapes_, nets_, std::move(heights));
    placing_.Width = rows_.Width;
    for (std::size_t k = 0; k < shapes_.size(); ++k) {
      const auto column = At(arrangement_.Columns[k]);
      const int x = rows_.ColumnAt[column] + (rows_.ColumnWidth[column] - shapes_[k].Width) / 2;
      const int y = rows_.At.Nodes[k];
      placing_.Nodes.push_back({x, y});
      placing_.Height = std::max(placing_.Height, y + shapes_[k].Height);
    }
    for (const int y : rows_.At.Crossings) placing_.Height = std::max(placing_.Height, y + Clear);
    for (std::size_t k = 0; k < nets_.size(); ++k) AddRoute(static_cast<int>(k));
    return std::move(placing_);
  }

 private:
  static void MoveToTop(Heights& heights) {
    if (heights.Nodes.empty()) return;
    int top = *std::min_element(heights.Nodes.begin(), heights.Nodes.end());
    for (const int y : heights.Crossings) top = std::min(top, y);
    for (int& y : heights.Nodes) y -= top;
    for (int& y : heights.Crossings) y -= top;
  }

  void AddRoute(int index) {
    const Net& net = nets_[At(index)];
    Route route;
    route.Net = index;
    for (int gap = net.FirstGap; gap <= net.LastGap; ++gap) AddGap(net, gap, route);
    for (const Pin& pin : net.Pins) AddEnd(pin, route);
    for (int column = net.FirstGap + 1; column <= net.LastGap; ++column) {
      const int y = rows_.At.Crossings[crossings_++];
      const int x = rows_.ColumnAt[At(column)];
      route.Segments.push_back({{x, y}, {x + rows_.ColumnWidth[At(column)], y}});
    }
    placing_.Routes.push_back(std::move(route));
  }

  void AddGap(const Net& net, int gap, Route& route) const {
    const std::size_t strip = At(gap + 1);
    AddStrip(rows_.Before[strip], route);
    AddStrip(rows_.Behind[strip], route);
    for (const WayRound& way : rows_.Round[strip]) {
      if (way.Net != route.Net) continue;
      const int from = Net::GapOf(net.Pins[0], arrangement_);
      const bool forward = from < gap || (from == gap && net.Pins[0].AtRight);
      route.Segments.push_back({{rows_.Before[strip].Right, way.Exit}, {way.Out, way.Exit}});
      route.Segments.push_back({{way.In, way.Entry}, {rows_.Behind[strip].Left, way.Entry}});
      AddWayRound(way, forward, route);
    }
  }

  // Half-way an arrow tells the direction.
  static void AddWayRound(const WayRound& way, bool forward, Route& route) {
    const Point out{way.Out, way.Channel};
    const Point in{way.In, way.Channel};
    const Point middle{(way.Out + way.In) / 2, way.Channel};
    route.Segments.push_back({{way.Out, way.Exit}, out});
    route.Segments.push_back({middle, forward ? in : out});
    route.Arrows.push_back({forward ? out : in, middle});
    route.Segments.push_back({in, {way.In, way.Entry}});
  }

  static void AddStrip(const Strip& strip, Route& route) {
    const GapNet* const ends = strip.Of(route.Net);
    if (!ends) return;
    if (ends->Track < 0) {
      if (!ends->Left.empty() && !ends->Right.empty()) {
        route.Segments.push_back({{strip.Left, ends->Top()}, {strip.Right, ends->Top()}});
      }
      return;
    }
    const int x = strip.TrackAt(ends->Track);
    route.Segments.push_back({{x, ends->Top()}, {x, ends->Bottom()}});
    for (const int y : ends->Left) route.Segments.push_back({{strip.Left, y}, {x, y}});
    for (const int y : ends->Right) route.Segments.push_back({{x, y}, {strip.Right, y}});
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
    const int edge = rows_.ColumnAt[column] + (pin.AtRight ? rows_.ColumnWidth[column] : 0);
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
  Rows rows_;
  std::size_t crossings_ = 0;  ///< of the routes that have been added
  Placing placing_;
};

}  // namespace

Placing Place(const BlockGraph& graph, const Arrangement& arrangement,
              const std::vector<Shape>& shapes, const std::vector<Net>& nets, Heights heights) {
  return Placer(graph, arrangement, shapes, nets).Make(std::move(heights));
}

}  // namespace torvane::drawing
