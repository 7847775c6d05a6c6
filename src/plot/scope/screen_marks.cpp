#include "plot/scope/screen_marks.h"

#include <QFontMetrics>
#include <algorithm>
#include <numeric>

namespace torvane {

namespace {

constexpr double FlagHeight = 15.0;
constexpr double FlagWidth = 14.0;  // of the body of a flag with one character
constexpr double TipLength = 6.0;
constexpr double Padding = 4.0;  // beside the text of a tag
constexpr double EdgeGap = 1.0;  // between a tip and the screen
constexpr int LongestName = 8;   // characters of a tag's name that always have room
constexpr double Reach = 2.0;    // around a mark that still counts as hit

}  // namespace

// Neighbours that would cover each other form a group, which is centred on what its members want;
// a group that then meets the one before it joins it.
std::vector<int> SpreadFlags(const std::vector<int>& centres, int height, int low, int high) {
  struct Group {
    double Top;
    int Count;
  };
  std::vector<std::size_t> order(centres.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return centres[a] < centres[b]; });
  const auto limited = [&](double top, int count) {
    return std::clamp(top, 1.0 * low, std::max(1.0 * low, 1.0 * high - count * height));
  };
  std::vector<Group> groups;
  for (const std::size_t i : order) {
    Group group{limited(centres[i] - height / 2.0, 1), 1};
    while (!groups.empty() && groups.back().Top + groups.back().Count * height > group.Top) {
      const Group& before = groups.back();
      const int count = before.Count + group.Count;
      // Where each part would have its first flag if it were alone, weighed by its size.
      const double top =
          (before.Count * before.Top + group.Count * (group.Top - before.Count * height)) / count;
      group = {limited(top, count), count};
      groups.pop_back();
    }
    groups.push_back(group);
  }
  std::vector<int> tops(centres.size());
  std::size_t next = 0;
  for (const Group& group : groups) {
    for (int k = 0; k < group.Count; ++k) {
      tops[order[next++]] = static_cast<int>(group.Top) + k * height;
    }
  }
  return tops;
}

int ScreenMarks::LeftRoom(double ratio) {
  return qRound((FlagWidth + TipLength + EdgeGap) * ratio);
}

int ScreenMarks::TopRoom(double ratio) {
  return qRound((FlagHeight + TipLength + EdgeGap) * ratio);
}

int ScreenMarks::TagRoom(const ScopeLabels& labels, bool names, const QFont& font, double ratio) {
  const QFontMetrics metrics(font);
  int width = qRound(FlagWidth * ratio);
  for (const TraceMark& trace : labels.Traces) {
    if (!names) break;
    const int most = metrics.horizontalAdvance(QString(LongestName + 2, u'0'));
    const QString text = QString::fromStdString(trace.Number() + " " + trace.Name);
    width = std::max(
        width, std::min(most, metrics.horizontalAdvance(text) + 2) + qRound(2 * Padding * ratio));
  }
  return width + qRound((TipLength + EdgeGap) * ratio);
}

void ScreenMarks::Layout(const QRect& plate, const ScopeLabels& labels, bool names,
                         const QFont& font, double ratio) {
  traces_ = labels.Traces;
  plate_ = plate;
  font_ = font;
  ratio_ = ratio;
  names_ = names;
  const int overhang = Scaled(FlagHeight) / 2;
  tagArea_ = QRect(plate.right() + 1, plate.top() - overhang, TagRoom(labels, names, font, ratio),
                   plate.height() + 2 * overhang);
  tags_.clear();
  position_.reset();
  PlaceZeros(labels);
  if (labels.Trigger) PlacePosition(*labels.Trigger);
}

int ScreenMarks::YOf(double divisions) const {
  const double y = plate_.height() * (0.5 - divisions / ZelScope::VerticalDivisions);
  return plate_.top() + std::clamp(qRound(y), 0, plate_.height() - 1);
}

void ScreenMarks::PlaceZeros(const ScopeLabels& labels) {
  zeros_.clear();
  std::vector<int> tips;
  for (const TraceMark& trace : labels.Traces) {
    tips.push_back(YOf(trace.Zero));
    zeros_.push_back({{},
                      {},
                      {ScreenMark::Kind::Zero, trace.Channel},
                      trace.Colour,
                      QString::fromStdString(trace.Number())});
  }
  if (labels.Trigger) {
    tips.push_back(YOf(labels.Trigger->Level));
    zeros_.push_back(
        {{}, {}, {ScreenMark::Kind::Level, 0}, labels.Trigger->Colour, QStringLiteral("T")});
  }
  const int height = Scaled(FlagHeight);
  const std::vector<int> tops =
      SpreadFlags(tips, height, plate_.top() - height / 2, plate_.bottom() + height / 2 + 1);
  const int x = plate_.left() - Scaled(EdgeGap);
  const int width = Scaled(FlagWidth);
  for (std::size_t i = 0; i < zeros_.size(); ++i) {
    zeros_[i].Tip = {x, tips[i]};
    zeros_[i].Body = {x - Scaled(TipLength) - width, tops[i], width, height - 1};
  }
}

