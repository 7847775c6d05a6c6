#include <algorithm>
#include <cmath>

#include "plot/number_axis.h"
#include "plot/plot_layout.h"
#include "plot/study/study_picture.h"

namespace torvane {

namespace {

constexpr double ThinWidth = 0.8;
constexpr double ThickWidth = 2.8;
constexpr double Tolerance = 0.25;      // pixels by which a line may pass a point
constexpr double OutermostPart = 0.02;  // of the runs may leave the picture on either side
constexpr double Room = 0.05;           // of the range, above and below

/// Leaves out the points that a line passes within the tolerance.
class Thinned {
 public:
  void Add(const QPointF& point) {
    if (points_.empty() || !(point.x() > last_.x())) {
      Keep(point);
      return;
    }
    const double run = point.x() - points_.back().x();
    const double rise = point.y() - points_.back().y();
    if (rise / run > steepest_ || rise / run < flattest_) {
      Keep(last_);
      Add(point);
      return;
    }
    steepest_ = std::min(steepest_, (rise + Tolerance) / run);
    flattest_ = std::max(flattest_, (rise - Tolerance) / run);
    last_ = point;
  }
  const QList<QPointF>& Points() {
    if (!points_.empty() && points_.back() != last_) Keep(last_);
    return points_;
  }

 private:
  void Keep(const QPointF& point) {
    points_.push_back(point);
    last_ = point;
    steepest_ = HUGE_VAL;
    flattest_ = -HUGE_VAL;
  }

  QList<QPointF> points_;
  QPointF last_;
  double steepest_ = HUGE_VAL;
  double flattest_ = -HUGE_VAL;
};

float Quantile(std::vector<float> values, double share) {
  const auto at = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + at, values.end());
  return values[static_cast<std::size_t>(at)];
}

NumberFrame FrameOf(const StudyResponses& responses) {
  std::vector<float> lowest;
  std::vector<float> highest;
  double from = HUGE_VAL;
  double to = -HUGE_VAL;
  for (const StudyTrace& trace : responses.Runs) {
    if (trace.Values.empty()) continue;
    const auto [low, high] = std::minmax_element(trace.Values.begin(), trace.Values.end());
    lowest.push_back(*low);
    highest.push_back(*high);
    from = std::min<double>(from, trace.Times.front());
    to = std::max<double>(to, trace.Times.back());
  }
  NumberFrame frame;
  frame.XCaption = "Time (" + responses.TimeUnit + ")";
  frame.YCaption = responses.Signal;
  frame.Title = std::to_string(lowest.size()) + " runs";
  if (responses.Chosen) frame.Title += "; thick: " + responses.ChosenText;
  if (lowest.empty()) return frame;
  double low = Quantile(lowest, OutermostPart);
  double high = Quantile(highest, 1.0 - OutermostPart);
  if (responses.Chosen && !responses.Runs[*responses.Chosen].Values.empty()) {
    const std::vector<float>& values = responses.Runs[*responses.Chosen].Values;
    low = std::min<double>(low, *std::min_element(values.begin(), values.end()));
    high = std::max<double>(high, *std::max_element(values.begin(), values.end()));
  }
  frame.X = NumberAxis(from, to);
  frame.Y = NumberAxis(low - Room * (high - low), high + Room * (high - low));
  return frame;
}

void PaintTrace(QPainter& painter, const NumberFrame& frame, const StudyTrace& trace) {
  Thinned line;
  for (std::size_t i = 0; i < trace.Times.size(); ++i) {
    QPointF point = frame.At(trace.Times[i], trace.Values[i]);
    point.setY(std::clamp(point.y(), -FarOutside, FarOutside));
    line.Add(point);
  }
  painter.drawPolyline(QPolygonF(line.Points()));
}

}  // namespace

Picture StudyResponsesPicture(StudyResponses responses) {
  const auto paint = [responses = std::move(responses)](QPainter& painter, const QSize& size,
                                                        double ratio) {
    const ScopeColours colours = ScopeColours::Light();
    NumberFrame frame = FrameOf(responses);
    frame.Layout(size, ratio);
    painter.fillRect(QRect(QPoint(0, 0), size), colours.Around);
    frame.Paint(painter, colours, true);
    painter.save();
    painter.setClipRect(frame.Plate);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor thin(0x2f5d9b);
    // Many lines on one another still show where they are densest.
    const auto runs = static_cast<double>(responses.Runs.size());
    thin.setAlphaF(static_cast<float>(std::clamp(3.0 / std::sqrt(runs), 0.12, 0.7)));
    painter.setPen(QPen(thin, ThinWidth * ratio));
    for (const StudyTrace& trace : responses.Runs) PaintTrace(painter, frame, trace);
    if (responses.Chosen) {
      painter.setPen(QPen(colours.Cursor, ThickWidth * ratio));
      PaintTrace(painter, frame, responses.Runs[*responses.Chosen]);
    }
    painter.restore();
  };
  return {"Study", paint};
}

}  // namespace torvane
