#include "ui/panes/poles/pole_box.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include "ui/widgets/mouse_steps.h"

namespace torvane {

PoleBox::PoleBox(QWidget* parent) : PictureBox(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::OpenHandCursor);
}

void PoleBox::Show(PoleMap map) {
  // In the other plane the view means nothing.
  if ((map.Ts > 0.0) != (map_.Ts > 0.0)) view_ = {};
  map_ = std::move(map);
  Renew();
}

void PoleBox::SetView(const PoleView& view) {
  if (view == view_) return;
  view_ = view;
  Renew();
}

PoleView PoleBox::Present() const {
  return {painter_.Axes().Centre, painter_.Axes().Scale.x()};
}

void PoleBox::Renew() {
  if (!isVisible()) return;
  const QSize pixels = BeginPicture();
  if (picture_.size() != pixels) picture_ = QPixmap(pixels);
  picture_.setDevicePixelRatio(Ratio());
  painter_.Layout(pixels, Ratio(), view_);
  QPainter painter(&picture_);
  painter.scale(1.0 / Ratio(), 1.0 / Ratio());
  painter_.Paint(painter, Colours());
  update();
}

void PoleBox::paintEvent(QPaintEvent*) {
  if (Stale()) Renew();
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  if (!hasFocus()) return;
  painter.setPen(palette().color(QPalette::Highlight));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void PoleBox::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  held_ = painter_.Axes().ValueAt(event->position() * Ratio());
  setCursor(Qt::ClosedHandCursor);
}

void PoleBox::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position() * Ratio();
  if (held_ && event->buttons().testFlag(Qt::LeftButton)) {
    PoleView view = Present();
    view.Centre += *held_ - painter_.Axes().ValueAt(at);
    SetView(view);
  }
  const auto pole = painter_.PoleAt(at);
  emit PoleTouched(pole ? static_cast<int>(*pole) : -1);
}

void PoleBox::mouseReleaseEvent(QMouseEvent*) {
  held_.reset();
  setCursor(Qt::OpenHandCursor);
}

void PoleBox::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) SetView({});
}

// Limited to what doubles tell apart.
void PoleBox::Zoom(const QPointF& about, int steps) {
  constexpr double Finest = 1e-9;
  constexpr double Coarsest = 1e9;
  PoleView view = Present();
  const QPointF there = painter_.Axes().ValueAt(about);
  const double scale = TurnedScale(view.Scale, steps);
  if (!(scale >= Finest && scale <= Coarsest)) return;
  view.Centre = there + (view.Centre - there) * (scale / view.Scale);
  view.Scale = scale;
  SetView(view);
}

void PoleBox::wheelEvent(QWheelEvent* event) {
  event->accept();
  const int steps = Wheel().StepsOf(*event);
  if (steps != 0) Zoom(event->position() * Ratio(), steps);
}

void PoleBox::keyPressEvent(QKeyEvent* event) {
  const QPointF middle = QRectF(painter_.Axes().Plate).center();
  PoleView view = Present();
  switch (event->key()) {
    case Qt::Key_Plus:
      return Zoom(middle, 1);
    case Qt::Key_Minus:
      return Zoom(middle, -1);
    case Qt::Key_Home:
      return SetView({});
    case Qt::Key_Left:
      view.Centre.rx() -= view.Scale;
      break;
    case Qt::Key_Right:
      view.Centre.rx() += view.Scale;
      break;
    case Qt::Key_Up:
      view.Centre.ry() += view.Scale;
      break;
    case Qt::Key_Down:
      view.Centre.ry() -= view.Scale;
      break;
    default:
      return QWidget::keyPressEvent(event);
  }
  SetView(view);
}

}  // namespace torvane
