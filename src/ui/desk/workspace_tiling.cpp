// How the workspace shares its area among the windows, and which of them are shown there.

#include <QCoreApplication>
#include <QEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <algorithm>
#include <iterator>
#include <utility>

#include "ui/desk/workspace.h"
#include "ui/panes/instrument_pane.h"

namespace torvane {

namespace {

constexpr int AtTheEdge = 12;  // pixels that a window at the edge of a tiling may be off it
constexpr int Around = 8;      // pixels above and below a window that fills the area
constexpr int MostPasses = 4;  // until windows stand as they will

// Every control tells the one around it by an event.
void LayOut(InstrumentFrame& frame) {
  const QList<QWidget*> controls = frame.findChildren<QWidget*>();
  for (auto control = controls.rbegin(); control != controls.rend(); ++control) {
    QCoreApplication::sendPostedEvents(*control, QEvent::LayoutRequest);
  }
  QCoreApplication::sendPostedEvents(&frame, QEvent::LayoutRequest);
}

// Small windows that a tiling has no room for stand over the other windows, column by column from
// the right, so that all of them can be read.
class Overflow {
 public:
  /// The small ones that have a column at the right edge are not covered, where they are in sight.
  Overflow(const QSize& area, const std::vector<QRect>& places, const std::vector<Tile>& tiles)
      : area_(area), right_(area.width()) {
    if (!AreApart(places, area)) return;
    for (std::size_t i = 0; i < places.size(); ++i) {
      // One that lies below the others, from edge to edge, has no column.
      const bool atEdge =
          area.width() - places[i].right() < AtTheEdge && places[i].left() > area.width() / 2;
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

int Workspace::LeastHeight() const {
  int height = 0;
  for (const InstrumentFrame* frame : ShownFrames()) {
    if (frame->Role() == TileRole::Scope)
      height = std::max(height, frame->Sizes().Least.height() + Around);
  }
  return height;
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
    if (!shown->IsMeter()) tiles.push_back(shown->Sizes());
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

// Where a display is too small for all, the plots keep their room and meters are seen; a generator
// that the user has asked for stays. Analysers that cover the others leave these their places.
void Workspace::MakeRoomForPlots() {
  const auto fit = [this](const std::vector<Tile>& tiles) {
    return AreApart(TileArea(tiles, size()), size());
  };
  std::vector<Tile> plots;
  for (const InstrumentFrame* frame : ShownFrames()) {
    if (frame->Role() != TileRole::Small) plots.push_back(frame->Sizes());
  }
  const bool beside = fit(plots);
  std::vector<Tile> all;
  std::vector<Tile> without;
  std::vector<InstrumentFrame*> generators;
  for (InstrumentFrame* frame : ShownFrames()) {
    if (frame->Role() == TileRole::Analyser && !beside) continue;
    all.push_back(frame->Sizes());
    const bool yields = frame->Role() == TileRole::Small && !frame->IsMeter() && !frame->IsChosen();
    yields ? generators.push_back(frame) : without.push_back(all.back());
  }
  if (fit(all) || !fit(without)) return;
  for (InstrumentFrame* frame : generators) frame->Yield();
}

// Generators that the user has not asked for, where that is enough; else analysers first.
void Workspace::MakeRoomForScope() {
  MakeRoomForPlots();
  for (const TileRole role : {TileRole::Analyser, TileRole::Small}) {
    for (InstrumentFrame* frame : frames_) {
      const bool asked = role == TileRole::Small && (frame->IsMeter() || frame->IsChosen());
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

// The small ones stand over the plots where these find room without them.
bool Workspace::FitWithoutSmall(const QSize& area,
                                const std::vector<InstrumentFrame*>& frames) const {
  std::vector<Tile> plots;
  std::vector<Tile> all;
  for (const InstrumentFrame* frame : frames) {
    if (frame->IsMeter()) continue;
    all.push_back(frame->Sizes());
    if (frame->Role() != TileRole::Small) plots.push_back(all.back());
  }
  return !AreApart(TileArea(all, area), area) && AreApart(TileArea(plots, area), area);
}

// Meters have a part in the tiling as long as it has room for them, the first ones first.
std::vector<QRect> Workspace::PlacesOn(const QSize& area,
                                       const std::vector<InstrumentFrame*>& frames) const {
  const bool plotsAlone = FitWithoutSmall(area, frames);
  std::vector<Tile> tiles;
  std::vector<std::size_t> tiled;  // which frames the tiles are of
  std::vector<std::size_t> others;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    if (frames[i]->IsMeter() || (plotsAlone && frames[i]->Role() == TileRole::Small)) {
      others.push_back(i);
    } else {
      tiles.push_back(frames[i]->Sizes());
      tiled.push_back(i);
    }
  }
  std::vector<QRect> found = TileArea(tiles, area);
  std::size_t fitting = 0;
  for (; fitting < others.size(); ++fitting) {
    tiles.push_back(frames[others[fitting]]->Sizes());
    std::vector<QRect> more = TileArea(tiles, area);
    if (!AreApart(more, area)) break;
    tiled.push_back(others[fitting]);
    found = std::move(more);
  }
  std::vector<QRect> places(frames.size());
  for (std::size_t i = 0; i < tiled.size(); ++i) places[tiled[i]] = found[i];
  Overflow overflow(area, found, tiles);
  for (; fitting < others.size(); ++fitting) {
    places[others[fitting]] = overflow.Take(frames[others[fitting]]->sizeHint());
  }
  return places;
}

void Workspace::FillScreen() {
  BringBack();
  MakeRoomForPlots();
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

}  // namespace torvane
