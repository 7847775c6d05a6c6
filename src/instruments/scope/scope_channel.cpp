#include "instruments/scope/scope_channel.h"

#include <cmath>

#include "instruments/scope/scope.h"

namespace torvane {

namespace {

constexpr std::array<TraceColour, TraceColourCount> TraceColours = {{
    {"Blk", 0x000000},
    {"Blue", 0x0000FF},
    {"Mrn", 0x800000},
    {"Teal", 0x008080},
    {"Red", 0xFF0000},
    {"Purp", 0x800080},
    {"Grn", 0x008000},
    {"Gray", 0x808080},
}};

}  // namespace

void ZelTimeChannel::FillHistory(double scale, int screenLength) {
  const int length = static_cast<int>(ring_.size());
  const double screenTime = std::abs(scale) * ZelScope::HorizontalDivisions;
  for (int i = 0; i < length; ++i) ring_[Slot(i)] = (i - length) * screenTime / screenLength;
}

const TraceColour& TraceColourAt(int index) {
  return TraceColours.at(static_cast<std::size_t>(index));
}

}  // namespace torvane
