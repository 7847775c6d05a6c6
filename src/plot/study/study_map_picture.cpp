#include <QFontMetrics>
#include <QGuiApplication>
#include <QtMath>
#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

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
constexpr int ScaleTicks = 6;
constexpr double DotRadius = 5.0;
constexpr double Wide = 8.0;  // ends of a range so many times apart may be logarithmic

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

std::vector<double> Distinct(const StudyMap::Slice& slice, double StudyMap::Run::*of) {
  std::set<double> values;
  for (const StudyMap::Run& run : slice.Runs) values.insert(run.*of);
  return {values.begin(), values.end()};
}

// What lies so many times the middle half's spread beyond it takes no colours from the others.
constexpr double FarAway = 10.0;

// The ends of the middle half of sorted values.
std::pair<double, double> MiddleHalf(const std::vector<double>& sorted) {
  const std::size_t quarter = sorted.size() / 4;
  return {sorted[quarter], sorted[sorted.size() - 1 - quarter]};
}

/// The axis of the colours; none of a map in which nothing was measured.
std::optional<NumberAxis> ColourAxis(const StudyMap& map) {
  if (map.Limits) return NumberAxis(map.Limits->first, map.Limits->second);
  std::vector<double> values;
  for (const StudyMap::Slice& slice : map.Slices) {
    for (const StudyMap::Run& run : slice.Runs) {
      if (run.Value) values.push_back(*run.Value);
    }
  }
  if (values.empty()) return std::nullopt;
  std::sort(values.begin(), values.end());
  auto [low, high] = MiddleHalf(values);
  // Where most are the same, as an overshoot of 0, the others tell how far they spread.
  if (low == high) {
    std::vector<double> distinct;
    std::ranges::unique_copy(values, std::back_inserter(distinct));
    std::tie(low, high) = MiddleHalf(distinct);
  }
  const double room = FarAway * (high - low);
  if (room > 0.0) {
    const double least = low - room;
    const double most = high + room;
    std::erase_if(values, [&](double v) { return v < least || v > most; });
  }
  return NumberAxis(values.front(), values.back());
}

