#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>

#include "core/text.h"
#include "plot/number_axis.h"
#include "plot/picture_fonts.h"
#include "plot/study/study_picture.h"

namespace torvane {

namespace {

// Lightness rises evenly, and hue tells nothing that it does not: as readable in grey and to the
// colour-blind.
constexpr std::array<QRgb, 5> Scale = {0x00204c, 0x414d6b, 0x7c7b78, 0xbcaf6f, 0xffea46};

constexpr double ScaleWidth = 16.0;
constexpr double ScaleGap = 18.0;
constexpr int WidestNumber = 8;  // characters beside the scale
constexpr double DotRadius = 5.0;
constexpr double Wide = 20.0;  // ends of a range so many times apart may be logarithmic

QColor ColourAt(double share) {
  const double at = std::clamp(share, 0.0, 1.0) * static_cast<double>(Scale.size() - 1);
  const auto below = std::min(static_cast<std::size_t>(at), Scale.size() - 2);
  const double part = at - static_cast<double>(below);
  const QColor from(Scale.at(below));
  const QColor to(Scale.at(below + 1));
  const auto mixed = [&](int a, int b) { return qRound(a + part * (b - a)); };
  return {mixed(from.red(), to.red()), mixed(from.green(), to.green()),
          mixed(from.blue(), to.blue())};
}

std::vector<double> Distinct(const StudyMap& map, double StudyMap::Run::*of) {
  std::set<double> values;
  for (const StudyMap::Run& run : map.Runs) values.insert(run.*of);
  return {values.begin(), values.end()};
}

// Evenly spread logarithms have their middle value far below the middle of the range.
bool LooksLogarithmic(const std::vector<double>& values) {
  if (!(values.front() > 0.0) || values.back() < Wide * values.front()) return false;
  return values[values.size() / 2] < 0.3 * (values.front() + values.back());
}

/// The cells around sorted values: edges midway between neighbours, on the axis's own scale.
struct Cells {
  std::vector<double> Values;
  std::vector<double> Edges;
  bool Log = false;

  explicit Cells(std::vector<double> values) : Values(std::move(values)) {
    Log = LooksLogarithmic(Values);
    const auto middle = [&](double a, double b) { return Log ? std::sqrt(a * b) : 0.5 * (a + b); };
    const auto beyond = [&](double end, double inner) {
      return Log ? end * std::sqrt(end / inner) : end + 0.5 * (end - inner);
    };
    if (Values.size() < 2) {
      Edges = {Values.front() - 0.5, Values.front() + 0.5};
      return;
    }
    Edges.push_back(beyond(Values[0], Values[1]));
    for (std::size_t k = 1; k < Values.size(); ++k)
      Edges.push_back(middle(Values[k - 1], Values[k]));
    Edges.push_back(beyond(Values.back(), Values[Values.size() - 2]));
  }

  std::size_t IndexOf(double value) const {
    return static_cast<std::size_t>(std::lower_bound(Values.begin(), Values.end(), value) -
                                    Values.begin());
  }
  /// Cells where they stand, or their values with a little room where there are none.
  NumberAxis Axis(bool cells) const {
    if (cells || Values.size() < 2) return {Edges.front(), Edges.back(), Log};
    const double share = 0.03;
    if (Log) {
      const double room = std::pow(Values.back() / Values.front(), share);
      return {Values.front() / room, Values.back() * room, true};
    }
    const double room = share * (Values.back() - Values.front());
    return {Values.front() - room, Values.back() + room, false};
  }
};

/// Paints one map.
class MapPainter {
 public:
  MapPainter(QPainter& painter, const StudyMap& map, const QSize& size, double ratio)
      : painter_(painter),
        map_(map),
        colours_(ScopeColours::Light()),
        ratio_(ratio),
        x_(Distinct(map, &StudyMap::Run::X)),
        y_(Distinct(map, &StudyMap::Run::Y)),
        cells_(map.Runs.size() == x_.Values.size() * y_.Values.size()) {
    const QFontMetrics words(Font());
    const int scale =
        qRound((ScaleWidth + ScaleGap) * ratio) + words.horizontalAdvance(u'0') * WidestNumber;
    frame_.X = x_.Axis(cells_);
    frame_.Y = y_.Axis(cells_);
    frame_.XCaption = map.XName;
    frame_.YCaption = map.YName;
    frame_.Title = map.Measure;
    if (map.Chosen) frame_.Title += "; framed: run " + std::to_string(*map.Chosen + 1);
    frame_.Layout(size, ratio, scale);
    FindRange();
    painter_.fillRect(QRect(QPoint(0, 0), size), colours_.Around);
  }

