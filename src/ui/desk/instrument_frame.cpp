#include "ui/desk/instrument_frame.h"

#include <QEvent>
#include <algorithm>
#include <utility>

#include "ui/panes/instrument_pane.h"

namespace torvane {
namespace {

// `at` moved into 0 to room - size.
int Within(int at, int size, int room) {
  return std::clamp(at, 0, std::max(room - size, 0));
}

}  // namespace

InstrumentFrame::InstrumentFrame(std::unique_ptr<InstrumentPane> pane) {
  setWindowTitle(pane->windowTitle());
  setWindowIcon(pane->windowIcon());
  // A read-out is small, and is to be seen wherever it stands.
  if (pane->Engine().Kind() == InstrumentKind::Meter) {
    setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
  }
  setWidget(pane.release());
}

InstrumentPane& InstrumentFrame::Pane() const {
  return *static_cast<InstrumentPane*>(widget());
}

bool InstrumentFrame::IsMeter() const {
  return Pane().Engine().Kind() == InstrumentKind::Meter;
}

TileRole InstrumentFrame::Role() const {
  switch (Pane().Engine().Kind()) {
    case InstrumentKind::Scope:
      return TileRole::Scope;
    case InstrumentKind::FftAnalyser:
    case InstrumentKind::SweptSine:
      return TileRole::Analyser;
    default:
      return TileRole::Small;
  }
}

Tile InstrumentFrame::Sizes() const {
  const QSize edges = sizeHint() - Pane().sizeHint();
  const auto framed = [&](const QSize& pane) { return pane.isEmpty() ? QSize() : pane + edges; };
  const QSize unfolded = framed(Pane().UnfoldedSize());
  return {Role(), unfolded.isEmpty() ? minimumSizeHint() : unfolded, sizeHint(),
          framed(Pane().FlatSize()), framed(Pane().FoldedSize())};
}

// The placement stays what was asked for: where there is more room later the window can have it.
void InstrumentFrame::ApplyPlacement() {
  const WindowPlacement placement = Pane().Engine().Placement;
  if (shown_ && placement.State == WindowState::Normal && (isMinimized() || isMaximized())) {
    showNormal();
  }
  const bool atRest = !isMinimized() && !isMaximized();
  if (atRest && placement.Width > 0 && placement.Height > 0) {
    fitted_ = Fitted(placement);
    setGeometry(fitted_);
  }
  if (shown_ && placement.State == WindowState::Minimised) showMinimized();
  if (shown_ && placement.State == WindowState::Maximised) showMaximized();
  Pane().Engine().Placement = placement;
}

// A file may come from a larger display, or say what no display can show.
QRect InstrumentFrame::Fitted(const WindowPlacement& placement) const {
  const QSize room = parentWidget()->size();
  const QSize asked = QSize(placement.Width, placement.Height).boundedTo(room);
  const Tile tile = Sizes();
  const bool flat = !tile.Flat.isEmpty() && asked.width() >= tile.Flat.width();
  const QSize size = asked.expandedTo(flat ? tile.Flat : minimumSizeHint());
  return {{Within(placement.Left, size.width(), room.width()),
           Within(placement.Top, size.height(), room.height())},
          size};
}

// A file knows by its place that a window is shown: a hidden one has none.
void InstrumentFrame::Put(bool shown) {
  WindowPlacement& placement = Pane().Engine().Placement;
  if (!shown && shown_) whileHidden_ = std::exchange(placement, {});
  if (shown && !shown_ && placement.Width == 0) placement = whileHidden_;
  shown_ = shown;
  yielded_ = false;
  setVisible(shown);
}

void InstrumentFrame::SetShown(bool shown) {
  Put(shown);
  Pane().ShownChanged(shown);
}

void InstrumentFrame::Choose(bool shown) {
  chosen_ = true;
  if (shown_ != shown || yielded_) SetShown(shown);
}

void InstrumentFrame::Yield() {
  Put(false);
  yielded_ = true;
}

void InstrumentFrame::PlaceAt(const QRect& place) {
  fitted_ = {};
  setGeometry(place);
  Pane().Engine().Placement = {WindowState::Normal, place.height(), place.x(), place.y(),
                               place.width()};
}

// A window that is not shown yet is told its first place late, one that was fitted may be told so
// again.
void InstrumentFrame::RecordPlacement() {
  if (!widget() || !isVisible()) return;
  const bool atRest = !isMinimized() && !isMaximized();
  if (atRest && geometry() == fitted_ && Pane().Engine().Placement.State == WindowState::Normal) {
    return;
  }
  fitted_ = {};
  WindowPlacement placement = Pane().Engine().Placement;
  placement.State = isMinimized()   ? WindowState::Minimised
                    : isMaximized() ? WindowState::Maximised
                                    : WindowState::Normal;
  if (placement.State == WindowState::Normal) {
    placement.Height = height();
    placement.Left = x();
    placement.Top = y();
    placement.Width = width();
  }
  // A window told its place again, as on activation, has not been moved.
  if (placement == Pane().Engine().Placement) return;
  Pane().Engine().Placement = placement;
  emit PlacementChanged();
}

void InstrumentFrame::moveEvent(QMoveEvent* event) {
  QMdiSubWindow::moveEvent(event);
  RecordPlacement();
}

void InstrumentFrame::resizeEvent(QResizeEvent* event) {
  QMdiSubWindow::resizeEvent(event);
  RecordPlacement();
}

void InstrumentFrame::changeEvent(QEvent* event) {
  QMdiSubWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) RecordPlacement();
}

}  // namespace torvane
