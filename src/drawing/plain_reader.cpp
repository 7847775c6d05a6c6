#include <algorithm>
#include <cmath>
#include <vector>

#include "core/text.h"
#include "drawing/placing.h"

namespace torvane::drawing {

namespace {

constexpr double PointsPerInch = 72.0;

// "node NAME X Y ...", lengths in inches and heights from below.
struct PlainNode {
  char Kind = 0;
  std::size_t Index = 0;
  double Height = 0.0;  // downwards
};

std::string_view TakeWord(std::string_view& line) {
  const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
  line.remove_prefix(begin);
  const std::string_view word = line.substr(0, line.find(' '));
  line.remove_prefix(word.size());
  return word;
}

std::optional<PlainNode> NodeIn(std::string_view line) {
  if (TakeWord(line) != "node") return {};
  const std::string_view name = TakeWord(line);
  TakeWord(line);
  const auto height = ParseNumber(TakeWord(line));
  if (name.size() < 2 || !height) return {};
  const auto index = ParseInteger(name.substr(1));
  if (!index || *index < 0) return {};
  return PlainNode{name[0], static_cast<std::size_t>(*index), -*height * PointsPerInch};
}

}  // namespace

std::optional<Heights> ReadPlain(std::string_view plain, const std::vector<Shape>& shapes,
                                 std::size_t crossings) {
  Heights heights;
  heights.Nodes.resize(shapes.size());
  heights.Crossings.resize(crossings);
  std::size_t read = 0;
  while (!plain.empty()) {
    const std::string_view line = plain.substr(0, plain.find('\n'));
    plain.remove_prefix(std::min(line.size() + 1, plain.size()));
    const auto node = NodeIn(line);
    if (!node) continue;
    if (node->Kind == 'n' && node->Index < shapes.size()) {
      const int half = shapes[node->Index].Height / 2;
      heights.Nodes[node->Index] = static_cast<int>(std::lround(node->Height)) - half;
      ++read;
    } else if (node->Kind == 'c' && node->Index < crossings) {
      heights.Crossings[node->Index] = static_cast<int>(std::lround(node->Height));
      ++read;
    }
  }
  if (read != shapes.size() + crossings) return {};
  return heights;
}

}  // namespace torvane::drawing