  void Paint() {
    frame_.Paint(painter_, colours_, !cells_);
    painter_.setFont(Font());
    for (const StudyMap::Run& run : map_.Runs) PaintRun(run);
    if (map_.Chosen) PaintFrame(map_.Runs[*map_.Chosen]);
    PaintScale();
  }

 private:
  QFont Font() const { return ScaledFont(QGuiApplication::font(), ratio_, 0.92); }

  void FindRange() {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    for (const StudyMap::Run& run : map_.Runs) {
      if (!run.Value) continue;
      low = std::min(low, *run.Value);
      high = std::max(high, *run.Value);
    }
    measured_ = low <= high;
    if (measured_) range_ = NumberAxis(low, high);
  }

  QRect AreaOf(const StudyMap::Run& run) const {
    if (!cells_) {
      const double r = DotRadius * ratio_;
      const QPointF at = frame_.At(run.X, run.Y);
      return QRectF(at.x() - r, at.y() - r, 2 * r, 2 * r).toRect();
    }
    const std::size_t i = x_.IndexOf(run.X);
    const std::size_t k = y_.IndexOf(run.Y);
    const QPoint low = frame_.At(x_.Edges[i], y_.Edges[k]).toPoint();
    const QPoint high = frame_.At(x_.Edges[i + 1], y_.Edges[k + 1]).toPoint();
    return {QPoint(low.x(), high.y()), QPoint(high.x() - 1, low.y() - 1)};
  }

  void PaintRun(const StudyMap::Run& run) {
    const QRect area = AreaOf(run);
    const double share = run.Value ? range_.ShareOf(*run.Value) : 0.0;
    if (!cells_) {
      painter_.setRenderHint(QPainter::Antialiasing);
      painter_.setPen(QPen(colours_.Axis, ratio_));
      painter_.setBrush(run.Value ? QBrush(ColourAt(share)) : QBrush(Qt::NoBrush));
      painter_.drawEllipse(area);
      painter_.setBrush(Qt::NoBrush);
      return;
    }
    painter_.fillRect(
        area, run.Value ? QBrush(ColourAt(share)) : QBrush(colours_.Axis, Qt::BDiagPattern));
    if (!run.Value) return;
    const QString text = QString::fromStdString(FormatGeneral(*run.Value, 3, 1));
    const QRect needed = QFontMetrics(Font()).boundingRect(text);
    if (needed.width() + 4 * ratio_ > area.width() || needed.height() > area.height()) return;
    painter_.setPen(share > 0.5 ? Qt::black : Qt::white);
    painter_.drawText(area, Qt::AlignCenter, text);
  }

  void PaintFrame(const StudyMap::Run& run) {
    const int out = cells_ ? 0 : qRound(3 * ratio_);
    painter_.setPen(QPen(Qt::white, 5 * ratio_));
    painter_.drawRect(AreaOf(run).adjusted(-out, -out, out, out));
    painter_.setPen(QPen(colours_.Cursor, 3 * ratio_));
    painter_.drawRect(AreaOf(run).adjusted(-out, -out, out, out));
  }

  void PaintScale() {
    if (!measured_) return;
    painter_.setRenderHint(QPainter::Antialiasing, false);
    const QRect& plate = frame_.Plate;
    const int left = plate.right() + qRound(ScaleGap * ratio_);
    const int width = qRound(ScaleWidth * ratio_);
    for (int y = plate.top(); y <= plate.bottom(); ++y) {
      const double share = static_cast<double>(plate.bottom() - y) / plate.height();
      painter_.fillRect(left, y, width, 1, ColourAt(share));
    }
    painter_.setPen(colours_.Text);
    const int height = QFontMetrics(Font()).height();
    for (const double tick : range_.Ticks(6)) {
      const int y = plate.bottom() - qRound(range_.ShareOf(tick) * plate.height());
      painter_.drawLine(left + width, y, left + width + qRound(3 * ratio_), y);
      painter_.drawText(
          QRect(left + width + qRound(6 * ratio_), y - height, 10 * height, 2 * height),
          Qt::AlignLeft | Qt::AlignVCenter, TickText(tick));
    }
  }

  QPainter& painter_;
  const StudyMap& map_;
  ScopeColours colours_;
  double ratio_;
  Cells x_;
  Cells y_;
  bool cells_;
  bool measured_ = false;
  NumberAxis range_;
  NumberFrame frame_{};
};

}  // namespace

Picture StudyMapPicture(StudyMap map) {
  const auto paint = [map = std::move(map)](QPainter& painter, const QSize& size, double ratio) {
    if (!map.Runs.empty()) MapPainter(painter, map, size, ratio).Paint();
  };
  return {"Study", paint};
}

}  // namespace torvane
