#include "drawing/svg_text.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

#include "drawing/node_painter.h"
#include "drawing/svg_writer.h"
#include "drawing/text_width.h"

namespace torvane::drawing {

namespace {

using Align = SvgWriter::Align;

constexpr int Margin = 30;
constexpr int TitleHeight = 104;
constexpr int LegendHeight = 56;
constexpr int Around = 14;  // the loop
constexpr int LeastWidth = 900;
constexpr int ArrowLength = 13;
constexpr double ArrowHalf = 5.5;

std::string Along(const Segment& line) {
  return Through({{line.From.X, line.From.Y}, {line.To.X, line.To.Y}});
}

int Toward(int from, int to) {
  return from == to ? 0 : from < to ? 1 : -1;
}

class LoopPainter {
 public:
  LoopPainter(const BlockGraph& graph, const Arrangement& arrangement,
              const std::vector<Shape>& shapes, const Placing& placing)
      : graph_(graph), arrangement_(arrangement), shapes_(shapes), placing_(placing) {}

  std::string Paint() {
    const int height = PaintOthers(TitleHeight + placing_.Height + 20);
    for (const Route& route : placing_.Routes) PaintRoute(route);
    for (std::size_t k = 0; k < graph_.Nodes.size(); ++k) PaintNode(k);
    PaintLines();
    svg_.Loop(Margin - Around, TitleHeight - Around, placing_.Width + ArrowLength + 2 * Around,
              height - TitleHeight + Around);
    PaintTitle();
    widest_ = std::max(widest_, static_cast<double>(placing_.Width + 2 * Margin + ArrowLength));
    PaintLegend(height);
    const double width = std::max(widest_, static_cast<double>(LeastWidth));
    svg_.Path(Through({{Margin, height + 8}, {width - Margin, height + 8}}),
              "stroke=\"#c3cad3\" stroke-width=\"1\"");
    return svg_.Written(graph_.Name, width, height + LegendHeight);
  }

 private:
  static Point Moved(Point p) { return {p.X + Margin, p.Y + TitleHeight}; }

  void PaintTitle() {
    const Line name{{graph_.Name, Run::Kind::Plain}};
    const Line description{{graph_.Description, Run::Kind::Quiet}};
    svg_.Text(Margin, 44, name, 28, Align::Begin, "font-weight=\"bold\"");
    svg_.Text(Margin, 74, description, 19, Align::Begin);
    widest_ = std::max(WidthOf(name, 32), WidthOf(description, 19)) + 2 * Margin;
  }

  void PaintNode(std::size_t index) {
    const Node& node = graph_.Nodes[index];
    NodePainter(graph_, shapes_[index], node, Moved(placing_.Nodes[index]),
                arrangement_.Backwards[index], svg_)
        .Paint();
    if (node.What != Node::Sign::Label) return;
    const Point at = Moved(placing_.Nodes[index]);
    const int y = at.Y + shapes_[index].Axis;
    const int end = at.X + shapes_[index].Width;
    const bool back = arrangement_.Backwards[index];
    if (shapes_[index].Pins.size() > 1) {
      lines_.push_back({{at.X, y}, {end, y}});
    } else {
      // A signal that goes nowhere but to the instruments.
      PaintArrow({{back ? end : at.X, y}, {back ? at.X : end, y}});
    }
  }

  // Pieces that continue each other become one line, so that no seam is seen between them.
  void PaintLines() {
    std::vector<Segment> joined;
    for (Segment& line : lines_) {
      if (std::pair(line.To.Y, line.To.X) < std::pair(line.From.Y, line.From.X)) {
        std::swap(line.From, line.To);
      }
    }
    const auto isUpright = [](const Segment& line) { return line.From.X == line.To.X; };
    std::sort(lines_.begin(), lines_.end(), [&](const Segment& a, const Segment& b) {
      const auto key = [&](const Segment& line) {
        return isUpright(line) ? std::tuple(1, line.From.X, line.From.Y)
                               : std::tuple(0, line.From.Y, line.From.X);
      };
      return key(a) < key(b);
    });
    for (const Segment& line : lines_) {
      Segment* const last = joined.empty() ? nullptr : &joined.back();
      const bool upright = isUpright(line);
      if (last && isUpright(*last) == upright &&
          (upright ? last->From.X == line.From.X && line.From.Y <= last->To.Y
                   : last->From.Y == line.From.Y && line.From.X <= last->To.X)) {
        last->To = {std::max(last->To.X, line.To.X), std::max(last->To.Y, line.To.Y)};
      } else if (!(line.From == line.To)) {
        joined.push_back(line);
      }
    }
    for (const Segment& line : joined) svg_.Path(Along(line), "stroke-linecap=\"round\"");
  }

