#include "plot/drawing.h"

#include <QPainterPath>
#include <sstream>
#include <string>

#include "support/expected_lines.h"

namespace torvane::test {
namespace {

constexpr std::size_t Most = 12;  // of points, places, texts or styles that are written down

/// What is painted at once.
struct Shape {
  std::string What;
  QString Text;  ///< of a text
  QVector<QPoint> Points;
  std::string Style;

  bool IsLike(const Shape& other) const {
    return What == other.What && Points.size() == other.Points.size();
  }
};

/// All of them, or as many of them at even distances.
template <class Things>
std::string Some(const Things& things) {
  std::string some;
  const auto count = static_cast<std::size_t>(things.size());
  for (std::size_t k = 0; k < std::min(count, Most); ++k) {
    some += ' ' + things[count > Most ? k * (count - 1) / (Most - 1) : k];
  }
  return some;
}

std::string At(const QPoint& point) {
  return std::to_string(point.x()) + ',' + std::to_string(point.y());
}

std::string Counted(const char* with, std::size_t count, std::size_t written) {
  return count > written ? with + std::to_string(count) : "";
}

/// Shapes that are like each other, in a line: the points of all or, where that were too many,
/// those of the first and where the others begin.
std::string Folded(const std::vector<const Shape*>& shapes) {
  const Shape& first = *shapes.front();
  std::vector<std::string> texts;
  std::vector<std::string> points;
  std::vector<std::string> places;
  std::vector<std::string> styles;
  const auto each = static_cast<std::size_t>(first.Points.size());
  const bool whole = (shapes.size() - 1) * each <= Most;
  for (const QPoint& point : first.Points) points.push_back(At(point));
  for (const Shape* shape : shapes) {
    if (first.What == "text") texts.push_back("'" + shape->Text.toStdString() + "'");
    for (std::size_t k = 0; shape != &first && k < (whole ? each : 1); ++k) {
      places.push_back(At(shape->Points[static_cast<int>(k)]));
    }
    if (styles.empty() || styles.back() != shape->Style) styles.push_back(shape->Style);
  }
  return first.What + Counted(" x", shapes.size(), 1) + Some(texts) +
         Counted(" of ", points.size(), Most) + Some(points) + (places.empty() ? "" : " and") +
         Some(places) + Some(styles);
}

/// Rows that come again and again, one after the other or some in turn, are a line each.
std::vector<std::string> Folded(const std::vector<Shape>& shapes) {
  constexpr std::size_t LongestTurn = 4;
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < shapes.size();) {
    std::size_t turn = 1;
    std::size_t taken = 1;
    for (std::size_t length = 1; length <= LongestTurn; ++length) {
      std::size_t end = at + length;
      while (end < shapes.size() && shapes[end].IsLike(shapes[end - length])) ++end;
      const std::size_t whole = (end - at) / length * length;
      if (whole < 2 * length || whole - length <= taken - turn) continue;
      turn = length;
      taken = whole;
    }
    for (std::size_t k = 0; k < turn; ++k) {
      std::vector<const Shape*> like;
      for (std::size_t i = at + k; i < at + taken; i += turn) like.push_back(&shapes[i]);
      lines.push_back(Folded(like));
    }
    at += taken;
  }
  return lines;
}

class Engine final : public QPaintEngine {
 public:
  explicit Engine(Type type) : QPaintEngine(AllFeatures), type_(type) {}

  bool begin(QPaintDevice*) override { return true; }
  bool end() override { return true; }
  void updateState(const QPaintEngineState&) override {}
  Type type() const override { return type_; }
  void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
  void drawPath(const QPainterPath& path) override { Add("path", path.toFillPolygon()); }
  using QPaintEngine::drawPolygon;
  void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
    Add(mode == PolylineMode ? "line" : "shape", QPolygonF(QVector(points, points + count)));
  }
  void drawTextItem(const QPointF& at, const QTextItem& item) override {
    Add("text", {at}, item.text());
  }

  std::vector<Shape> Drawn;

 private:
  void Add(const char* what, const QVector<QPointF>& points, const QString& text = {}) {
    std::ostringstream style;
    const QPen& pen = state->pen();
    if (pen.style() != Qt::NoPen) {
      style << "pen " << pen.color().name(QColor::HexArgb).toStdString() << ' ' << pen.widthF();
      for (const double dash : pen.dashPattern()) style << '-' << qRound(dash * pen.widthF());
    }
    const QBrush& brush = state->brush();
    if (brush != Qt::NoBrush) {
      style << (style.tellp() > 0 ? " on " : "on ")
            << brush.color().name(QColor::HexArgb).toStdString();
    }
    Drawn.push_back({what, text, {}, style.str()});
    for (const QPointF& point : points) {
      Drawn.back().Points << state->transform().map(point).toPoint();
    }
  }

  Type type_;
};

struct Device final : QPaintDevice {
  explicit Device(QPaintEngine::Type type) : Recorder(type) {}
  QPaintEngine* paintEngine() const override { return &Recorder; }
  int metric(PaintDeviceMetric metric) const override {
    return metric == PdmWidth || metric == PdmHeight ? 10000
           : metric == PdmDevicePixelRatio           ? 1
                                                     : 96;
  }
  mutable Engine Recorder;
};

}  // namespace

std::vector<std::string> Drawn(const std::function<void(QPainter&)>& paint, QPaintEngine::Type type,
                               bool curvesAlone) {
  constexpr int longestOfOthers = 5;  // points, of a rectangle
  Device device(type);
  QPainter painter(&device);
  paint(painter);
  painter.end();
  if (curvesAlone) {
    std::erase_if(device.Recorder.Drawn, [](const Shape& shape) {
      return shape.What != "text" && shape.Points.size() <= longestOfOthers;
    });
  }
  return Folded(device.Recorder.Drawn);
}

void ExpectDrawings(const std::string& table,
                    const std::function<void(QPainter&, const DrawingRow&)>& paint) {
  std::ifstream file(TORVANE_TEST_DATA "/" + table);
  for (const std::string& line : LinesOf(file)) {
    if (line.starts_with('#')) continue;
    std::istringstream stream(line);
    DrawingRow row;
    stream >> row.Name >> row.Size.rwidth() >> row.Size.rheight() >> row.Ratio;
    for (std::string word; stream >> word;) row.Words.push_back(word);
    ExpectLines(
        "drawings/" + row.Name + ".txt",
        Drawn([&](QPainter& painter) { paint(painter, row); },
              row.Has("pixels") ? QPaintEngine::Raster : QPaintEngine::User, row.Has("curves")));
  }
}

}  // namespace torvane::test
