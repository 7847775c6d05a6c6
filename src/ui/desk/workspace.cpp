#include "ui/desk/workspace.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <algorithm>
#include <iterator>
#include <utility>

#include "ui/panes/instrument_pane.h"

namespace torvane {

namespace {

constexpr int EdgeGap = 12;    // pixels that a window at the edge of a tiling may be off it
constexpr int MostPasses = 4;  // until windows stand as they will

bool IsMeter(const InstrumentFrame& frame) {
  return frame.Pane().Engine().Kind() == InstrumentKind::Meter;
}

// Every control tells the one around it by an event.
void LayOut(InstrumentFrame& frame) {
  const QList<QWidget*> controls = frame.findChildren<QWidget*>();
  for (auto control = controls.rbegin(); control != controls.rend(); ++control) {
    QCoreApplication::sendPostedEvents(*control, QEvent::LayoutRequest);
  }
  QCoreApplication::sendPostedEvents(&frame, QEvent::LayoutRequest);
}

// Meters that a tiling has no room for stand over the other windows, column by column from the
// right, so that all of them can be read.
class Overflow {
 public:
  /// The small ones that have a column at the right edge are not covered, where they are in sight.
  Overflow(const QSize& area, const std::vector<QRect>& places, const std::vector<Tile>& tiles)
      : area_(area), right_(area.width()) {
    if (!AreApart(places, area)) return;
    for (std::size_t i = 0; i < places.size(); ++i) {
      // One that lies below the others, from edge to edge, has no column.
      const bool atEdge =
          area.width() - places[i].right() < EdgeGap && places[i].left() > area.width() / 2;
      if (tiles[i].Role == TileRole::Small && atEdge) right_ = std::min(right_, places[i].left());
    }
  }

  QRect Take(const QSize& size) {
    if (top_ > 0 && top_ + size.height() > area_.height()) {
      right_ -= widest_;
      top_ = widest_ = 0;
    }
    const QRect place(QPoint(std::max(right_ - size.width(), 0), top_), size);
    top_ += size.height();
    widest_ = std::max(widest_, size.width());
    return place;
  }

