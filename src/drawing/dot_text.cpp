#include "drawing/dot_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

#include "drawing/escape.h"

namespace torvane::drawing {

namespace {

// How hard the layout tries to keep edges straight.
constexpr int MainWeight = 100;
constexpr int CrossingWeight = 20;
constexpr int BetweenWeight = 3;
constexpr int ChainWeight = 16;

std::string Inches(int points) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), points / 72.0,
                                 std::chars_format::fixed, 4);
  return {text.data(), end.ptr};
}

std::string Numbered(char kind, std::size_t number) {
  std::string name(1, kind);
  return name += std::to_string(number);
}

// What a node says, in one line.
std::string TextOf(const Node& node) {
  static constexpr std::array<const char*, 15> signs{
      "",           "Σ",     "×",        "",       "",       "limit", "dead zone", "steps",
      "rate limit", "curve", "friction", "sample", "switch", "",      ""};
  std::string text = signs[static_cast<std::size_t>(node.What)];
  const char* const between = node.What == Node::Sign::Fraction ? " / " : " ";
  for (const Line& line : node.Texts) {
    if (!text.empty()) text += between;
    for (const Run& run : line) text += run.Text;
  }
  return text;
}

class DotWriter {
 public:
  DotWriter(const BlockGraph& graph, const Arrangement& arrangement,
            const std::vector<Shape>& shapes, const std::vector<Net>& nets)
      : graph_(graph), arrangement_(arrangement), shapes_(shapes), nets_(nets) {}

  std::string Write(bool texts) {
    text_ = "digraph \"" + EscapedForDot(graph_.Name) + "\" {\n" +
            "  rankdir=LR; nodesep=" + Inches(18) + "; ranksep=" + Inches(40) + ";\n" +
            "  node [shape=plain, fontname=\"DejaVu Sans\", fontsize=16];\n" +
            "  edge [arrowsize=0.7];\n";
    for (const std::size_t k : InFlow()) WriteNode(k, texts);
    const auto crossings = Crossings(nets_);
    for (std::size_t k = 0; k < crossings.size(); ++k) {
      text_ += "  " + Numbered('c', k) + " [shape=point, width=0.01, height=0.01];\n";
    }
    std::size_t crossing = 0;
    for (const Net& net : nets_) {
      WriteNet(net, crossing);
      crossing += static_cast<std::size_t>(net.LastGap - net.FirstGap);
    }
    return text_ + "}\n";
  }

 private:
  /// An end of a net at a gap's edge.
  struct End {
    std::string Port;
    bool Main = false;
    bool Crossing = false;
    bool Sink = false;
    bool Source = false;
  };

  std::vector<std::size_t> InFlow() const {
    std::vector<std::size_t> nodes(graph_.Nodes.size());
    for (std::size_t k = 0; k < nodes.size(); ++k) nodes[k] = k;
    std::stable_sort(nodes.begin(), nodes.end(), [&](std::size_t a, std::size_t b) {
      return std::pair(!arrangement_.Main[a], arrangement_.Order[a]) <
             std::pair(!arrangement_.Main[b], arrangement_.Order[b]);
    });
    return nodes;
  }

  // A row for each line, in the middle of which it meets the edge.
  void WriteNode(std::size_t index, bool texts) {
    const Shape& shape = shapes_[index];
    std::set<int> ports;
    for (const Pin& pin : shape.Pins) ports.insert(pin.Y);
    const bool framed = texts && graph_.Nodes[index].What != Node::Sign::Label;
    const std::string width = std::to_string(shape.Width);
    text_ += "  " + Numbered('n', index) + " [label=<<TABLE BORDER=\"" +
             std::string(framed ? "1" : "0") +
             "\" CELLBORDER=\"0\" CELLSPACING=\"0\" CELLPADDING=\"0\">";
    int top = 0;
    bool told = !texts;
    const auto row = [&](int height, const std::string& port, bool tells) {
      if (height <= 0) return;
      text_ += std::string("<TR><TD ") + (texts ? "" : "FIXEDSIZE=\"TRUE\" ") + "WIDTH=\"" + width +
               "\" HEIGHT=\"" + std::to_string(height) + "\"" + port + ">" +
               (tells ? EscapedForXml(TextOf(graph_.Nodes[index])) : "") + "</TD></TR>";
      told = told || tells;
    };
    for (const int y : ports) {
      row(y - 2 - top, "", false);
      row(4, " PORT=\"p" + std::to_string(y) + "\"", !told && y >= shape.Axis);
      top = y + 2;
    }
    row(shape.Height - top, "", !told);
    text_ += "</TABLE>>];\n";
  }

