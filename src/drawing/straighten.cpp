#include "drawing/straighten.h"

#include <algorithm>
#include <optional>

namespace torvane::drawing {

namespace {

class Straightener {
 public:
  Straightener(const Arrangement& arrangement, const std::vector<Shape>& shapes,
               const Heights& heights)
      : arrangement_(arrangement), shapes_(shapes), heights_(heights) {}

  void Take(Net& net) {
    for (Pin& pin : net.Pins) {
      if (pin.How == Pin::Way::Straight) continue;
      const auto height = OnlyOtherEnd(net, pin);
      const int own = HeightOf(pin);
      if (!height || (*height > own) != (pin.How == Pin::Way::FromBelow)) continue;
      if (IsFree(pin, std::min(own, *height), std::max(own, *height))) pin.Y += *height - own;
    }
    crossings_ += At(net.LastGap - net.FirstGap);
  }

 private:
  int HeightOf(const Pin& pin) const { return heights_.Nodes[At(pin.Node)] + pin.Y; }

  // Height of what the pin is joined to in its gap, when that is one end at the gap's other edge.
  std::optional<int> OnlyOtherEnd(const Net& net, const Pin& pin) const {
    const int gap = Net::GapOf(pin, arrangement_);
    std::optional<int> height;
    const auto add = [&](bool atLeft, int y) {
      if (atLeft == pin.AtRight || height) return false;
      height = y;
      return true;
    };
    const std::size_t before = crossings_ + At(gap - net.FirstGap);
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

  const Arrangement& arrangement_;
  const std::vector<Shape>& shapes_;
  const Heights& heights_;
  std::size_t crossings_ = 0;  ///< of the nets before
};

}  // namespace

void Straighten(const Arrangement& arrangement, const std::vector<Shape>& shapes,
                const Heights& heights, std::vector<Net>& nets) {
  Straightener straightener(arrangement, shapes, heights);
  for (Net& net : nets) straightener.Take(net);
}

}  // namespace torvane::drawing
