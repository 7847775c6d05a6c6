#include "ui/panes/scope_paint_box.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <algorithm>

namespace torvane {

namespace {

constexpr qint64 SlowSweep = 100;  // milliseconds that make it worth watching a sweep grow

// No picture is larger than the displays, whatever size the window has been given; some platforms
// say less than they show.
QSize LargestPicture(const QWidget& widget) {
  return widget.screen()->virtualSize().expandedTo(QSize(2560, 1600));
}

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

// Time counts only while the sweep moves: it may wait for its trigger, or the run may stand still.
void ScopePaintBox::WatchSweeps() {
  const qint64 passed = std::min(sinceRefresh_.isValid() ? sinceRefresh_.restart() : 0, SlowSweep);
  if (!sinceRefresh_.isValid()) sinceRefresh_.start();
  const std::uint64_t sweep = scope_->SweepCount();
  const int fill = scope_->FillIndex();
  if (sweep != sweepSeen_) {
    slowSweeps_ = sweep == sweepSeen_ + 1 && age_ + passed > SlowSweep;
    age_ = 0;
  } else if (fill != fillSeen_) {
    age_ += passed;
    if (age_ > SlowSweep) slowSweeps_ = true;
  }
  sweepSeen_ = sweep;
  fillSeen_ = fill;
}

void ScopePaintBox::Refresh() {
  if (!painter_ || !isVisible()) return;
  WatchSweeps();
  scope_->CopyScreen(Shown(), screen_);
  const bool changed = scope_->TakeNeedsRedraw();
  if (stale_ || ratio_ != devicePixelRatioF() || labels_ != MakeScopeLabels(*scope_, reference_)) {
    Prepare();
    PaintAll();
    update();
  } else if (changed || screen_.Sweep != sweepPainted_) {
    PaintAll();
    update();
  } else if (painter_->HasNew(screen_)) {
    QPainter painter(&picture_);
    painter.scale(1.0 / ratio_, 1.0 / ratio_);
    const QRectF area = painter_->PaintNew(painter, screen_);
    update(QRectF(area.topLeft() / ratio_, area.size() / ratio_).toAlignedRect());
  }
}

// Lays the picture out and paints what stays the same from frame to frame.
void ScopePaintBox::Prepare() {
  ratio_ = devicePixelRatioF();
  labels_ = MakeScopeLabels(*scope_, reference_);
  const QSizeF area = size().boundedTo(LargestPicture(*this));
  const QSize pixels(qCeil(area.width() * ratio_), qCeil(area.height() * ratio_));
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
  painter_->PaintTraces(painter, screen_);
  sweepPainted_ = screen_.Sweep;
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
