#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "drawing/block_graph.h"
#include "drawing/text_width.h"

namespace torvane::drawing {

/// Collects what a drawing is made of: lines and shapes below, texts above them, and the named
/// places.
class SvgWriter {
 public:
  enum class Align { Begin, Middle };

  /// Further attributes go into the element as they stand.
  void Rect(double x, double y, double width, double height, const std::string& attributes);
  void Circle(double x, double y, double radius, const std::string& attributes);
  void Path(const std::string& data, const std::string& attributes = {});
  /// The names in the line become places.
  void Text(double x, double baseline, const Line& line, int size, Align align,
            const std::string& attributes = {});
  /// Room for a value; a second one of the same name is left out.
  void Room(Run::Kind kind, const std::string& name, double x, double y, double width,
            double height);
  /// The part of the drawing that is the loop.
  void Loop(double x, double y, double width, double height);

  std::string Written(const std::string& title, double width, double height) const;

 private:
  void Name(const Run& run, double x, double baseline, double width, int size);
  void Place(const std::string& id, double x, double y, double width, double height);

  std::string shapes_;
  std::string texts_;
  std::string places_;
  std::map<std::string, int> named_;  ///< how often
};

/// A coordinate: at most one decimal.
std::string Coordinate(double x);

/// The data of a path through the points.
using Points = std::vector<std::pair<double, double>>;
std::string Through(const Points& points);

}  // namespace torvane::drawing
