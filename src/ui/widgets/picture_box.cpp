#include "ui/widgets/picture_box.h"

#include <QEvent>
#include <QtMath>

#include "ui/widgets/picture_ground.h"

namespace torvane {

PictureBox::PictureBox(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  connect(&wheel_, &WheelTurn::Begun, this, &PictureBox::GestureBegun);
  connect(&wheel_, &WheelTurn::Ended, this, &PictureBox::GestureEnded);
}

void PictureBox::SetLook(const TraceLook& look) {
  if (look_ == look) return;
  look_ = look;
  MakeStale();
  emit ColoursChanged();
}

ScopeColours PictureBox::Colours() const {
  return ColoursFor(palette(), look_.Colours);
}

QSize PictureBox::BeginPicture() {
  ratio_ = devicePixelRatioF();
  stale_ = false;
  const QSizeF area = size().boundedTo(LargestPicture(*this));
  return {qCeil(area.width() * ratio_), qCeil(area.height() * ratio_)};
}

void PictureBox::MakeStale() {
  stale_ = true;
  Renew();
}

void PictureBox::resizeEvent(QResizeEvent*) {
  MakeStale();
}

void PictureBox::showEvent(QShowEvent*) {
  MakeStale();
}

void PictureBox::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) MakeStale();
  if (event->type() == QEvent::PaletteChange) emit ColoursChanged();
}

}  // namespace torvane
