#pragma once

#include <QMdiArea>
#include <QMdiSubWindow>
#include <memory>
#include <vector>

#include "core/instrument.h"

namespace torvane {

class InstrumentPane;

/// Sub-window of one instrument; keeps the instrument's placement up to date.
class InstrumentFrame : public QMdiSubWindow {
  Q_OBJECT

 public:
  explicit InstrumentFrame(std::unique_ptr<InstrumentPane> pane);

  InstrumentPane& Pane() const;
  /// Stands where the instrument's placement says, as far as the workspace has room.
  void ApplyPlacement();

 signals:
  void PlacementChanged();

 protected:
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  QRect Fitted(const WindowPlacement& placement) const;
  void RecordPlacement();
};

/// The area below the control strip in which every instrument is a sub-window. As long as the user
/// has not moved one, the sub-windows fill it and follow its size.
class Workspace : public QMdiArea {
  Q_OBJECT

 public:
  explicit Workspace(QWidget* parent = nullptr);

  /// Shows the instruments; those whose placement has a size stand there, the others fill the area.
  void Open(std::vector<std::unique_ptr<InstrumentPane>> panes);
  void CloseAll();
  /// Moves the sub-windows whose placement has a size to where it says.
  void RestorePlacements();

  /// Scopes share the area's left part from top to bottom; the other instruments stand in a column
  /// at its right edge, each as large as it needs.
  void FillScreen();

  const std::vector<InstrumentFrame*>& Frames() const { return frames_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  int PlaceColumn(const std::vector<InstrumentFrame*>& frames);
  void PlaceScopes(const std::vector<InstrumentFrame*>& frames, int width);

  std::vector<InstrumentFrame*> frames_;
  bool filling_ = true;     // sub-windows follow the area's size
  bool arranging_ = false;  // sub-windows are being moved by this class, not by the user
};

}  // namespace torvane
