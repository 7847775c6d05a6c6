#include "ui/panes/analyser/response_paint_box.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace torvane {

namespace {

constexpr int FastStep = 10;          // columns that a cursor moves with Ctrl
constexpr double CursorReach = 12.0;  // pixels from its trace in a plane

}  // namespace

ResponsePaintBox::ResponsePaintBox(QWidget* parent) : PictureBox(parent) {}

void ResponsePaintBox::SetAnalyser(FrequencyAnalyser& analyser) {
  analyser_ = &analyser;
  painter_.emplace(analyser);
  plane_.emplace(analyser);
  mouse_.emplace(analyser, *plane_);
  PaintAll();
}

bool ResponsePaintBox::Refresh() {
  if (!painter_ || !isVisible()) return false;
  const bool changed = analyser_->TakeNeedsRedraw();
  if (!changed && !Stale()) return false;
  PaintAll();
  update();
  return true;
}

void ResponsePaintBox::SetMarks(const std::vector<ResponseMark>& marks) {
  if (marks_ == marks) return;
  marks_ = marks;
  update();
}

void ResponsePaintBox::SetEmptyText(const QString& text) {
  if (accessibleDescription() == text) return;
  setAccessibleDescription(text);
  update();
}

void ResponsePaintBox::PaintAll() {
  const QSize pixels = BeginPicture();
  if (picture_.size() != pixels) picture_ = QPixmap(pixels);
  picture_.setDevicePixelRatio(Ratio());
  painter_->Layout(pixels, Ratio(), Look());
  QPainter painter(&picture_);
  painter.scale(1.0 / Ratio(), 1.0 / Ratio());
  if (ShowsPlane()) {
    plane_->Layout(pixels, Ratio(), Look());
    plane_->Paint(painter, Colours());
  } else {
    painter_->Paint(painter, Colours());
  }
}

void ResponsePaintBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  if (!painter_) return;
  if (const QString text = accessibleDescription(); !text.isEmpty()) {
    const int wrapped = Qt::AlignCenter | Qt::TextWordWrap;
    const QRect place = painter.boundingRect(rect().adjusted(60, 0, -60, 0), wrapped, text);
    painter.fillRect(place.adjusted(-6, -3, 6, 3), Colours().Plate);
    painter.setPen(Colours().Text);
    painter.drawText(place, wrapped, text);
  }
  painter.scale(1.0 / Ratio(), 1.0 / Ratio());
  const ScopeColours colours = Colours();
  if (ShowsPlane()) {
    plane_->PaintCursors(painter, colours, PlotWidth());
  } else {
    painter_->PaintMarks(painter, colours, marks_);
    painter_->PaintCursors(painter, colours);
  }
  if (!hasFocus()) return;
  painter.setPen(palette().color(QPalette::Highlight));
  painter.drawRect(QRect(QPoint(), picture_.size() - QSize(1, 1)));
}

// In a plane, of the point that is nearest.
int ResponsePaintBox::ColumnAt(const QMouseEvent& event) const {
  if (ShowsPlane()) {
    const auto nearest = plane_->NearestTo(event.position() * Ratio());
    const double hz = nearest ? nearest->Hz : analyser_->FreqMin();
    return static_cast<int>(std::lround(analyser_->AxisShare(hz) * PlotWidth()));
  }
  return static_cast<int>(std::lround(event.position().x() * Ratio())) -
         painter_->GainPlate().left();
}

bool ResponsePaintBox::TakesCursor(const QMouseEvent& event) const {
  if (analyser_->Cursors() == FrequencyAnalyser::CursorMode::None) return false;
  if (!ShowsPlane()) return true;
  const auto nearest = plane_->NearestTo(event.position() * Ratio());
  return nearest && nearest->Distance <= CursorReach;
}

void ResponsePaintBox::MoveTo(int cursor, int column) {
  analyser_->SetCursorPixel(cursor, std::clamp(column, 0, PlotWidth() - 1));
}

void ResponsePaintBox::mousePressEvent(QMouseEvent* event) {
  const bool cursor = TakesCursor(*event);
  if (event->button() != Qt::LeftButton || (!cursor && !ShowsPlane())) return;
  Wheel().End();
  moving_ = true;
  emit GestureBegun();
  if (cursor) {
    const int x = ColumnAt(*event);
    const auto distance = [&](int of) { return std::abs(x - analyser_->CursorPixel(of)); };
    const bool two = analyser_->Cursors() == FrequencyAnalyser::CursorMode::Two;
    dragged_ = two && distance(1) < distance(0) ? 1 : 0;
    MoveTo(*dragged_, x);
  } else {
    mouse_->Press(event->position() * Ratio());
    setCursor(Qt::ClosedHandCursor);
  }
}

// A release that a box took, which opened meanwhile, shows in the buttons.
void ResponsePaintBox::mouseMoveEvent(QMouseEvent* event) {
  if (!event->buttons().testFlag(Qt::LeftButton)) {
    if (dragged_ || mouse_->Holds()) EndMove();
    ShowPointer(*event);
  } else if (dragged_) {
    MoveTo(*dragged_, ColumnAt(*event));
  } else if (mouse_->Holds()) {
    mouse_->MoveTo(event->position() * Ratio());
  }
}

void ResponsePaintBox::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || (!dragged_ && !mouse_->Holds())) return;
  EndMove();
  ShowPointer(*event);
}

void ResponsePaintBox::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && ShowsPlane()) ShowWholePlane();
}

void ResponsePaintBox::ShowWholePlane() {
  emit GestureBegun();
  mouse_->ShowAll();
  emit GestureEnded();
}

void ResponsePaintBox::wheelEvent(QWheelEvent* event) {
  event->setAccepted(ShowsPlane());
  if (!ShowsPlane() || mouse_->Holds() || dragged_) return;
  const int steps = Wheel().StepsOf(*event);
  if (steps != 0) mouse_->Turn(event->position() * Ratio(), steps);
}

void ResponsePaintBox::ShowPointer(const QMouseEvent& event) {
  setCursor(!ShowsPlane()        ? Qt::ArrowCursor
            : TakesCursor(event) ? Qt::PointingHandCursor
                                 : Qt::OpenHandCursor);
}

void ResponsePaintBox::EndMove() {
  dragged_.reset();
  mouse_->Release();
  if (std::exchange(moving_, false)) emit GestureEnded();
}

void ResponsePaintBox::keyPressEvent(QKeyEvent* event) {
  const int direction = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
  const int cursor = event->modifiers().testFlag(Qt::ShiftModifier) ? 1 : 0;
  if (direction == 0 || cursor >= static_cast<int>(analyser_->Cursors())) {
    QWidget::keyPressEvent(event);
    return;
  }
  if (!std::exchange(moving_, true)) emit GestureBegun();
  const int step = event->modifiers().testFlag(Qt::ControlModifier) ? FastStep : 1;
  // One that stands outside a plot that has become narrower starts from its edge.
  const int from = std::min(analyser_->CursorPixel(cursor), PlotWidth() - 1);
  MoveTo(cursor, from + direction * step);
}

void ResponsePaintBox::keyReleaseEvent(QKeyEvent* event) {
  if (!event->isAutoRepeat() && !dragged_) EndMove();
  QWidget::keyReleaseEvent(event);
}

void ResponsePaintBox::contextMenuEvent(QContextMenuEvent* event) {
  emit MenuAsked(event->globalPos());
}

}  // namespace torvane