void ScreenMarks::PlacePosition(const TriggerMark& trigger) {
  const int x = plate_.left() + qRound(trigger.Position * (plate_.width() - 1));
  const int y = plate_.top() - Scaled(EdgeGap);
  const int width = Scaled(FlagWidth);
  const int height = Scaled(FlagHeight);
  position_ = Flag{{x - width / 2, y - Scaled(TipLength) - height, width, height},
                   {x, y},
                   {ScreenMark::Kind::Position, 0},
                   trigger.Colour,
                   QStringLiteral("T")};
}

QRect ScreenMarks::PositionFlag() const {
  return position_ ? position_->Body : QRect();
}

QString ScreenMarks::TagText(const TraceMark& trace) const {
  const std::string number = trace.Number();
  if (!names_) return QString::fromStdString(number);
  const int room = tagArea_.width() - Scaled(TipLength + EdgeGap + 2 * Padding);
  return QFontMetrics(font_).elidedText(QString::fromStdString(number + " " + trace.Name),
                                        Qt::ElideRight, room);
}

void ScreenMarks::PaintZeros(QPainter& painter, const ScopeColours& colours) const {
  for (const Flag& flag : zeros_) {
    if (flag.Mark.Is == ScreenMark::Kind::Zero) PaintFlag(painter, colours, flag);
  }
}

void ScreenMarks::PaintTrigger(QPainter& painter, const ScopeColours& colours) const {
  for (const Flag& flag : zeros_) {
    if (flag.Mark.Is == ScreenMark::Kind::Level) PaintFlag(painter, colours, flag);
  }
  if (position_) PaintFlag(painter, colours, *position_);
}

void ScreenMarks::PaintTags(QPainter& painter, const ScopeColours& colours,
                            const std::vector<std::optional<int>>& ends) {
  tags_.clear();
  std::vector<int> tips;
  for (std::size_t i = 0; i < ends.size() && i < traces_.size(); ++i) {
    if (!ends[i]) continue;
    const TraceMark& trace = traces_[i];
    tips.push_back(plate_.top() + std::clamp(*ends[i], 0, plate_.height() - 1));
    tags_.push_back({{}, {}, {ScreenMark::Kind::Tag, trace.Channel}, trace.Colour, TagText(trace)});
  }
  const int height = Scaled(FlagHeight);
  const std::vector<int> tops =
      SpreadFlags(tips, height, tagArea_.top(), tagArea_.top() + tagArea_.height());
  const int x = tagArea_.left() + Scaled(EdgeGap);
  const int left = x + Scaled(TipLength);
  for (std::size_t i = 0; i < tags_.size(); ++i) {
    tags_[i].Tip = {x, tips[i]};
    tags_[i].Body = {left, tops[i], tagArea_.right() + 1 - left, height - 1};
    PaintFlag(painter, colours, tags_[i]);
  }
}

// A body with a tip at the side where the place meant is. Zeros and tags are filled; the trigger's
// flags are outlined, as they are no trace's.
void ScreenMarks::PaintFlag(QPainter& painter, const ScopeColours& colours,
                            const Flag& flag) const {
  const QRectF body(flag.Body);
  const QPointF tip = QPointF(flag.Tip) + QPointF(0.5, 0.5);
  QPolygonF shape;
  if (flag.Mark.Is == ScreenMark::Kind::Position) {
    shape << body.topLeft() << body.topRight() << body.bottomRight() << tip << body.bottomLeft();
  } else if (tip.x() > body.right()) {
    shape << body.topLeft() << body.topRight() << tip << body.bottomRight() << body.bottomLeft();
  } else {
    shape << body.topRight() << body.topLeft() << tip << body.bottomLeft() << body.bottomRight();
  }
  const bool ofTrace =
      flag.Mark.Is == ScreenMark::Kind::Zero || flag.Mark.Is == ScreenMark::Kind::Tag;
  const QColor colour = flag.Colour < 0 ? colours.Text : colours.Trace(flag.Colour);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(ofTrace ? colours.Around : colour, 1.2 * ratio_, Qt::SolidLine, Qt::FlatCap,
                      Qt::MiterJoin));
  painter.setBrush(ofTrace ? colour : colours.Around);
  painter.drawPolygon(shape);
  painter.setFont(font_);
  painter.setPen(!ofTrace ? colours.Text : colours.TextOn(flag.Colour));
  painter.drawText(body, Qt::AlignCenter | Qt::TextDontClip, flag.Text);
  painter.restore();
}

std::optional<ScreenMark> ScreenMarks::At(const QPoint& point) const {
  const auto hit = [&](const Flag& flag) {
    const int reach = Scaled(Reach);
    const QRect whole = flag.Body | QRect(flag.Tip, QSize(1, 1));
    const QRect near =
        flag.Mark.Is == ScreenMark::Kind::Position
            ? whole
            : QRect(whole.left(), flag.Body.top(), whole.width(), flag.Body.height());
    return near.adjusted(-reach, 0, reach, 0).contains(point);
  };
  if (position_ && hit(*position_)) return position_->Mark;
  for (const std::vector<Flag>* flags : {&zeros_, &tags_}) {
    const auto found = std::find_if(flags->begin(), flags->end(), hit);
    if (found != flags->end()) return found->Mark;
  }
  return std::nullopt;
}

}  // namespace torvane
