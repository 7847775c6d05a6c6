#include "ui/desk/workspace.h"

#include <QEvent>
#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

#include "ui/panes/instrument_pane.h"

namespace torvane {

namespace {

constexpr int EdgeGap = 12;  // pixels between windows in the same corner
}  // namespace

Workspace::Workspace(QWidget* parent) : QMdiArea(parent) {
  setActivationOrder(QMdiArea::CreationOrder);
}

void Workspace::Open(std::vector<std::unique_ptr<InstrumentPane>> panes) {
  CloseAll();
  filling_ = true;
  std::vector<std::pair<InstrumentFrame*, WindowPlacement>> placed;
  const QScopedValueRollback arranging(arranging_, true);
  for (auto& pane : panes) {
    const WindowPlacement place = pane->Engine().Placement;
    InstrumentFrame* frame = AddFrame(std::move(pane));
    if (place.Width == 0) continue;
    placed.emplace_back(frame, place);
    if (!frame->IsShown()) frame->SetShown(true);
  }
  ShowWhatFits();
  FillScreen();
  for (const auto& [frame, place] : placed) {
    frame->Pane().Engine().Placement = place;
    if (isVisible()) frame->ApplyPlacement();
  }
  if (!placed.empty()) filling_ = false;
  for (InstrumentFrame* frame : frames_) {
    if (frame->IsShown()) frame->show();
  }
  if (!frames_.empty()) setActiveSubWindow(frames_.front());
}

InstrumentFrame* Workspace::AddFrame(std::unique_ptr<InstrumentPane> pane) {
  auto* frame = new InstrumentFrame(std::move(pane));
  addSubWindow(frame);
  frames_.push_back(frame);
  frame->Pane().SetRoom(size());
  if (frame->Pane().ShownAtFirst() != InstrumentPane::AtFirst::Shown) frame->BeginHidden();
  connect(frame, &InstrumentFrame::PlacementChanged, this, [this] {
    if (!arranging_) filling_ = false;
  });
  return frame;
}

InstrumentFrame* Workspace::FrameOf(const Instrument& instrument) const {
  const auto found = std::find_if(
      frames_.begin(), frames_.end(),
      [&](const InstrumentFrame* frame) { return &frame->Pane().Engine() == &instrument; });
  return found == frames_.end() ? nullptr : *found;
}

void Workspace::Add(std::unique_ptr<InstrumentPane> pane) {
  const QScopedValueRollback arranging(arranging_, true);
  const WindowPlacement place = pane->Engine().Placement;
  InstrumentFrame* frame = AddFrame(std::move(pane));
  frame->show();
  frame->Pane().Engine().Placement = place;
  PlaceAsAsked(*frame);
  setActiveSubWindow(frame);
}

void Workspace::PlaceAsAsked(InstrumentFrame& frame) {
  if (frame.Pane().Engine().Placement.Width > 0) {
    frame.ApplyPlacement();
  } else if (filling_) {
    FillScreen();
  } else {
    frame.PlaceAt(FreePlace(frame));
  }
}

// The first place beside others that covers none; else the upper right corner, a step below windows
// that have it.
QRect Workspace::FreePlace(const InstrumentFrame& frame) const {
  QRect place(QPoint(), frame.sizeHint().boundedTo(size()));
  std::vector<int> lefts{0};
  std::vector<int> tops{0};
  std::vector<QRect> taken;
  for (const InstrumentFrame* other : ShownFrames()) {
    if (other == &frame) continue;
    taken.push_back(other->geometry());
    lefts.push_back(taken.back().right() + 1);
    tops.push_back(taken.back().bottom() + 1);
  }
  const auto isFree = [&] {
    return rect().contains(place) &&
           std::none_of(taken.begin(), taken.end(),
                        [&](const QRect& other) { return other.intersects(place); });
  };
  for (const int top : tops) {
    for (const int left : lefts) {
      place.moveTopLeft({left, top});
      if (isFree()) return place;
    }
  }
  place.moveTopRight(rect().topRight());
  while (std::find(taken.begin(), taken.end(), place) != taken.end()) place.translate(0, EdgeGap);
  return place;
}

void Workspace::Remove(const Instrument& instrument) {
  InstrumentFrame* frame = FrameOf(instrument);
  if (!frame) return;
  const QScopedValueRollback arranging(arranging_, true);
  std::erase(frames_, frame);
  removeSubWindow(frame);
  delete frame;
  if (filling_) FillScreen();
}

// No other window moves: this one grows over them, from where it stands and within the workspace.
void Workspace::FitHeight(const Instrument& instrument) {
  InstrumentFrame* frame = FrameOf(instrument);
  if (!frame || frame->isMinimized() || frame->isMaximized()) return;
  const QScopedValueRollback arranging(arranging_, true);
  const QSize least(frame->width(), frame->sizeHint().height());
  QRect place(frame->pos(), least.expandedTo(frame->minimumSizeHint()));
  place.moveTop(std::max(std::min(place.top(), height() - place.height()), 0));
  place.moveLeft(std::max(std::min(place.left(), width() - place.width()), 0));
  frame->setGeometry(place);
  frame->raise();
}

void Workspace::FollowNeeds() {
  const QScopedValueRollback arranging(arranging_, true);
  if (filling_) FillScreen();
}

void Workspace::SetShown(const Instrument& instrument, bool shown) {
  InstrumentFrame* frame = FrameOf(instrument);
  if (!frame) return;
  const QScopedValueRollback arranging(arranging_, true);
  const bool changes = frame->IsShown() != shown;
  frame->Choose(shown);
  if (!changes) return;
  if (filling_) {
    if (shown) MakeRoomFor(*frame);
    BringBack(!shown && frame->Role() == TileRole::Analyser);
    FillScreen();
  } else if (shown) {
    PlaceAsAsked(*frame);
  }
  if (shown) setActiveSubWindow(frame);
}

void Workspace::Toggle(InstrumentKind kind) {
  const auto found = std::find_if(
      frames_.begin(), frames_.end(),
      [&](const InstrumentFrame* frame) { return frame->Pane().Engine().Kind() == kind; });
  if (found == frames_.end()) return;
  const bool hide = (*found)->IsShown() && activeSubWindow() == *found;
  SetShown((*found)->Pane().Engine(), !hide);
  if (!hide) setActiveSubWindow(*found);
}

void Workspace::Call(const Instrument& instrument) {
  InstrumentFrame* frame = FrameOf(instrument);
  if (!frame) return;
  const bool raise = !frame->IsShown() || frame->isMinimized() || IsCovered(*frame);
  if (frame->isMinimized()) frame->showNormal();
  SetShown(instrument, raise);
  if (raise) setActiveSubWindow(frame);
}

bool Workspace::IsCovered(const InstrumentFrame& frame) const {
  bool above = false;
  for (const QMdiSubWindow* window : subWindowList(QMdiArea::StackingOrder)) {
    if (above && window->isVisible() && window->geometry().intersects(frame.geometry()))
      return true;
    above = above || window == &frame;
  }
  return false;
}

Workspace::Desk Workspace::Present() const {
  Desk desk{filling_, {}};
  for (const QMdiSubWindow* window : subWindowList(QMdiArea::StackingOrder)) {
    const auto* frame = static_cast<const InstrumentFrame*>(window);
    const Instrument& instrument = frame->Pane().Engine();
    desk.Windows.push_back({instrument.Kind(), instrument.Name(), frame->IsShown(),
                            frame->HasYielded(), frame->IsChosen(), window == activeSubWindow(),
                            instrument.Placement});
  }
  return desk;
}

void Workspace::Restore(const Desk& desk) {
  const QScopedValueRollback arranging(arranging_, true);
  InstrumentFrame* active = nullptr;
  for (const Desk::Window& before : desk.Windows) {
    const auto found = std::ranges::find_if(frames_, [&](const InstrumentFrame* frame) {
      const Instrument& instrument = frame->Pane().Engine();
      return instrument.Kind() == before.Kind && instrument.Name() == before.Name;
    });
    if (found == frames_.end()) continue;
    InstrumentFrame* const frame = *found;
    before.Yielded ? frame->Yield() : frame->SetShown(before.Shown);
    frame->SetChosen(before.Chosen);
    frame->raise();
    if (before.Active && before.Shown) active = frame;
    if (desk.Filling || !before.Shown) continue;
    frame->Pane().Engine().Placement = before.Place;
    frame->ApplyPlacement();
  }
  if (active) setActiveSubWindow(active);
  if (desk.Filling) FillScreen();
  filling_ = desk.Filling;
}

void Workspace::ShowOnly(const std::function<bool(InstrumentKind)>& shown) {
  const QScopedValueRollback arranging(arranging_, true);
  for (InstrumentFrame* frame : frames_) {
    const bool show = shown(frame->Pane().Engine().Kind());
    if (frame->IsShown() != show || frame->HasYielded()) frame->SetShown(show);
    // A generator that is shown anyway goes where it would cover the plots.
    frame->SetChosen(frame->Role() != TileRole::Small);
  }
  FillScreen();
}

void Workspace::RestorePlacements() {
  const QScopedValueRollback arranging(arranging_, true);
  std::vector<WindowPlacement> places;
  for (InstrumentFrame* frame : frames_) {
    places.push_back(frame->Pane().Engine().Placement);
    if (!frame->IsShown() && places.back().Width > 0) frame->SetShown(true);
  }
  if (filling_) FillScreen();
  for (std::size_t i = 0; i < frames_.size(); ++i) {
    if (places[i].Width == 0) continue;
    InstrumentFrame* frame = frames_[i];
    frame->Pane().Engine().Placement = places[i];
    const QRect before = frame->geometry();
    frame->ApplyPlacement();
    if (frame->geometry() != before) filling_ = false;
  }
}

void Workspace::CloseAll() {
  for (InstrumentFrame* frame : frames_) {
    removeSubWindow(frame);
    delete frame;
  }
  frames_.clear();
}

void Workspace::resizeEvent(QResizeEvent* event) {
  const QScopedValueRollback arranging(arranging_, true);
  QMdiArea::resizeEvent(event);
  Arrange();
}

// The base class finds its own places for sub-windows when it is first shown.
void Workspace::showEvent(QShowEvent* event) {
  const QScopedValueRollback arranging(arranging_, true);
  QMdiArea::showEvent(event);
  Arrange();
}

// The base class keeps the brush that it began with.
void Workspace::changeEvent(QEvent* event) {
  QMdiArea::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) setBackground(palette().brush(QPalette::Dark));
}

void Workspace::Arrange() {
  for (InstrumentFrame* frame : frames_) frame->Pane().SetRoom(size());
  if (filling_) {
    if (const InstrumentFrame* front = FrontAnalyser()) MakeRoomFor(*front);
    if (apart_) MakeRoomForScope();
    ShowWhatFits();
    FillScreen();
  } else if (isVisible()) {
    for (InstrumentFrame* frame : frames_) frame->ApplyPlacement();
  }
}

}  // namespace torvane
