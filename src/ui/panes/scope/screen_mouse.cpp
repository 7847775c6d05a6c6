#include "ui/panes/scope/screen_mouse.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "ui/widgets/mouse_steps.h"

namespace torvane {

namespace {

constexpr double TraceReach = 8.0;       // pixels from a trace that still choose it
constexpr double CursorLineReach = 5.0;  // and from a cursor

}  // namespace

bool ScreenMouse::Press(const QPoint& at) {
  moved_ = false;
  from_ = at;
  if (HoldMark(at)) return true;
  if (!CursorsMove()) return false;
  const ScopeCursors& cursors = scope_.Cursors();
  const int x = PlateX(at);
  const bool second = cursors.Mode == 2 && std::abs(x - cursors.X[1]) < std::abs(x - cursors.X[0]);
  index_ = second ? 1 : 0;
  held_ = Held::Cursor;
  return true;
}

bool ScreenMouse::HoldMark(const QPoint& at) {
  const std::optional<ScreenMark> mark = painter_.Marks().At(at);
  if (!mark) return false;
  switch (mark->Is) {
    case ScreenMark::Kind::Zero:
      held_ = Held::Zero;
      index_ = mark->Channel;
      start_ = scope_.Channels()[index_]->Vertical().Offset;
      return true;
    case ScreenMark::Kind::Level:
      held_ = Held::Level;
      start_ = scope_.Trigger().Level();
      return true;
    case ScreenMark::Kind::Position:
      held_ = Held::Position;
      start_ = scope_.Trigger().Position();
      return true;
    case ScreenMark::Kind::Tag:
      break;
  }
  return false;
}

// A cursor jumps to the mouse; a mark moves by as much as the mouse does, so a mere click leaves it
// where it is.
void ScreenMouse::MoveTo(const QPoint& at) {
  if (held_ == Held::Cursor) scope_.SetCursorX(index_, PlateX(at));
  moved_ = moved_ || at != from_;
  if (!moved_) return;
  if (held_ == Held::Zero) DragZero(at);
  if (held_ == Held::Level) DragLevel(at);
  if (held_ == Held::Position) {
    const double percent = 100.0 * (at.x() - from_.x()) / painter_.Plate().width();
    scope_.Trigger().SetPosition(std::round(start_ + percent));
  }
}

// Divisions upwards since the mark was taken.
double ScreenMouse::Risen(const QPoint& at) const {
  return 1.0 * (from_.y() - at.y()) * ZelScope::VerticalDivisions / painter_.Plate().height();
}

void ScreenMouse::DragZero(const QPoint& at) {
  ZelChannel& channel = *scope_.Channels()[index_];
  const double scale = channel.Vertical().Scale;
  scope_.SetVerticalOffset(channel, SteppedTo(start_ + Risen(at) * scale, scale));
}

void ScreenMouse::DragLevel(const QPoint& at) {
  const double scale = scope_.Trigger().Source().Vertical().Scale;
  scope_.Trigger().SetLevel(SteppedTo(start_ + Risen(at) * scale, scale));
}

int ScreenMouse::PlateX(const QPoint& at) const {
  return std::clamp(at.x() - painter_.Plate().left(), 0, painter_.Plate().width() - 1);
}

bool ScreenMouse::NearCursor(const QPoint& at) const {
  if (!CursorsMove() || !painter_.Plate().contains(at)) return false;
  const ScopeCursors& cursors = scope_.Cursors();
  for (int k = 0; k < cursors.Mode; ++k) {
    if (std::abs(PlateX(at) - cursors.X[static_cast<std::size_t>(k)]) <=
        painter_.Scaled(CursorLineReach)) {
      return true;
    }
  }
  return false;
}

std::optional<std::size_t> ScreenMouse::ChoiceAt(const QPoint& at) const {
  if (const std::optional<ScreenMark> mark = painter_.Marks().At(at)) {
    if (mark->Is == ScreenMark::Kind::Zero || mark->Is == ScreenMark::Kind::Tag) {
      return mark->Channel;
    }
    return std::nullopt;
  }
  if (const std::optional<std::size_t> entry = painter_.LegendAt(at)) return entry;
  if (CursorsMove()) return std::nullopt;
  return painter_.TraceAt(at, painter_.Scaled(TraceReach));
}

Qt::CursorShape ScreenMouse::ShapeAt(const QPoint& at) const {
  if (const std::optional<ScreenMark> mark = painter_.Marks().At(at)) {
    if (mark->Is == ScreenMark::Kind::Position) return Qt::SizeHorCursor;
    if (mark->Is != ScreenMark::Kind::Tag) return Qt::SizeVerCursor;
  }
  if (NearCursor(at)) return Qt::SizeHorCursor;
  return ChoiceAt(at) ? Qt::PointingHandCursor : Qt::ArrowCursor;
}

QString ScreenMouse::HintAt(const QPoint& at) const {
  const std::optional<ScreenMark> mark = painter_.Marks().At(at);
  if (!mark) return {};
  const auto name = [&] {
    return QString::fromStdString(scope_.Channels()[mark->Channel]->Name());
  };
  switch (mark->Is) {
    case ScreenMark::Kind::Zero:
      return QStringLiteral("Zero of %1: drag it to change the offset").arg(name());
    case ScreenMark::Kind::Tag:
      return QStringLiteral("%1: click to select the channel").arg(name());
    case ScreenMark::Kind::Level:
      return QStringLiteral("Trigger level: drag it to change the level");
    case ScreenMark::Kind::Position:
      break;
  }
  return QStringLiteral("Trigger position: drag it to change how much is shown before the event");
}

void ScreenMouse::TurnScale(ZelChannel& channel, int steps) {
  scope_.SetVerticalScale(channel, TurnedScale(channel.Vertical().Scale, steps));
}

void ScreenMouse::TurnTimeBase(int steps) {
  ZelChannel* axis = scope_.HorizontalChannel();
  if (axis) scope_.SetHorizontalScale(*axis, TurnedScale(axis->Horizontal().Scale, steps));
}

}  // namespace torvane
