#include "ui/panes/scope/scope_paint_box.h"

#include <QEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>

#include "ui/widgets/picture_ground.h"

namespace torvane {

namespace {

constexpr qint64 SlowSweep = 100;  // milliseconds that make it worth watching a sweep grow

}  // namespace

ScopePaintBox::ScopePaintBox(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  connect(&wheel_, &WheelTurn::Begun, this, &ScopePaintBox::DragBegun);
  connect(&wheel_, &WheelTurn::Ended, this, &ScopePaintBox::DragEnded);
}

void ScopePaintBox::SetScope(ZelScope& scope) {
  scope_ = &scope;
  painter_.emplace(scope);
  cursors_.emplace(scope);
  mouse_.emplace(scope, *painter_);
  Prepare();
}

void ScopePaintBox::SetReference(ZelChannel* channel) {
  reference_ = channel;
  Refresh();
}

void ScopePaintBox::SetLook(const TraceLook& look) {
  if (look_ == look) return;
  look_ = look;
  stale_ = true;
  Refresh();
  emit ColoursChanged();
}

ScopeColours ScopePaintBox::Colours() const {
  return ColoursFor(palette(), look_.Colours);
}

void ScopePaintBox::SetScalesShown(bool shown) {
  scalesShown_ = shown;
  Refresh();
}

ScopeLabels ScopePaintBox::Labels() const {
  ScopeLabels labels = MakeScopeLabels(*scope_, reference_);
  if (!scalesShown_) labels.Legend.clear();
  labels.Trigger = PlaceOfTrigger(*scope_);
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
    // A periodic signal gives the same picture sweep after sweep.
    if (painter_->Differs(screen_)) PaintAll();
    sweepPainted_ = screen_.Sweep;
  } else if (painter_->HasNew(screen_)) {
    QPainter painter(&picture_);
    painter.scale(1.0 / ratio_, 1.0 / ratio_);
    UpdatePixels(painter_->PaintNew(painter, Colours(), screen_));
  }
  if (painter_->TraceEnds() != endsPainted_) PaintTags();
  const QRect readings = cursors_->Area();
  if (cursors_->Read(screen_, reference_)) UpdatePixels(QRegion(readings) | cursors_->Area());
}

// Lays the picture out and paints what stays the same from frame to frame.
void ScopePaintBox::Prepare() {
  ratio_ = devicePixelRatioF();
  labels_ = Labels();
  const QSizeF area = size().boundedTo(LargestPicture(*this));
  const QSize pixels(qCeil(area.width() * ratio_), qCeil(area.height() * ratio_));
  painter_->Layout(pixels, ratio_, labels_, look_);
  cursors_->Layout(painter_->Plate(), ratio_);
  background_ = QPixmap(pixels);
  QPainter painter(&background_);
  painter_->PaintBackground(painter, Colours());
  painter.end();
  picture_ = background_.copy();
  picture_.setDevicePixelRatio(ratio_);
  endsPainted_.clear();
  stale_ = false;
}

// Only what the traces touched before has to be cleared.
void ScopePaintBox::PaintAll() {
  QPainter painter(&picture_);
  painter.scale(1.0 / ratio_, 1.0 / ratio_);
  const QRegion before = painter_->Touched();
  for (const QRect& area : before) painter.drawPixmap(area, background_, area);
  painter_->PaintTraces(painter, Colours(), screen_);
  UpdatePixels(before | painter_->Touched());
  sweepPainted_ = screen_.Sweep;
}

void ScopePaintBox::PaintTags() {
  QPainter painter(&picture_);
  painter.scale(1.0 / ratio_, 1.0 / ratio_);
  const QRect area = painter_->Marks().TagArea();
  painter.drawPixmap(area, background_, area);
  painter_->PaintTags(painter, Colours());
  endsPainted_ = painter_->TraceEnds();
  UpdatePixels(area);
}

void ScopePaintBox::UpdatePixels(const QRegion& pixels) {
  QRegion area;
  for (const QRect& part : pixels) {
    area |= QRectF(part.topLeft() / ratio_, QSizeF(part.size()) / ratio_).toAlignedRect();
  }
  update(area);
}

void ScopePaintBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  if (!painter_) return;
  painter.scale(1.0 / ratio_, 1.0 / ratio_);
  cursors_->Paint(painter, Colours());
}

QPoint ScopePaintBox::PixelAt(const QPointF& position) const {
  return (position * ratio_).toPoint();
}

void ScopePaintBox::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !mouse_) return;
  const QPoint at = PixelAt(event->position());
  const std::optional<std::size_t> choice = mouse_->ChoiceAt(at);
  if (mouse_->Press(at)) {
    wheel_.End();
    emit DragBegun();
    mouse_->MoveTo(at);
  }
  if (choice) emit ChannelChosen(*choice);
}

// A release that a box took, which opened meanwhile, shows in the buttons.
void ScopePaintBox::mouseMoveEvent(QMouseEvent* event) {
  if (!mouse_) return;
  const QPoint at = PixelAt(event->position());
  if (!event->buttons().testFlag(Qt::LeftButton)) EndDrag();
  if (mouse_->Holds()) {
    mouse_->MoveTo(at);
  } else {
    setCursor(mouse_->ShapeAt(at));
  }
}

void ScopePaintBox::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !mouse_ || !mouse_->Holds()) return;
  mouse_->MoveTo(PixelAt(event->position()));
  EndDrag();
}

void ScopePaintBox::EndDrag() {
  if (!mouse_->Holds()) return;
  mouse_->Release();
  emit DragEnded();
}

void ScopePaintBox::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (!mouse_ || mouse_->Holds()) return;
  const int steps = wheel_.StepsOf(*event);
  if (steps == 0) return;
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    mouse_->TurnTimeBase(steps);
  } else if (reference_) {
    mouse_->TurnScale(*reference_, steps);
  }
}

bool ScopePaintBox::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || !mouse_) return QWidget::event(event);
  const auto& help = static_cast<const QHelpEvent&>(*event);
  const QString hint = mouse_->HintAt(PixelAt(help.pos()));
  hint.isEmpty() ? QToolTip::hideText() : QToolTip::showText(help.globalPos(), hint, this);
  return true;
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
  if (event->type() == QEvent::PaletteChange) emit ColoursChanged();
}

}  // namespace torvane
