#pragma once

#include <QMdiSubWindow>
#include <memory>

#include "core/instrument.h"
#include "ui/desk/tiling.h"

namespace torvane {

class InstrumentPane;

/// Sub-window of one instrument; keeps the instrument's placement up to date.
class InstrumentFrame : public QMdiSubWindow {
  Q_OBJECT

 public:
  explicit InstrumentFrame(std::unique_ptr<InstrumentPane> pane);

  InstrumentPane& Pane() const;
  bool IsMeter() const;
  TileRole Role() const;
  /// The sizes that the workspace gives it.
  Tile Sizes() const;
  /// Stands where the instrument's placement says, as far as the workspace has room.
  void ApplyPlacement();
  /// Stands there from now on.
  void PlaceAt(const QRect& place);

  /// Whether the user wants to see it; it has not come to the screen before its workspace has.
  bool IsShown() const { return shown_; }
  void SetShown(bool shown);
  /// Is not on the screen from the start. Its pane is not told: the user has put nothing away.
  void BeginHidden() { Put(false); }
  /// Shown or hidden because the user said so.
  bool IsChosen() const { return chosen_; }
  void SetChosen(bool chosen) { chosen_ = chosen; }
  void Choose(bool shown);
  /// Hidden for one that has no room beside it, until there is room. Its pane does not count as
  /// hidden: nothing that the user has in it goes.
  bool HasYielded() const { return yielded_; }
  void Yield();

 signals:
  void PlacementChanged();

 protected:
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Put(bool shown);
  QRect Fitted(const WindowPlacement& placement) const;
  void RecordPlacement();

  bool shown_ = true;
  bool chosen_ = false;
  bool yielded_ = false;
  WindowPlacement whileHidden_;
  QRect fitted_;  // where ApplyPlacement has put the window, until it is moved
};

}  // namespace torvane
