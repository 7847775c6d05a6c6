#pragma once

#include <QPaintEngine>
#include <QPainter>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "plot/scope_colours.h"

namespace torvane::test {

/// Paints on a device that writes down each shape, a line each: what it is, through which points,
/// with which pen and on which ground; of a text where its baseline begins. Lengths are whole
/// pixels. A painter treats the device as one of `type`: of pixels, or of a file with lines. Of
/// `curvesAlone` what has no more points than a rectangle is left out, but for texts.
std::vector<std::string> Drawn(const std::function<void(QPainter&)>& paint,
                               QPaintEngine::Type type = QPaintEngine::User,
                               bool curvesAlone = false);

/// A line of a table of drawings: name, width, height and ratio, then words.
struct DrawingRow {
  bool Has(const char* word) const { return std::ranges::count(Words, word) > 0; }
  TraceLook Look() const {
    return {Has("apart") ? TraceColours::Apart : TraceColours::Standard, Has("patterns")};
  }
  ScopeColours Colours() const {
    return Has("dark") ? ScopeColours::Dark() : ScopeColours::Light(Look().Colours);
  }

  std::string Name;
  QSize Size;
  double Ratio = 1.0;
  std::vector<std::string> Words;
};

/// Compares each drawing of a table of tests/data with what `paint` does.
void ExpectDrawings(const std::string& table,
                    const std::function<void(QPainter&, const DrawingRow&)>& paint);

}  // namespace torvane::test
