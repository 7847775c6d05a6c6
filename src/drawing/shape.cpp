#include "drawing/shape.h"

#include <algorithm>
#include <cmath>

#include "drawing/text_width.h"

namespace torvane::drawing {

namespace {

using Sign = Node::Sign;

constexpr int Padding = 10;         // around what stands in a block
constexpr int Detour = 44;          // between a sum's axis and the lines above and below it
constexpr int SumHalf = 26;         // of a sum with its marks
constexpr int SumWidth = 76;        //
constexpr int BetweenPins = 36;     // on a block's side
constexpr int BetweenOutputs = 52;  // with their names
constexpr int BetweenDetours = 16;  // below a block
constexpr int LeastLabel = 76;
constexpr int LabelHalf = 26;
constexpr int MarkRoom = 26;  // for the name of an input or output in a block

int Even(double width) {
  return 2 * static_cast<int>(std::ceil(width / 2.0));
}

bool IsCircle(const Node& node) {
  return node.What == Sign::Sum || node.What == Sign::Product;
}

int WidthOfBlock(const Node& node) {
  double width = 40;
  switch (node.What) {
    case Sign::Box:
    case Sign::Source:
    case Sign::Fraction:
      for (const Line& text : node.Texts) width = std::max(width, WidthOf(text, TextSize));
      break;
    default:
      width = SignWidth - 2 * Padding;
      break;
  }
  for (const Line& remark : node.Remarks) width = std::max(width, WidthOf(remark, RemarkSize));
  for (const std::string& room : node.Rooms) {
    const double name =
        IsOneConstant(node) ? 0.0 : 6 + WidthOf({{room, Run::Kind::Constant}}, RemarkSize);
    width = std::max(width, name + RoomWidth);
  }
  const bool marked = node.Outputs.size() > 1 ||
                      std::any_of(node.Inputs.begin(), node.Inputs.end(),
                                  [](const Input& input) { return !input.Mark.empty(); });
  if (marked && node.What != Sign::Switch) width += 2 * MarkRoom;
  return Even(width + 2 * Padding);
}

int HeightOfBlock(const Node& node) {
  const int rooms = static_cast<int>(node.Rooms.size()) * (RoomHeight + 3);
  const int remarks = static_cast<int>(node.Remarks.size()) * RemarkHeight;
  return SignHeightOf(node) + rooms + remarks + 2;
}

/// Lays out one node's pins as if it looked to the right, and turns it round in the end.
class Shaper {
 public:
  Shaper(const BlockGraph& graph, const Arrangement& arrangement, int index,
         const std::vector<int>& consumers)
      : graph_(graph),
        arrangement_(arrangement),
        index_(index),
        node_(graph.Nodes[static_cast<std::size_t>(index)]) {
    for (std::size_t k = 0; k < node_.Inputs.size(); ++k) {
      const bool ahead = arrangement.IsAhead(graph, index, node_.Inputs[k].From);
      (ahead ? ahead_ : behind_).push_back(static_cast<int>(k));
    }
    for (std::size_t k = 0; k < node_.Outputs.size(); ++k) {
      if (consumers[static_cast<std::size_t>(node_.Outputs[k])] > 0) {
        used_.push_back(static_cast<int>(k));
      }
    }
  }

  Shape Make() {
    if (IsCircle(node_)) {
      MakeCircle();
    } else if (node_.What == Sign::Label) {
      MakeLabel();
    } else {
      MakeBlock();
    }
    if (arrangement_.Backwards[static_cast<std::size_t>(index_)]) {
      for (Pin& pin : shape_.Pins) {
        pin.AtRight = !pin.AtRight;
        pin.X = shape_.Width - pin.X;
      }
    }
    return std::move(shape_);
  }

 private:
  void AddPin(int index, bool source, bool atRight, int y) {
    Pin pin;
    pin.Node = index_;
    pin.Index = index;
    pin.Source = source;
    pin.AtRight = atRight;
    pin.Y = y;
    shape_.Pins.push_back(pin);
  }

  void AddDetour(int index, bool atRight, int y, Pin::Way way, int x) {
    AddPin(index, false, atRight, y);
    shape_.Pins.back().How = way;
    shape_.Pins.back().X = x;
  }

  bool IsAside(int input) const {
    const int from = node_.Inputs[static_cast<std::size_t>(input)].From;
    const int source = graph_.Outputs[static_cast<std::size_t>(from)].Node;
    return arrangement_.Outside[static_cast<std::size_t>(source)];
  }

  bool IsMain(int input) const {
    const int from = node_.Inputs[static_cast<std::size_t>(input)].From;
    const int source = graph_.Outputs[static_cast<std::size_t>(from)].Node;
    return arrangement_.Main[static_cast<std::size_t>(source)];
  }

  bool IsMainOutput(int output) const {
    const int from = node_.Outputs[static_cast<std::size_t>(output)];
    for (std::size_t k = 0; k < graph_.Nodes.size(); ++k) {
      if (!arrangement_.Main[k]) continue;
      for (const Input& input : graph_.Nodes[k].Inputs) {
        if (input.From == from) return true;
      }
    }
    return false;
  }

