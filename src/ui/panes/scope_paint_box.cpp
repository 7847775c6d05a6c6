#include "ui/panes/scope_paint_box.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace torvane {

namespace {

constexpr qint64 SlowSweep = 100;  // milliseconds that make it worth watching a sweep grow

// No picture is larger than the displays, whatever size the window has been given; some platforms
// say less than they show.
QSize LargestPicture(const QWidget& widget) {
  return widget.screen()->virtualSize().expandedTo(QSize(2560, 1600));
}

ScopeColours Colours(const QPalette& palette) {
  const bool dark = palette.color(QPalette::Window).lightness() < 128;
  return dark ? ScopeColours::Dark() : ScopeColours::Light();
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

void ScopePaintBox::SetScalesShown(bool shown) {
  scalesShown_ = shown;
  Refresh();
}

ScopeLabels ScopePaintBox::Labels() const {
  ScopeLabels labels = MakeScopeLabels(*scope_, reference_);
  if (!scalesShown_) labels.Legend.clear();
  return labels;
}

ScreenPixels ScopePaintBox::Pixels() const {
  return {painter_->Plate().width(), painter_->Plate().height()};
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
  if (stale_ || ratio_ != devicePixelRatioF() || labels_ != Labels()) {
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
  labels_ = Labels();
  const QSizeF area = size().boundedTo(LargestPicture(*this));
  const QSize pixels(qCeil(area.width() * ratio_), qCeil(area.height() * ratio_));
  painter_->Layout(pixels, ratio_, labels_);
  background_ = QPixmap(pixels);
  QPainter painter(&background_);
  painter_->PaintBackground(painter, Colours(palette()));
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
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  if (!painter_) return;
  painter.scale(1.0 / ratio_, 1.0 / ratio_);
  painter_->PaintCursors(painter, Colours(palette()));
}

int ScopePaintBox::PlateX(const QMouseEvent& event) const {
  const int x = static_cast<int>(std::lround(event.position().x() * ratio_));
  return std::clamp(x - painter_->Plate().left(), 0, painter_->Plate().width() - 1);
}

void ScopePaintBox::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || scope_->XYMode()) return;
  const ScopeCursors& cursors = scope_->Cursors();
  if (cursors.Mode == 0) return;
  const int x = PlateX(*event);
  const bool second = cursors.Mode == 2 && std::abs(x - cursors.X[1]) < std::abs(x - cursors.X[0]);
  dragged_ = second ? 1 : 0;
  emit DragBegun();
  scope_->SetCursorX(*dragged_, x);
}

void ScopePaintBox::mouseMoveEvent(QMouseEvent* event) {
  if (dragged_) scope_->SetCursorX(*dragged_, PlateX(*event));
}

void ScopePaintBox::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !dragged_) return;
  scope_->SetCursorX(*dragged_, PlateX(*event));
  dragged_.reset();
  emit DragEnded();
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
