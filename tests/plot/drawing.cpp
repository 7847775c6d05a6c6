#include "plot/drawing.h"

#include <QPainterPath>
#include <sstream>

#include "support/expected_lines.h"

namespace torvane::test {
namespace {

constexpr int MostPoints = 12;  // of a line that are written down

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
    Add("text '" + item.text().toStdString() + "'", {at});
  }

  std::vector<std::string> Drawn;

 private:
  void Add(const std::string& what, const QVector<QPointF>& points) {
    std::string style;
    const QPen& pen = state->pen();
    if (pen.style() != Qt::NoPen) {
      std::ostringstream words;
      words << " pen " << pen.color().name(QColor::HexArgb).toStdString() << ' ' << pen.widthF();
      for (const double dash : pen.dashPattern()) words << '-' << qRound(dash * pen.widthF());
      style = words.str();
    }
    const QBrush& brush = state->brush();
    if (brush != Qt::NoBrush) style += " on " + brush.color().name(QColor::HexArgb).toStdString();
    const bool goesOn = what != "shape" && what == what_ && style == style_;
    if (goesOn) Drawn.pop_back();
    if (!goesOn) points_.clear();
    what_ = what;
    style_ = style;
    for (const QPointF& point : points) points_ << state->transform().map(point).toPoint();
    Drawn.push_back(what + Places() + style);
  }
  std::string Places() const {
    const int count = static_cast<int>(points_.size());
    std::string places = count > MostPoints ? " of " + std::to_string(count) : "";
    for (int k = 0; k < std::min(count, MostPoints); ++k) {
      const QPoint& at = points_[count > MostPoints ? k * (count - 1) / (MostPoints - 1) : k];
      places += ' ' + std::to_string(at.x()) + ',' + std::to_string(at.y());
    }
    return places;
  }

  // Of the shape written last; lines of one style are one shape.
  std::string what_;
  std::string style_;
  QVector<QPoint> points_;
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

std::vector<std::string> Drawn(const std::function<void(QPainter&)>& paint,
                               QPaintEngine::Type type) {
  Device device(type);
  QPainter painter(&device);
  paint(painter);
  painter.end();
  return device.Recorder.Drawn;
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
    ExpectLines("drawings/" + row.Name + ".txt",
                Drawn([&](QPainter& painter) { paint(painter, row); },
                      row.Has("pixels") ? QPaintEngine::Raster : QPaintEngine::User));
  }
}

}  // namespace torvane::test
