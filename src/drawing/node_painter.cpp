#include "drawing/node_painter.h"

#include <algorithm>
#include <map>

#include "drawing/text_width.h"

namespace torvane::drawing {

namespace {

using Sign = Node::Sign;
using Align = SvgWriter::Align;

constexpr const char* SourceFill = "#e3f3e6";
constexpr const char* SampledFill = "#fff3d1";
constexpr const char* ContinuousFill = "#eaf0f7";
constexpr int MarkSize = 14;

// A sign's points are told about its centre.
std::string About(double x, double y, const Points& points) {
  Points moved = points;
  for (auto& [px, py] : moved) {
    px += x;
    py += y;
  }
  return Through(moved);
}

const std::map<Sign, Points>& Curves() {
  static const std::map<Sign, Points> curves{
      {Sign::Limiter, {{-26, 16}, {-12, 16}, {12, -16}, {26, -16}}},
      {Sign::DeadZone, {{-26, 18}, {-10, 0}, {10, 0}, {26, -18}}},
      {Sign::Quantiser,
       {{-26, 20}, {-13, 20}, {-13, 7}, {0, 7}, {0, -7}, {13, -7}, {13, -20}, {26, -20}}},
      {Sign::RateLimiter, {{-26, 18}, {-14, 18}, {14, -18}, {26, -18}}},
      {Sign::Curve, {{-26, 18}, {-12, 12}, {0, -4}, {12, -8}, {26, -18}}},
      {Sign::Friction, {{-26, 12}, {-4, 12}, {0, 18}, {0, -18}, {4, -12}, {26, -12}}},
  };
  return curves;
}

}  // namespace

void NodePainter::Paint() {
  if (node_.What == Sign::Sum || node_.What == Sign::Product) return PaintCircle();
  if (node_.What == Sign::Label) return PaintLabel();
  PaintBlock();
}

void NodePainter::PaintCircle() {
  const double x = Centre();
  const double y = at_.Y + shape_.Axis;
  const char* const fill = node_.Clock.empty() ? "#ffffff" : SampledFill;
  svg_.Circle(x, y, SumRadius, std::string("fill=\"") + fill + "\"");
  if (node_.What == Sign::Sum) {
    svg_.Path(About(x, y, {{-13.4, -13.4}, {13.4, 13.4}}), "stroke-width=\"1.2\"");
    svg_.Path(About(x, y, {{-13.4, 13.4}, {13.4, -13.4}}), "stroke-width=\"1.2\"");
  } else {
    svg_.Text(x, y + 8, {{"×", Run::Kind::Plain}}, 24, Align::Middle);
  }
  for (const Pin& pin : shape_.Pins) {
    if (pin.Source) continue;
    const std::string& mark = node_.Inputs[static_cast<std::size_t>(pin.Index)].Mark;
    if (node_.What == Sign::Product && mark == "×") continue;
    const double side = pin.AtRight ? 1.0 : -1.0;
    double dx = side * 29.0;
    double dy = 23.0;
    if (pin.How == Pin::Way::FromBelow) {
      dx = 15.0;
      dy = SumRadius + 19.0;
    } else if (pin.How == Pin::Way::FromAbove) {
      dx = 15.0;
      dy = -SumRadius - 6.0;
    }
    svg_.Text(x + dx, y + dy, {{mark, Run::Kind::Plain}}, 22, Align::Middle,
              "font-weight=\"bold\"");
  }
}

// The name above the line, which is drawn with the others, the value below it.
void NodePainter::PaintLabel() {
  const double y = at_.Y + shape_.Axis;
  const double part = (shape_.Width - (shape_.Pins.size() < 2 ? 34.0 : 12.0)) /
                      static_cast<double>(node_.Texts.size());
  for (std::size_t k = 0; k < node_.Texts.size(); ++k) {
    const double x = Left() + 6 + part * (static_cast<double>(k) + 0.5);
    const Run& name = node_.Texts[k][0];
    svg_.Text(x, y - 9, node_.Texts[k], name.What == Run::Kind::Signal ? TextSize : RemarkSize,
              Align::Middle);
    if (name.What == Run::Kind::Signal) {
      svg_.Room(name.What, name.Text, x - part / 2 + 4, y + 4, part - 8, RoomHeight - 1);
    }
  }
}

void NodePainter::PaintBlock() {
  const char* const fill = node_.What == Sign::Source ? SourceFill
                           : node_.Clock.empty()      ? ContinuousFill
                                                      : SampledFill;
  svg_.Rect(Left(), Top(), shape_.Width, shape_.Bottom - shape_.Top,
            std::string("rx=\"6\" fill=\"") + fill + "\"");
  switch (node_.What) {
    case Sign::Box:
    case Sign::Source:
      PaintTexts();
      break;
    case Sign::Fraction:
      PaintFraction();
      break;
    case Sign::Switch:
    case Sign::Sampler:
      PaintSwitch();
      break;
    default:
      PaintCurve();
      break;
  }
  PaintBelow();
  PaintMarks();
}

void NodePainter::PaintTexts() {
  const double lines = static_cast<double>(node_.Texts.size());
  double y = Middle() - lines * LineHeight / 2 + 19;
  if (IsOneConstant(node_)) y += 3;
  for (const Line& text : node_.Texts) {
    svg_.Text(Centre(), y, text, TextSize, Align::Middle);
    y += LineHeight;
  }
}

void NodePainter::PaintFraction() {
  double width = 26;
  for (const Line& text : node_.Texts) width = std::max(width, WidthOf(text, TextSize) + 4);
  svg_.Path(About(Centre(), Middle(), {{-width / 2, 0}, {width / 2, 0}}), "stroke-width=\"1.6\"");
  svg_.Text(Centre(), Middle() - 9, node_.Texts[0], TextSize, Align::Middle);
  svg_.Text(Centre(), Middle() + 22, node_.Texts[1], TextSize, Align::Middle);
}

void NodePainter::PaintCurve() {
  const std::string axis = "stroke-width=\"1\" stroke=\"#9aa5b1\"";
  svg_.Path(About(Centre(), Middle(), {{-26, 0}, {26, 0}}), axis);
  svg_.Path(About(Centre(), Middle(), {{0, -22}, {0, 22}}), axis);
  const auto curve = Curves().find(node_.What);
  if (curve == Curves().end()) return;
  svg_.Path(About(Centre(), Middle(), curve->second), "stroke-width=\"2.6\"");
}

// The blade lies on the first of the contacts.
void NodePainter::PaintSwitch() {
  const double way = backwards_ ? -1.0 : 1.0;
  const double y = node_.What == Sign::Sampler ? Middle() : at_.Y + shape_.Axis;
  const double common = Centre() + way * 18;
  if (node_.What == Sign::Sampler) {
    svg_.Path(About(Centre(), y, {{-28, 0}, {-18, 0}}));
    svg_.Path(About(Centre(), y, {{18, 0}, {28, 0}}));
    svg_.Path(About(common, y, {{0, 0}, {-way * 32, -16}}), "stroke-width=\"2.6\"");
    svg_.Circle(Centre() - way * 18, y, 4, "fill=\"#ffffff\" stroke-width=\"1.6\"");
  } else {
    const double edge = backwards_ ? Left() : Left() + shape_.Width;
    svg_.Path(Through({{common, y}, {edge, y}}));
    bool first = true;
    for (const Pin& pin : shape_.Pins) {
      if (pin.Source || pin.Index > 1 || pin.How != Pin::Way::Straight) continue;
      const double contact = at_.Y + pin.Y;
      const double from = pin.AtRight ? Left() + shape_.Width : Left();
      const double at = Centre() - way * 18;
      svg_.Path(Through({{from, contact}, {at, contact}}));
      if (first) {
        svg_.Path(Through({{common, y}, {at, contact}}), "stroke-width=\"2.6\"");
      }
      svg_.Circle(at, contact, 4, "fill=\"#ffffff\" stroke-width=\"1.6\"");
      first = false;
    }
  }
  svg_.Circle(common, y, 4, "fill=\"#ffffff\" stroke-width=\"1.6\"");
}

void NodePainter::PaintBelow() {
  double y = Top() + SignHeightOf(node_);
  if (node_.What == Sign::Switch) {
    const int below = static_cast<int>(node_.Remarks.size()) * RemarkHeight +
                      static_cast<int>(node_.Rooms.size()) * (RoomHeight + 3);
    y = std::max(y, static_cast<double>(at_.Y + shape_.Bottom - below - 2));
  }
  for (const std::string& room : node_.Rooms) {
    const Line name{{room, Run::Kind::Constant}};
    if (IsOneConstant(node_)) {
      svg_.Room(Run::Kind::Constant, room, Centre() - RoomWidth / 2.0, y - 3, RoomWidth,
                RoomHeight);
    } else {
      const double width = WidthOf(name, RemarkSize) + 6 + RoomWidth;
      const double x = Centre() - width / 2;
      svg_.Text(x, y + 16, name, RemarkSize, Align::Begin);
      svg_.Room(Run::Kind::Constant, room, x + width - RoomWidth, y, RoomWidth, RoomHeight);
    }
    y += RoomHeight + 3;
  }
  for (const Line& remark : node_.Remarks) {
    svg_.Text(Centre(), y + 15, remark, RemarkSize, Align::Middle);
    y += RemarkHeight;
  }
}

void NodePainter::PaintMarks() {
  for (const Pin& pin : shape_.Pins) {
    const auto index = static_cast<std::size_t>(pin.Index);
    const std::string mark =
        pin.Source ? graph_.Outputs[static_cast<std::size_t>(node_.Outputs[index])].Mark
                   : node_.Inputs[index].Mark;
    if (mark.empty()) continue;
    const Line text{{mark, Run::Kind::Quiet}};
    const double width = WidthOf(text, MarkSize);
    double x = pin.AtRight ? Left() + shape_.Width - width - 5 : Left() + 5;
    double y = at_.Y + pin.Y + 5;
    if (node_.What == Sign::Switch && !pin.Source) y -= 10;
    if (pin.How == Pin::Way::FromBelow) {
      x = at_.X + pin.X + 8;
      y = at_.Y + shape_.Bottom + 17;
    }
    svg_.Text(x, y, text, MarkSize, Align::Begin);
  }
}

}  // namespace torvane::drawing
