#include "drawing/loop_graph.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

#include "drawing/arrangement.h"
#include "drawing/dot_text.h"
#include "drawing/loop_drawing.h"
#include "drawing/placing.h"
#include "gtest/gtest.h"
#include "loops/own_loops.h"
#include "loops/parser.h"
#include "loops/shipped.h"
#include "support/expected_lines.h"

namespace torvane::drawing {
namespace {

BlockGraph Drawn(const std::string& text) {
  loops::ProblemList problems;
  const loops::LoopReading reading = loops::ReadLoop(text);
  for (const loops::Problem& problem : reading.Problems) ADD_FAILURE() << problem.Text;
  if (!reading.Plan) return {};
  return GraphOf(loops::Parse(text, problems), *reading.Plan);
}

std::string TextOf(const Node& node) {
  static const std::map<Node::Sign, std::string> signs{
      {Node::Sign::Limiter, "limit"},   {Node::Sign::Quantiser, "steps"},
      {Node::Sign::Sampler, "sample"},  {Node::Sign::Switch, "switch"},
      {Node::Sign::Product, "product"}, {Node::Sign::RateLimiter, "rate"}};
  const auto sign = signs.find(node.What);
  std::string text = sign == signs.end() ? "" : sign->second;
  for (const Line& line : node.Texts) {
    if (!text.empty()) text += node.What == Node::Sign::Fraction ? " / " : " ";
    for (const Run& run : line) text += run.Text;
  }
  return text;
}

// What an output comes from, back to named signals.
std::string Origin(const BlockGraph& graph, int output, std::set<int> seen = {}) {
  const Output& out = graph.Outputs[At(output)];
  const Node& node = graph.Nodes[At(out.Node)];
  if (!seen.empty() && node.What == Node::Sign::Label) return TextOf(node);
  if (!seen.insert(out.Node).second) return "...";
  std::string text = node.What == Node::Sign::Sum ? "" : TextOf(node);
  if (node.What == Node::Sign::Label)
    return text + " = " + Origin(graph, node.Inputs[0].From, seen);
  if (!out.Mark.empty()) text += "." + out.Mark;
  if (node.Inputs.empty()) return text;
  std::string inputs;
  for (const Input& input : node.Inputs) {
    if (!inputs.empty()) inputs += ", ";
    const bool named =
        !input.Mark.empty() && std::isalpha(static_cast<unsigned char>(input.Mark[0]));
    inputs += input.Mark + (named ? ": " : "") + Origin(graph, input.From, seen);
  }
  return text + "[" + inputs + "]";
}

std::vector<std::string> Told(const BlockGraph& graph) {
  std::vector<std::string> lines;
  const Arrangement arrangement = Arrange(graph);
  std::string back = "back:";
  for (std::size_t k = 0; k < graph.Nodes.size(); ++k) {
    const Node& node = graph.Nodes[k];
    if (node.What == Node::Sign::Label) lines.push_back(Origin(graph, node.Outputs[0]));
    if (arrangement.Backwards[k]) back += " " + (TextOf(node).empty() ? "sum" : TextOf(node)) + ";";
  }
  lines.push_back(back);
  return lines;
}

TEST(LoopGraphTest, BlocksAreWhatTheEquationsSay) {
  std::map<std::string, std::string> expected;
  std::string name;
  for (const std::string& line : test::LinesOfData("loop_graphs.txt")) {
    if (line.starts_with("  ")) {
      expected[name] += line + "\n";
    } else if (!line.starts_with("#")) {
      name = line;
    }
  }
  EXPECT_EQ(expected.size(), 12U);
  for (const auto& [loop, lines] : expected) {
    std::string told;
    for (const std::string& line : Told(Drawn(loops::ShippedText(loop))))
      told += "  " + line + "\n";
    EXPECT_EQ(told, lines) << loop;
  }
}

// Any heights at which nothing stands upon another, as a layout gives them.
Heights Stacked(const BlockGraph& graph, const Arrangement& arrangement,
                const std::vector<Shape>& shapes, const std::vector<Crossing>& crossings) {
  std::map<int, int> next;
  Heights heights;
  for (std::size_t k = 0; k < graph.Nodes.size(); ++k) {
    // Each column begins elsewhere, as ends of two lines seldom have one height.
    const int column = arrangement.Columns[k];
    int& y = next.try_emplace(column, column % 2 ? 37 : 0).first->second;
    heights.Nodes.push_back(y);
    y += shapes[k].Height + 18;
  }
  for (const Crossing& crossing : crossings) {
    int& y = next[crossing.Column];
    heights.Crossings.push_back(y);
    y += 18;
  }
  return heights;
}

struct Box {
  int Left, Top, Right, Bottom;
};

Box Around(const Segment& s) {
  return {std::min(s.From.X, s.To.X), std::min(s.From.Y, s.To.Y), std::max(s.From.X, s.To.X),
          std::max(s.From.Y, s.To.Y)};
}

// Where two lines of one direction lie upon each other for more than a point.
bool LieUpon(const Segment& one, const Segment& other) {
  const Box a = Around(one);
  const Box b = Around(other);
  const bool level = one.From.Y == one.To.Y && other.From.Y == other.To.Y && a.Top == b.Top;
  const bool upright = one.From.X == one.To.X && other.From.X == other.To.X && a.Left == b.Left;
  return (level && a.Left < b.Right && b.Left < a.Right) ||
         (upright && a.Top < b.Bottom && b.Top < a.Bottom);
}

bool Touch(const Segment& one, const Segment& other) {
  const Box a = Around(one);
  const Box b = Around(other);
  return a.Left <= b.Right && b.Left <= a.Right && a.Top <= b.Bottom && b.Top <= a.Bottom;
}

// How many pieces the route falls into that nothing joins.
int Pieces(const std::vector<Segment>& lines) {
  std::vector<std::size_t> piece(lines.size());
  for (std::size_t k = 0; k < lines.size(); ++k) piece[k] = k;
  for (std::size_t a = 0; a < lines.size(); ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      if (!Touch(lines[a], lines[b])) continue;
      const std::size_t old = piece[a];
      for (std::size_t& p : piece) p = p == old ? piece[b] : p;
    }
  }
  return static_cast<int>(std::set<std::size_t>(piece.begin(), piece.end()).size());
}

// Blocks in a row, none of them a plant.
std::string Chain() {
  std::string text = "model Chain\n  Torvane.Sources.Command s;\n  Real b0 = s.y - 0.1 * b20.y;\n";
  std::string before = "b0";
  for (int k = 1; k <= 20; ++k) {
    const std::string name = "b" + std::to_string(k);
    text.append("  Torvane.Continuous.LowPass1 ").append(name);
    text.append("(u = ").append(before).append(", f = 9);\n");
    before = name + ".y";
  }
  return text + "end Chain;";
}

TEST(PlacingTest, LinesJoinWhatTheyShallAndPassAllElse) {
  for (const char* const name :
       {"AnalogFilters", "AnalogPI", "CascadeNotch", "CascadePosition", "Chain", "DigitalPI",
        "OwnPID", "Resonance", "StateFeedback", "TemperatureLoop"}) {
    SCOPED_TRACE(name);
    const bool chain = name == std::string("Chain");
    const BlockGraph graph = Drawn(chain ? Chain() : loops::ShippedText(name));
    const Arrangement arrangement = Arrange(graph);
    const auto& back = arrangement.Backwards;
    if (chain) {
      EXPECT_LE(std::count(back.begin(), back.end(), true), 1);
    }
    const std::vector<Shape> shapes = Shapes(graph, arrangement);
    const std::vector<Net> nets = Nets(graph, arrangement, shapes);
    const Placing placing = Place(graph, arrangement, shapes, nets,
                                  Stacked(graph, arrangement, shapes, Crossings(nets)));
    EXPECT_LE(placing.Width, 2250) << "rows are to be readable";
    std::vector<std::vector<Segment>> lines;
    for (const Route& route : placing.Routes) {
      lines.push_back(route.Segments);
      lines.back().insert(lines.back().end(), route.Arrows.begin(), route.Arrows.end());
      std::erase_if(lines.back(), [](const Segment& s) { return s.From == s.To; });
      EXPECT_EQ(Pieces(lines.back()), 1) << route.Net;
      for (std::size_t k = 0; k < shapes.size(); ++k) {
        const Point at = placing.Nodes[k];
        const Box box{at.X, at.Y + shapes[k].Top, at.X + shapes[k].Width, at.Y + shapes[k].Bottom};
        const auto& pins = nets[At(route.Net)].Pins;
        if (std::any_of(pins.begin(), pins.end(), [&](const Pin& p) { return At(p.Node) == k; })) {
          continue;
        }
        for (const Segment& s : lines.back()) {
          const Box l = Around(s);
          EXPECT_FALSE(l.Left < box.Right && box.Left < l.Right && l.Top < box.Bottom &&
                       box.Top < l.Bottom)
              << "net " << route.Net << " through node " << k;
        }
      }
    }
    for (std::size_t a = 0; a < lines.size(); ++a) {
      for (std::size_t b = 0; b < a; ++b) {
        for (const Segment& one : lines[a]) {
          for (const Segment& other : lines[b]) EXPECT_FALSE(LieUpon(one, other)) << a << " " << b;
        }
      }
    }
  }
}

TEST(LoopDrawingTest, WhatAStrangerWritesStaysText) {
  const std::string odd = R"(<b> & "x\)";
  const std::string text = "model M \"</title>\"\n  parameter Real '" + odd +
                           "' = 1;\n  Real y = 'z' * '" + odd +
                           "';\n  Real 'z' annotation(__Torvane(name = \"<i>\"));\n"
                           "equation\n  der('z') = -y;\nend M;";
  const LoopDrawing drawing(text);
  const std::string dot = drawing.DotText();
  EXPECT_NE(dot.find("&lt;b&gt; &amp; &quot;x\\"), std::string::npos) << dot;
  EXPECT_EQ(dot.find("<b>"), std::string::npos);
  EXPECT_EQ(dot.find("<i>"), std::string::npos);
  EXPECT_THROW(drawing.Svg("graph 1 2 3\nnode n0 x\n"), DrawingFault);
  EXPECT_THROW(LoopDrawing("model M end"), DrawingFault);
  std::string large = "model M\n  Real s = 0;\n  Real y = s";
  for (int k = 0; k < 2000; ++k) large += " + sin(s)";
  EXPECT_THROW(LoopDrawing(large + ";\nend M;"), DrawingFault);
}

}  // namespace
}  // namespace torvane::drawing