  void PaintRoute(const Route& route) {
    for (const Segment& line : route.Segments) lines_.push_back({Moved(line.From), Moved(line.To)});
    for (const Segment& arrow : route.Arrows) PaintArrow({Moved(arrow.From), Moved(arrow.To)});
    for (const Point& dot : route.Dots) {
      svg_.Circle(Moved(dot).X, Moved(dot).Y, 4.5, "fill=\"#1f2a37\" stroke=\"none\"");
    }
  }

  void PaintArrow(const Segment& line) {
    const int dx = Toward(line.From.X, line.To.X);
    const int dy = Toward(line.From.Y, line.To.Y);
    const Point neck{line.To.X - dx * 9, line.To.Y - dy * 9};
    lines_.push_back({line.From, neck});
    const double baseX = line.To.X - dx * ArrowLength;
    const double baseY = line.To.Y - dy * ArrowLength;
    svg_.Path(Through({{line.To.X, line.To.Y},
                       {baseX + dy * ArrowHalf, baseY + dx * ArrowHalf},
                       {baseX - dy * ArrowHalf, baseY - dx * ArrowHalf}}) +
                  " Z",
              "fill=\"#1f2a37\" stroke=\"none\"");
  }

  // What no block has room for, in lines below the loop.
  int PaintOthers(int y) {
    if (graph_.OtherConstants.empty() && graph_.OtherSignals.empty()) return y;
    const double most = std::max(placing_.Width, LeastWidth - 2 * Margin) + Margin;
    const Line also{{"also:", Run::Kind::Quiet}};
    double x = Margin + WidthOf(also, RemarkSize) + 14;
    svg_.Text(Margin, y + 16, also, RemarkSize, Align::Begin);
    const auto add = [&](Run::Kind kind, const std::string& name) {
      const Line line{{name, kind}};
      const double width = WidthOf(line, RemarkSize);
      if (x + width + 6 + RoomWidth > most) {
        x = Margin;
        y += RoomHeight + 6;
      }
      svg_.Text(x, y + 16, line, RemarkSize, Align::Begin);
      svg_.Room(kind, name, x + width + 6, y, RoomWidth, RoomHeight);
      x += width + 6 + RoomWidth + 20;
    };
    for (const std::string& name : graph_.OtherConstants) add(Run::Kind::Constant, name);
    for (const std::string& name : graph_.OtherSignals) add(Run::Kind::Signal, name);
    return y + RoomHeight + 10;
  }

  void PaintLegend(int height) {
    const int y = height + 34;
    double x = Margin;
    const auto add = [&](const char* fill, const Line& line) {
      if (fill) {
        svg_.Rect(x, y - 15, 30, 18, std::string("rx=\"4\" fill=\"") + fill + "\"");
        x += 38;
      }
      svg_.Text(x, y, line, RemarkSize, Align::Begin);
      x += WidthOf(line, RemarkSize) + 30;
    };
    const auto plain = [](const std::string& text) { return Line{{text, Run::Kind::Plain}}; };
    for (std::size_t k = 0; k < graph_.Clocks.size(); ++k) {
      const std::string& constant = graph_.ClockConstant[k];
      Line line = plain(k == 0 ? "sampled: runs once every " : "and ");
      line.push_back({graph_.Clocks[k], constant.empty() ? Run::Kind::Plain : Run::Kind::Constant});
      add(k == 0 ? "#fff3d1" : nullptr, line);
    }
    add("#eaf0f7", plain("continuous"));
    add("#e3f3e6", plain("source"));
    svg_.Text(x, y, plain("blue: constants you can change"), RemarkSize, Align::Begin,
              "fill=\"#0b5cad\"");
    x += WidthOf(plain("blue: constants you can change"), RemarkSize) + 30;
    svg_.Text(x, y, plain("red: signals for the scope"), RemarkSize, Align::Begin,
              "fill=\"#a3341b\"");
    x += WidthOf(plain("red: signals for the scope"), RemarkSize);
    widest_ = std::max(widest_, x + Margin);
  }

  const BlockGraph& graph_;
  const Arrangement& arrangement_;
  const std::vector<Shape>& shapes_;
  const Placing& placing_;
  SvgWriter svg_;
  std::vector<Segment> lines_;
  double widest_ = 0;
};

}  // namespace

std::string SvgText(const BlockGraph& graph, const Arrangement& arrangement,
                    const std::vector<Shape>& shapes, const Placing& placing) {
  return LoopPainter(graph, arrangement, shapes, placing).Paint();
}

}  // namespace torvane::drawing