 private:
  QSize area_;
  int right_;
  int top_ = 0;
  int widest_ = 0;
};

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
    frame->SetChosen(true);
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

std::vector<InstrumentFrame*> Workspace::ShownFrames() const {
  std::vector<InstrumentFrame*> shown;
  std::copy_if(frames_.begin(), frames_.end(), std::back_inserter(shown),
               [](const InstrumentFrame* frame) { return frame->IsShown(); });
  return shown;
}

std::vector<Tile> Workspace::Tiles() const {
  std::vector<Tile> tiles;
  for (const InstrumentFrame* frame : ShownFrames()) tiles.push_back(frame->Sizes());
  return tiles;
}

void Workspace::ShowWhatFits() {
  BringBack();
  for (InstrumentFrame* frame : frames_) {
    const bool waits = frame->Pane().ShownAtFirst() == InstrumentPane::AtFirst::ShownWithRoom;
    if (!waits || frame->IsShown() || frame->IsChosen()) continue;
    std::vector<Tile> tiles = Tiles();
    tiles.push_back(frame->Sizes());
    if (HasAmpleRoom(tiles, size())) frame->SetShown(true);
  }
}

bool Workspace::HaveRoom() const {
  std::vector<Tile> tiles;
  for (const InstrumentFrame* shown : ShownFrames()) {
    if (!IsMeter(*shown)) tiles.push_back(shown->Sizes());
  }
  return AreApart(TileArea(tiles, size()), size());
}

void Workspace::BringBack(bool inPlace) {
  for (InstrumentFrame* frame : frames_) {
    if (!frame->HasYielded()) continue;
    std::vector<Tile> tiles = Tiles();
    tiles.push_back(frame->Sizes());
    const bool isAlone = inPlace && frame->Role() == TileRole::Analyser && !FrontAnalyser();
    if (isAlone || AreApart(TileArea(tiles, size()), size())) frame->SetShown(true);
  }
}

const InstrumentFrame* Workspace::FrontAnalyser() const {
  const InstrumentFrame* front = nullptr;
  for (const QMdiSubWindow* window : subWindowList(QMdiArea::StackingOrder)) {
    const auto* frame = static_cast<const InstrumentFrame*>(window);
    if (frame->IsShown() && frame->Role() == TileRole::Analyser) front = frame;
  }
  return front;
}

// Meters have a place over the others at worst.
void Workspace::MakeRoomFor(const InstrumentFrame& wanted) {
  if (wanted.Role() != TileRole::Analyser) return;
  for (InstrumentFrame* frame : frames_) {
    if (frame == &wanted || !frame->IsShown() || frame->Role() != TileRole::Analyser) continue;
    if (!HaveRoom()) frame->Yield();
  }
}

// Where a display is too small for meters and generators, the scope keeps its room and the meters
// are seen; a generator that the user has asked for stays.
void Workspace::MakeRoomForMeters() {
  std::vector<Tile> all;
  std::vector<Tile> without;
  std::vector<InstrumentFrame*> generators;
  for (InstrumentFrame* frame : ShownFrames()) {
    if (frame->Role() == TileRole::Analyser) continue;
    all.push_back(frame->Sizes());
    const bool yields = frame->Role() == TileRole::Small && !IsMeter(*frame) && !frame->IsChosen();
    yields ? generators.push_back(frame) : without.push_back(all.back());
  }
  const bool metered = std::any_of(frames_.begin(), frames_.end(),
                                   [](const InstrumentFrame* frame) { return IsMeter(*frame); });
  if (!metered || AreApart(TileArea(all, size()), size()) ||
      !AreApart(TileArea(without, size()), size()))
    return;
  for (InstrumentFrame* frame : generators) frame->Yield();
}

// Analysers first, then generators that the user has not asked for.
void Workspace::MakeRoomForScope() {
  for (const TileRole role : {TileRole::Analyser, TileRole::Small}) {
    for (InstrumentFrame* frame : frames_) {
      const bool asked = role == TileRole::Small && (IsMeter(*frame) || frame->IsChosen());
      if (frame->IsShown() && frame->Role() == role && !asked && !HaveRoom()) frame->Yield();
    }
  }
}

void Workspace::TileOver(const QSize& area) {
  const QScopedValueRollback arranging(arranging_, true);
  const std::vector<InstrumentFrame*> shown = ShownFrames();
  for (InstrumentFrame* frame : shown) {
    if (frame->isMinimized() || frame->isMaximized()) frame->showNormal();
  }
  const std::vector<QRect> places = PlacesOn(area, shown);
  for (std::size_t i = 0; i < shown.size(); ++i) shown[i]->PlaceAt(places[i]);
}

// Meters have a part in the tiling as long as it has room for them, the first ones first.
std::vector<QRect> Workspace::PlacesOn(const QSize& area,
                                       const std::vector<InstrumentFrame*>& frames) const {
  std::vector<Tile> tiles;
  std::vector<std::size_t> tiled;  // which frames the tiles are of
  std::vector<std::size_t> meters;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    if (IsMeter(*frames[i])) {
      meters.push_back(i);
    } else {
      tiles.push_back(frames[i]->Sizes());
      tiled.push_back(i);
    }
  }
  std::vector<QRect> found = TileArea(tiles, area);
  std::size_t fitting = 0;
  for (; fitting < meters.size(); ++fitting) {
    tiles.push_back(frames[meters[fitting]]->Sizes());
    std::vector<QRect> more = TileArea(tiles, area);
    if (!AreApart(more, area)) break;
    tiled.push_back(meters[fitting]);
    found = std::move(more);
  }
  std::vector<QRect> places(frames.size());
  for (std::size_t i = 0; i < tiled.size(); ++i) places[tiled[i]] = found[i];
  Overflow overflow(area, found, tiles);
  for (; fitting < meters.size(); ++fitting) {
    places[meters[fitting]] = overflow.Take(frames[meters[fitting]]->sizeHint());
  }
  return places;
}

void Workspace::FillScreen() {
  BringBack();
  MakeRoomForMeters();
  TileOver(size());
  filling_ = true;
  apart_ = HaveRoom();
}

// A window of another width lays out its rows when events come that wait, and may need other sizes
// then.
QSize Workspace::TileOverArea(const QSize& proportions) {
  const QSize fitting = proportions.scaled(size(), Qt::KeepAspectRatio);
  QSize area;
  std::vector<QRect> before;
  for (int pass = 0; pass < MostPasses; ++pass) {
    const QSize least = LeastTiledArea(Tiles(), proportions);
    area = least.width() > fitting.width() ? least : fitting;
    TileOver(area);
    for (InstrumentFrame* frame : ShownFrames()) LayOut(*frame);
    std::vector<QRect> places = PlacesOn(area, ShownFrames());
    if (places == before) break;
    before = std::move(places);
  }
  return area;
}

QImage Workspace::Capture(const QSize& proportions) {
  const QSize area = TileOverArea(proportions);
  filling_ = false;

  QImage picture(area * devicePixelRatioF(), QImage::Format_RGB32);
  picture.setDevicePixelRatio(devicePixelRatioF());
  QPainter painter(&picture);
  painter.fillRect(QRect(QPoint(), area), background());
  for (InstrumentFrame* frame : ShownFrames()) frame->render(&painter, frame->pos());
  return picture;
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
