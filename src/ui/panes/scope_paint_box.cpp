#include "ui/panes/scope_paint_box.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <cmath>

namespace torvane {

namespace {

// A sweep that takes fewer refreshes than this is too quick to watch it grow.
constexpr int RefreshesOfFastSweep = 4;

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128;
}

}  // namespace

ScopePaintBox::ScopePaintBox(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void ScopePaintBox::SetScope(ZelScope& scope) {
  scope_ = &scope;
  painter_.emplace(scope);
  Prepare();
}

void ScopePaintBox::SetReference(const ZelChannel* channel) {
  reference_ = channel;
  Refresh();
}

// Sweeps that complete within a few refreshes would show a different share of the trace each time.
// For them the points of the sweep before stay until they are overwritten, so that a steady signal
// gives a steady picture.
void ScopePaintBox::WatchSweeps() {
  if (scope_->TakeScreenCompleted()) {
    fastSweeps_ = refreshesSinceSweep_ < RefreshesOfFastSweep;
    refreshesSinceSweep_ = 0;
  } else if (refreshesSinceSweep_ < RefreshesOfFastSweep) {
    ++refreshesSinceSweep_;
  }
}

void ScopePaintBox::Refresh() {
  if (!painter_ || !isVisible()) return;
  WatchSweeps();
  const bool changed = scope_->TakeNeedsRedraw();
  if (stale_ || ratio_ != devicePixelRatioF() || labels_ != MakeScopeLabels(*scope_, reference_)) {
    Prepare();
    PaintAll();
    update();
  } else if (changed || (fastSweeps_ && painter_->HasNew())) {
    PaintAll();
    update();
  } else if (painter_->HasNew()) {
    QPainter painter(&picture_);
    painter.scale(1.0 / ratio_, 1.0 / ratio_);
    const QRectF area = painter_->PaintNew(painter);
    update(QRectF(area.topLeft() / ratio_, area.size() / ratio_).toAlignedRect());
  }
}

// Lays the picture out and paints what stays the same from frame to frame.
void ScopePaintBox::Prepare() {
  ratio_ = devicePixelRatioF();
  labels_ = MakeScopeLabels(*scope_, reference_);
  const QSize pixels(qCeil(width() * ratio_), qCeil(height() * ratio_));
  painter_->Layout(pixels, ratio_, labels_);
  background_ = QPixmap(pixels);
  QPainter painter(&background_);
  painter_->PaintBackground(painter,
                            IsDark(palette()) ? ScopeColours::Dark() : ScopeColours::Light());
  painter.end();
  picture_ = background_.copy();
  picture_.setDevicePixelRatio(ratio_);
  stale_ = false;
}

void ScopePaintBox::PaintAll() {
  QPainter painter(&picture_);
  painter.scale(1.0 / ratio_, 1.0 / ratio_);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawPixmap(painter_->Plate(), background_, painter_->Plate());
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  painter_->PaintTraces(painter, fastSweeps_);
}

void ScopePaintBox::paintEvent(QPaintEvent*) {
  QPainter(this).drawPixmap(0, 0, picture_);
}

void ScopePaintBox::resizeEvent(QResizeEvent*) {
  stale_ = true;
  Refresh();
}

void ScopePaintBox::showEvent(QShowEvent*) {
  stale_ = true;
  Refresh();
}

void ScopePaintBox::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
    stale_ = true;
    Refresh();
  }
}

}  // namespace torvane
