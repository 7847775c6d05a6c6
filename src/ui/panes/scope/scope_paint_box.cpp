#include "ui/panes/scope/scope_paint_box.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>

namespace torvane {

namespace {

constexpr qint64 SlowSweep = 100;  // milliseconds that make it worth watching a sweep grow

}  // namespace

ScopePaintBox::ScopePaintBox(QWidget* parent) : PictureBox(parent) {}

void ScopePaintBox::SetScope(ZelScope& scope) {
  scope_ = &scope;
  painter_.emplace(scope);
  cursors_.emplace(scope);
  mouse_.emplace(scope, *painter_);
  Prepare();
}

void ScopePaintBox::SetLeastGraph(const QSize& least) {
  painter_->SetLeastHeight(least.height());
  setMinimumSize(least + painter_->Around());
}

void ScopePaintBox::SetReference(ZelChannel* channel) {
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
  if (Stale() || labels_ != Labels()) {
    Prepare();
    PaintAll();
    update();
  } else if (changed || screen_.Sweep != sweepPainted_) {
    // A periodic signal gives the same picture sweep after sweep.
    if (painter_->Differs(screen_)) PaintAll();
    sweepPainted_ = screen_.Sweep;
  } else if (painter_->HasNew(screen_)) {
    QPainter painter(&picture_);
    painter.scale(1.0 / Ratio(), 1.0 / Ratio());
    UpdatePixels(painter_->PaintNew(painter, Colours(), screen_));
  }
  if (painter_->TraceEnds() != endsPainted_) PaintTags();
  const QRect readings = cursors_->Area();
  if (cursors_->Read(screen_, reference_)) UpdatePixels(QRegion(readings) | cursors_->Area());
}

// Lays the picture out and paints what stays the same from frame to frame.
void ScopePaintBox::Prepare() {
  const QSize pixels = BeginPicture();
  labels_ = Labels();
  painter_->Layout(pixels, Ratio(), labels_, Look());
  cursors_->Layout(painter_->Plate(), Ratio());
  background_ = QPixmap(pixels);
  QPainter painter(&background_);
  painter_->PaintBackground(painter, Colours());
  painter.end();
  picture_ = background_.copy();
  picture_.setDevicePixelRatio(Ratio());
  endsPainted_.clear();
}

// Only what the traces touched before has to be cleared.
void ScopePaintBox::PaintAll() {
  QPainter painter(&picture_);
  painter.scale(1.0 / Ratio(), 1.0 / Ratio());
  const QRegion before = painter_->Touched();
  for (const QRect& area : before) painter.drawPixmap(area, background_, area);
  painter_->PaintTraces(painter, Colours(), screen_);
  UpdatePixels(before | painter_->Touched());
  sweepPainted_ = screen_.Sweep;
}

void ScopePaintBox::PaintTags() {
  QPainter painter(&picture_);
  painter.scale(1.0 / Ratio(), 1.0 / Ratio());
  const QRect area = painter_->Marks().TagArea();
  painter.drawPixmap(area, background_, area);
  painter_->PaintTags(painter, Colours());
  endsPainted_ = painter_->TraceEnds();
  UpdatePixels(area);
}

void ScopePaintBox::UpdatePixels(const QRegion& pixels) {
  QRegion area;
  for (const QRect& part : pixels) {
    area |= QRectF(part.topLeft() / Ratio(), QSizeF(part.size()) / Ratio()).toAlignedRect();
  }
  update(area);
}

void ScopePaintBox::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  if (!painter_) return;
  painter.scale(1.0 / Ratio(), 1.0 / Ratio());
  cursors_->Paint(painter, Colours());
}

QPoint ScopePaintBox::PixelAt(const QPointF& position) const {
  return (position * Ratio()).toPoint();
}

void ScopePaintBox::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !mouse_) return;
  const QPoint at = PixelAt(event->position());
  const std::optional<std::size_t> choice = mouse_->ChoiceAt(at);
  if (mouse_->Press(at)) {
    Wheel().End();
    emit GestureBegun();
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
  emit GestureEnded();
}

void ScopePaintBox::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (!mouse_ || mouse_->Holds()) return;
  const int steps = Wheel().StepsOf(*event);
  if (steps == 0) return;
  if (event->modifiers().testFlag(Qt::ControlModifier)) {
    mouse_->TurnTimeBase(steps);
  } else if (reference_) {
    mouse_->TurnScale(*reference_, steps);
  }
}

bool ScopePaintBox::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || !mouse_) return PictureBox::event(event);
  const auto& help = static_cast<const QHelpEvent&>(*event);
  const QString hint = mouse_->HintAt(PixelAt(help.pos()));
  hint.isEmpty() ? QToolTip::hideText() : QToolTip::showText(help.globalPos(), hint, this);
  return true;
}

}  // namespace torvane