  // The last gap that the main way goes through in this net.
  int LastMainGap(const Net& net) const {
    int last = net.FirstGap - 1;
    if (!arrangement_.Main[static_cast<std::size_t>(net.Pins[0].Node)]) return last;
    for (const Pin& pin : net.Pins) {
      const bool straight = !pin.Source && pin.How == Pin::Way::Straight;
      if (!straight || !arrangement_.Main[static_cast<std::size_t>(pin.Node)]) continue;
      last = std::max(last, Net::GapOf(pin, arrangement_));
    }
    return last;
  }

  void WriteNet(const Net& net, std::size_t firstCrossing) {
    const int main = LastMainGap(net);
    const int first = Net::GapOf(net.Pins[0], arrangement_);
    for (int gap = net.FirstGap; gap <= net.LastGap; ++gap) {
      std::vector<End> left;
      std::vector<End> right;
      const auto crossing = firstCrossing + static_cast<std::size_t>(gap - net.FirstGap);
      if (gap > net.FirstGap) {
        left.push_back({Numbered('c', crossing - 1), gap > first && gap <= main, true});
      }
      if (gap < net.LastGap)
        right.push_back({Numbered('c', crossing), gap >= first && gap < main, true});
      for (const Pin& pin : net.Pins) {
        if (Net::GapOf(pin, arrangement_) != gap) continue;
        std::vector<End>& side = pin.AtRight ? left : right;
        side.insert(pin.Source ? side.begin() : side.end(), EndAt(pin));
      }
      WriteGap(left, right, net.Pins.size() == 2);
    }
  }

  End EndAt(const Pin& pin) const {
    const std::string port = Numbered('n', static_cast<std::size_t>(pin.Node)) + ":p" +
                             std::to_string(pin.Y) + (pin.AtRight ? ":e" : ":w");
    return {port, arrangement_.Main[static_cast<std::size_t>(pin.Node)], false, !pin.Source,
            pin.Source};
  }

  // Every end hangs on one; a line that turns round needs a point to turn about.
  void WriteGap(std::vector<End> left, std::vector<End> right, bool chain) {
    if (left.empty() || right.empty()) {
      chain = false;
      const std::string turn = Numbered('t', turns_++);
      text_ += "  " + turn + " [shape=point, width=0.01, height=0.01];\n";
      (left.empty() ? left : right).push_back({turn});
    }
    for (std::size_t k = 0; k < right.size(); ++k) WriteEdge(left[0], right[k], chain);
    for (std::size_t k = 1; k < left.size(); ++k) WriteEdge(left[k], right[0], chain);
  }

  void WriteEdge(const End& left, const End& right, bool chain) {
    const int weight = left.Main && right.Main           ? MainWeight
                       : left.Crossing && right.Crossing ? CrossingWeight
                       : chain                           ? ChainWeight
                                                         : BetweenWeight;
    const char* const heads = left.Sink && right.Sink ? "both"
                              : left.Sink             ? "back"
                              : right.Sink            ? "forward"
                                                      : "none";
    text_ += "  " + left.Port + " -> " + right.Port + " [weight=" + std::to_string(weight) +
             ", dir=" + heads + "];\n";
  }

  const BlockGraph& graph_;
  const Arrangement& arrangement_;
  const std::vector<Shape>& shapes_;
  const std::vector<Net>& nets_;
  std::string text_;
  std::size_t turns_ = 0;
};

}  // namespace

std::string DotText(const BlockGraph& graph, const Arrangement& arrangement,
                    const std::vector<Shape>& shapes, const std::vector<Net>& nets, bool texts) {
  const std::size_t places = graph.Nodes.size() + Crossings(nets).size();
  if (places > MostPlaces) {
    throw DrawingFault(
        "the loop has too many blocks and lines for a drawing: " + std::to_string(places) +
        " places, of which it has at most " + std::to_string(MostPlaces));
  }
  return DotWriter(graph, arrangement, shapes, nets).Write(texts);
}

}  // namespace torvane::drawing