// Evenly spread logarithms have their middle value nearer to the ends' geometric mean.
bool LooksLogarithmic(const std::vector<double>& values) {
  if (!(values.front() > 0.0) || values.back() < Wide * values.front()) return false;
  const double middle = values[values.size() / 2];
  const double mean = 0.5 * (values.front() + values.back());
  return middle * middle < mean * std::sqrt(values.front() * values.back());
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

/// Paints one slice of a map.
class SlicePainter {
 public:
  SlicePainter(QPainter& painter, const StudyMap& map, const StudyMap::Slice& slice,
               const std::optional<NumberAxis>& range, const QSize& size, double ratio)
      : painter_(painter),
        map_(map),
        slice_(slice),
        colours_(ScopeColours::Light()),
        ratio_(ratio),
        x_(Distinct(slice, &StudyMap::Run::X)),
        y_(Distinct(slice, &StudyMap::Run::Y)),
        cells_(slice.Runs.size() == x_.Values.size() * y_.Values.size()),
        measured_(range.has_value()),
        range_(range.value_or(NumberAxis())) {
    const QFontMetrics words(Font());
    const int scale =
        qRound((ScaleWidth + ScaleGap) * ratio) + words.horizontalAdvance(u'0') * WidestNumber;
    frame_.X = x_.Axis(cells_);
    frame_.Y = y_.Axis(cells_);
    frame_.XCaption = map.XName;
    frame_.YCaption = map.YName;
    frame_.Title = slice.Text + (slice.Text.empty() ? "" : ": ") + map.Measure;
    chosen_ =
        std::ranges::find_if(slice.Runs, [&](const auto& run) { return map.Chosen == run.Row; });
    if (chosen_ != slice.Runs.end()) {
      frame_.Title += "; framed: run " + std::to_string(*map.Chosen + 1);
    }
    frame_.Layout(size, ratio, scale);
    painter_.fillRect(QRect(QPoint(0, 0), size), colours_.Around);
  }

  void Paint() {
    frame_.Paint(painter_, colours_, !cells_);
    painter_.setFont(Font());
    for (const StudyMap::Run& run : slice_.Runs) PaintRun(run);
    if (cells_) {
      FillGrid();
      if (map_.Contours) PaintContours();
      PaintBorder();
    }
    if (chosen_ != slice_.Runs.end()) PaintFrame(*chosen_);
    PaintScale();
  }

 private:
  QFont Font() const { return ScaledFont(QGuiApplication::font(), ratio_, 0.92); }

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

  // Pale where something that is required is not met.
  static QColor Shown(const StudyMap::Run& run, double share) {
    const QColor colour = ColourAt(share);
    const auto pale = [](int part) { return 255 - (255 - part) / 4; };
    return run.Meets ? colour
                     : QColor(pale(colour.red()), pale(colour.green()), pale(colour.blue()));
  }

  void PaintRun(const StudyMap::Run& run) {
    const QRect area = AreaOf(run);
    const double share = run.Value ? range_.ShareOf(*run.Value) : 0.0;
    if (!cells_) {
      painter_.setRenderHint(QPainter::Antialiasing);
      painter_.setPen(QPen(colours_.Axis, ratio_));
      painter_.setBrush(run.Value ? QBrush(Shown(run, share)) : QBrush(Qt::NoBrush));
      painter_.drawEllipse(area);
      painter_.setBrush(Qt::NoBrush);
      return;
    }
    painter_.fillRect(
        area, run.Value ? QBrush(Shown(run, share)) : QBrush(colours_.Axis, Qt::BDiagPattern));
    if (!run.Value || map_.Contours) return;
    const QString text = QString::fromStdString(FormatGeneral(*run.Value, 3, 1));
    const QRect needed = QFontMetrics(Font()).boundingRect(text);
    if (needed.width() + 4 * ratio_ > area.width() || needed.height() > area.height()) return;
    painter_.setPen(share > 0.5 || !run.Meets ? Qt::black : Qt::white);
    painter_.drawText(area, Qt::AlignCenter, text);
  }

  const StudyMap::Run* RunAt(std::size_t i, std::size_t k) const {
    return i < x_.Values.size() && k < y_.Values.size() ? grid_[i * y_.Values.size() + k] : nullptr;
  }

  void FillGrid() {
    grid_.resize(slice_.Runs.size());
    for (const StudyMap::Run& run : slice_.Runs) {
      grid_[x_.IndexOf(run.X) * y_.Values.size() + y_.IndexOf(run.Y)] = &run;
    }
  }

  // Around the cells that meet what is required.
  void PaintBorder() {
    QVector<QLineF> lines;
    const auto meets = [](const StudyMap::Run* run) { return run && run->Meets; };
    for (std::size_t i = 0; i < x_.Values.size(); ++i) {
      for (std::size_t k = 0; k < y_.Values.size(); ++k) {
        const QPointF low = frame_.At(x_.Edges[i], y_.Edges[k]);
        const QPointF high = frame_.At(x_.Edges[i + 1], y_.Edges[k + 1]);
        const bool here = meets(RunAt(i, k));
        if (i + 1 < x_.Values.size() && here != meets(RunAt(i + 1, k))) {
          lines << QLineF(high.x(), low.y(), high.x(), high.y());
        }
        if (k + 1 < y_.Values.size() && here != meets(RunAt(i, k + 1))) {
          lines << QLineF(low.x(), high.y(), high.x(), high.y());
        }
      }
    }
    PaintLines(lines, colours_.Cursor, 2.0);
  }

  // Lines of equal values between the middles of the cells, straight within each triangle of three
  // neighbours.
  void PaintContours() {
    QVector<QLineF> lines;
    for (std::size_t i = 0; i + 1 < x_.Values.size(); ++i) {
      for (std::size_t k = 0; k + 1 < y_.Values.size(); ++k) {
        AddContours({RunAt(i, k), RunAt(i + 1, k), RunAt(i + 1, k + 1)}, lines);
        AddContours({RunAt(i, k), RunAt(i, k + 1), RunAt(i + 1, k + 1)}, lines);
      }
    }
    painter_.setRenderHint(QPainter::Antialiasing);
    PaintLines(lines, colours_.Text, 1.5);
    painter_.setRenderHint(QPainter::Antialiasing, false);
  }

  // Of the contours, which the scale names.
  std::vector<double> Levels() const {
    return map_.Levels.empty() ? range_.Ticks(ScaleTicks) : map_.Levels;
  }

  // White beside it a line is seen on any colour.
  void PaintLines(const QVector<QLineF>& lines, const QColor& colour, double width) {
    painter_.setPen(QPen(Qt::white, (width + 2.0) * ratio_));
    painter_.drawLines(lines);
    painter_.setPen(QPen(colour, width * ratio_));
    painter_.drawLines(lines);
  }

  void AddContours(const std::array<const StudyMap::Run*, 3>& corners, QVector<QLineF>& lines) {
    if (!std::ranges::all_of(corners, [](const auto* run) { return run->Value.has_value(); })) {
      return;
    }
    for (const double level : Levels()) {
      std::vector<QPointF> ends;
      for (std::size_t a = 0; a < 3; ++a) {
        const StudyMap::Run& from = *corners.at(a);
        const StudyMap::Run& to = *corners.at((a + 1) % 3);
        if ((*from.Value < level) == (*to.Value < level)) continue;
        const double share = (level - *from.Value) / (*to.Value - *from.Value);
        const QPointF start = frame_.At(from.X, from.Y);
        ends.push_back(start + share * (frame_.At(to.X, to.Y) - start));
      }
      if (ends.size() == 2) lines << QLineF(ends[0], ends[1]);
    }
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
    int above = plate.bottom() + height;
    for (const double tick : Levels()) {
      const double share = range_.ShareOf(tick);
      const int y = plate.bottom() - qRound(share * plate.height());
      if (share < 0.0 || share > 1.0 || above - y < height) continue;  // no room for its number
      above = y;
      painter_.drawLine(left + width, y, left + width + qRound(3 * ratio_), y);
      painter_.drawText(
          QRect(left + width + qRound(6 * ratio_), y - height, 10 * height, 2 * height),
          Qt::AlignLeft | Qt::AlignVCenter, TickText(tick));
    }
  }

  QPainter& painter_;
  const StudyMap& map_;
  const StudyMap::Slice& slice_;
  ScopeColours colours_;
  double ratio_;
  Cells x_;
  Cells y_;
  bool cells_;
  bool measured_;
  NumberAxis range_;
  std::vector<StudyMap::Run>::const_iterator chosen_;
  std::vector<const StudyMap::Run*> grid_;  ///< by x, then y
  NumberFrame frame_{};
};

}  // namespace

Picture StudyMapPicture(StudyMap map) {
  const auto paint = [map = std::move(map)](QPainter& painter, const QSize& size, double ratio) {
    const auto range = ColourAxis(map);
    const int count = static_cast<int>(map.Slices.size());
    const int columns = std::max(1, qCeil(std::sqrt(count)));
    const int lines = std::max(1, (count + columns - 1) / columns);
    const QSize part(size.width() / columns, size.height() / lines);
    for (int i = 0; i < count; ++i) {
      painter.save();
      painter.translate(i % columns * part.width(), i / columns * part.height());
      SlicePainter(painter, map, map.Slices[static_cast<std::size_t>(i)], range, part, ratio)
          .Paint();
      painter.restore();
    }
  };
  return {"Study", paint};
}

}  // namespace torvane
