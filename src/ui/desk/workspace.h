#pragma once

#include <QImage>
#include <QMdiArea>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ui/desk/instrument_frame.h"

namespace torvane {

/// The area below the control strip in which every instrument is a sub-window. As long as the user
/// has not moved one, the sub-windows fill it and follow its size; after that each stands where it
/// was put, as far as the area has room. A pane that waits for room comes to the screen when the
/// area has enough of it, unless the user has hidden it. An analyser that is asked for takes the
/// place of another where both have no room. When a panel beside the area takes the room, an
/// analyser or generator that stood beside the scope goes until there is some again: the scope is
/// not to be covered.
class Workspace : public QMdiArea {
  Q_OBJECT

 public:
  explicit Workspace(QWidget* parent = nullptr);

  /// Shows the instruments; those whose placement has a size stand there, also those that a model
  /// begins without, the others fill the area.
  void Open(std::vector<std::unique_ptr<InstrumentPane>> panes);
  void CloseAll();

  /// One pane more while the others stand. It is shown in front, where its placement says or, as
  /// long as the sub-windows fill the area, takes its share of it; else it has a free place.
  void Add(std::unique_ptr<InstrumentPane> pane);
  /// Closes the instrument's pane.
  void Remove(const Instrument& instrument);
  /// The pane wants another height than it had.
  void FitHeight(const Instrument& instrument);
  /// The user has made a pane need more or less room: as long as the sub-windows fill the area,
  /// they share it anew.
  void FollowNeeds();
  /// What the user wants to see, in front. A hidden pane keeps its place; while the sub-windows
  /// fill the area, the others share it.
  void SetShown(const Instrument& instrument, bool shown);
  /// Brings the first instrument of a kind to the front, or hides the one that is there.
  void Toggle(InstrumentKind kind);
  /// Brings the instrument's window to where it can be seen; one that nothing covers is hidden.
  void Call(const Instrument& instrument);

  /// How all windows stand, the one in front last. An instrument is known by its kind and name, in
  /// whatever model.
  struct Desk {
    struct Window {
      InstrumentKind Kind;
      std::string Name;
      bool Shown;
      bool Yielded;
      bool Chosen;
      bool Active;
      WindowPlacement Place;
    };
    bool Filling;
    std::vector<Window> Windows;
  };
  Desk Present() const;
  /// Windows that the desk does not know stay as they are.
  void Restore(const Desk& desk);
  /// Those of some kinds fill the area, the others are put away.
  void ShowOnly(const std::function<bool(InstrumentKind)>& shown);

  /// Shows the sub-windows whose placement has a size where it says.
  void RestorePlacements();

  /// Whether the sub-windows fill the area, as long as the user moves none.
  bool IsFilled() const { return filling_; }

  /// What the scopes that are shown need.
  int LeastHeight() const;

  /// Tiles the area with the instruments that are shown (TileArea).
  void FillScreen();

  /// Tiles an area of the given proportions, the largest in the workspace that holds all windows,
  /// and takes its picture. Where the workspace is too small the area goes beyond it.
  QImage Capture(const QSize& proportions);

  const std::vector<InstrumentFrame*>& Frames() const { return frames_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  /// The area has another size, or is first shown.
  void Arrange();
  InstrumentFrame* AddFrame(std::unique_ptr<InstrumentPane> pane);
  InstrumentFrame* FrameOf(const Instrument& instrument) const;
  std::vector<InstrumentFrame*> ShownFrames() const;
  std::vector<Tile> Tiles() const;
  bool FitWithoutSmall(const QSize& area, const std::vector<InstrumentFrame*>& frames) const;
  std::vector<QRect> PlacesOn(const QSize& area, const std::vector<InstrumentFrame*>& frames) const;
  void TileOver(const QSize& area);
  QSize TileOverArea(const QSize& proportions);
  void ShowWhatFits();
  /// Whether the windows that are shown find room beside each other; meters have places over them.
  bool HaveRoom() const;
  /// What has yielded comes back where there is room for it, in place of another one anyway.
  void BringBack(bool inPlace = false);
  const InstrumentFrame* FrontAnalyser() const;
  bool IsCovered(const InstrumentFrame& frame) const;
  void MakeRoomFor(const InstrumentFrame& wanted);
  void MakeRoomForPlots();
  void MakeRoomForScope();
  void PlaceAsAsked(InstrumentFrame& frame);
  QRect FreePlace(const InstrumentFrame& frame) const;

  std::vector<InstrumentFrame*> frames_;
  bool filling_ = true;     // sub-windows follow the area's size
  bool apart_ = false;      // none of them has covered another
  bool arranging_ = false;  // sub-windows are being moved by this class, not by the user
};

}  // namespace torvane
