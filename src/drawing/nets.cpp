#include "drawing/nets.h"

#include <algorithm>

namespace torvane::drawing {

std::vector<Net> Nets(const BlockGraph& graph, const Arrangement& arrangement,
                      const std::vector<Shape>& shapes) {
  std::vector<Net> all(graph.Outputs.size());
  for (const Shape& shape : shapes) {
    for (const Pin& pin : shape.Pins) {
      const Node& node = graph.Nodes[static_cast<std::size_t>(pin.Node)];
      const auto index = static_cast<std::size_t>(pin.Index);
      const int output = pin.Source ? node.Outputs[index] : node.Inputs[index].From;
      Net& net = all[static_cast<std::size_t>(output)];
      net.Output = output;
      // The source stands first.
      net.Pins.insert(pin.Source ? net.Pins.begin() : net.Pins.end(), pin);
    }
  }
  std::erase_if(all, [](const Net& net) { return net.Pins.empty(); });
  for (Net& net : all) {
    const auto [first, last] =
        std::minmax_element(net.Pins.begin(), net.Pins.end(), [&](const Pin& a, const Pin& b) {
          return Net::GapOf(a, arrangement) < Net::GapOf(b, arrangement);
        });
    net.FirstGap = Net::GapOf(*first, arrangement);
    net.LastGap = Net::GapOf(*last, arrangement);
  }
  return all;
}

std::vector<Crossing> Crossings(const std::vector<Net>& nets) {
  std::vector<Crossing> crossings;
  for (std::size_t k = 0; k < nets.size(); ++k) {
    for (int column = nets[k].FirstGap + 1; column <= nets[k].LastGap; ++column) {
      crossings.push_back({static_cast<int>(k), column});
    }
  }
  return crossings;
}

}  // namespace torvane::drawing