  // The main input straight on, feedback from below, what comes from elsewhere from above.
  void MakeCircle() {
    std::stable_sort(ahead_.begin(), ahead_.end(), [&](int a, int b) {
      return std::pair(!IsMain(a), IsAside(a)) < std::pair(!IsMain(b), IsAside(b));
    });
    int straight = -1;
    int below = -1;
    int above = -1;
    if (!ahead_.empty()) {
      straight = ahead_.front();
      ahead_.erase(ahead_.begin());
    }
    std::vector<std::pair<int, bool>> others;
    for (const int input : behind_) others.emplace_back(input, true);
    for (const int input : ahead_) others.emplace_back(input, false);
    bool belowAtRight = false;
    bool aboveAtRight = false;
    for (const auto& [input, atRight] : others) {
      const bool up = !atRight && IsAside(input);
      if (above < 0 && (up || below >= 0)) {
        above = input;
        aboveAtRight = atRight;
      } else if (below < 0) {
        below = input;
        belowAtRight = atRight;
      } else {
        straight = input;
      }
    }
    const int up = above < 0 ? SumHalf : Detour + 4;
    shape_.Width = SumWidth;
    shape_.Height = up + (below < 0 ? SumHalf : Detour + 4);
    shape_.Axis = up;
    shape_.Top = up - SumRadius;
    shape_.Bottom = up + SumRadius;
    const int centre = SumWidth / 2;
    if (straight >= 0) AddPin(straight, false, false, up);
    if (above >= 0) AddDetour(above, aboveAtRight, up - Detour, Pin::Way::FromAbove, centre);
    if (below >= 0) AddDetour(below, belowAtRight, up + Detour, Pin::Way::FromBelow, centre);
    for (const int output : used_) AddPin(output, true, true, up);
  }

  void MakeLabel() {
    double width = 0;
    bool offered = false;
    for (const Line& name : node_.Texts) {
      offered = offered || name[0].What == Run::Kind::Signal;
      const double least = name[0].What == Run::Kind::Signal ? LeastLabel : 0;
      width += std::max(least, WidthOf(name, TextSize)) + 8;
    }
    shape_.Width = Even(width + (used_.empty() ? 34 : 12));
    shape_.Height = offered ? 2 * LabelHalf : LabelHalf + 4;
    shape_.Axis = LabelHalf;
    shape_.Bottom = shape_.Height;
    AddPin(0, false, false, shape_.Axis);
    for (const int output : used_) AddPin(output, true, true, shape_.Axis);
  }

  void MakeBlock() {
    std::stable_sort(ahead_.begin(), ahead_.end(),
                     [&](int a, int b) { return IsMain(a) && !IsMain(b); });
    shape_.Width = WidthOfBlock(node_);
    const int ins = static_cast<int>(ahead_.size());
    const int outs = static_cast<int>(used_.size());
    if (node_.What == Sign::Switch) {
      const int contacts = std::max(SignHeight, ins * BetweenPins);
      shape_.Bottom = contacts + 2 * ((HeightOfBlock(node_) - SignHeight + 1) / 2);
      shape_.Axis = contacts / 2;
      return MakeSides();
    }
    // The main line goes straight through the sign or the text, further ones below it.
    std::stable_sort(used_.begin(), used_.end(),
                     [&](int x, int y) { return IsMainOutput(x) && !IsMainOutput(y); });
    shape_.Axis = SignHeightOf(node_) / 2;
    const int sides = std::max((ins - 1) * BetweenPins, (outs - 1) * BetweenOutputs);
    shape_.Bottom = 2 * ((std::max(HeightOfBlock(node_), shape_.Axis + sides + 20) + 1) / 2);
    MakeSides();
  }

  void MakeSides() {
    AddSide(ahead_, false, BetweenPins);
    AddSide(used_, true, BetweenOutputs);
    shape_.Height = shape_.Bottom;
    const int count = static_cast<int>(behind_.size());
    for (int k = 0; k < count; ++k) {
      shape_.Height += k == 0 ? 30 : BetweenDetours;
      const int x = shape_.Width * (k + 1) / (count + 1);
      AddDetour(behind_[static_cast<std::size_t>(count - 1 - k)], true, shape_.Height - 4,
                Pin::Way::FromBelow, shape_.Width - x);
    }
  }

  void AddSide(const std::vector<int>& indices, bool outputs, int apart) {
    const int count = static_cast<int>(indices.size());
    const bool centred = node_.What == Sign::Switch;
    for (int k = 0; k < count; ++k) {
      AddPin(indices[static_cast<std::size_t>(k)], outputs, outputs,
             shape_.Axis + (centred ? (2 * k - count + 1) * apart / 2 : k * apart));
    }
  }

  const BlockGraph& graph_;
  const Arrangement& arrangement_;
  int index_;
  const Node& node_;
  std::vector<int> ahead_;  ///< inputs from where its inputs are, and from the other side
  std::vector<int> behind_;
  std::vector<int> used_;  ///< outputs
  Shape shape_;
};

}  // namespace

bool IsOneConstant(const Node& node) {
  return node.What == Sign::Box && node.Rooms.size() == 1 && node.Texts.size() == 1 &&
         node.Texts[0] == Line{{node.Rooms[0], Run::Kind::Constant}};
}

int SignHeightOf(const Node& node) {
  switch (node.What) {
    case Sign::Box:
    case Sign::Source: {
      const int text = static_cast<int>(node.Texts.size()) * LineHeight;
      return IsOneConstant(node) ? text + 10 : std::max(text + 12, 2 * LineHeight);
    }
    case Sign::Fraction:
      return 2 * LineHeight + 16;
    default:
      return SignHeight;
  }
}

std::vector<Shape> Shapes(const BlockGraph& graph, const Arrangement& arrangement) {
  std::vector<int> consumers(graph.Outputs.size());
  for (const Node& node : graph.Nodes) {
    for (const Input& input : node.Inputs) ++consumers[static_cast<std::size_t>(input.From)];
  }
  std::vector<Shape> shapes;
  for (std::size_t k = 0; k < graph.Nodes.size(); ++k) {
    shapes.push_back(Shaper(graph, arrangement, static_cast<int>(k), consumers).Make());
  }
  return shapes;
}

}  // namespace torvane::drawing
