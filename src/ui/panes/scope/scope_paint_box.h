#pragma once

#include <QElapsedTimer>
#include <QPixmap>
#include <optional>

#include "instruments/scope/screen_pixels.h"
#include "plot/scope/cursor_painter.h"
#include "plot/scope/scope_painter.h"
#include "ui/panes/scope/screen_mouse.h"
#include "ui/widgets/picture_box.h"

namespace torvane {

/// The paint box of a scope's window: grid, traces and legend.
///
/// It shows one whole sweep, the last complete one; when a sweep takes longer than a tenth of a
/// second, the sweep as it grows and nothing of the one before. Points of a growing sweep are drawn
/// onto a backing picture, never more than what is new; another sweep or a changed setting paints
/// what traces touch. The mouse acts on it as ScreenMouse says; the wheel turns the scale of the
/// reference channel, with Ctrl that of the X axis.
class ScopePaintBox : public PictureBox {
  Q_OBJECT

 public:
  explicit ScopePaintBox(QWidget* parent = nullptr);

  /// The graph within its labels is never smaller.
  void SetLeastGraph(const QSize& least);

  /// The scope to show; it must outlive this widget's use of it.
  void SetScope(ZelScope& scope);

  /// The channel whose values the left axis and the cursors show and whose scale the wheel turns.
  void SetReference(ZelChannel* channel);

  /// The sweep that is shown.
  ScopeSweep Shown() const { return slowSweeps_ ? ScopeSweep::Present : ScopeSweep::Whole; }

  /// Its points, as of the last frame, and where they stand.
  const ScopeScreen& Screen() const { return screen_; }
  ScreenPixels Pixels() const;
  const ScopePainter& Painter() const { return *painter_; }

  /// The scales of the traces under the screen.
  void SetScalesShown(bool shown);

  /// Brings the picture up to date with the engine; cheap when nothing has changed.
  void Refresh();

 signals:
  /// The mouse chose the channel of that index.
  void ChannelChosen(std::size_t index);

 protected:
  bool event(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void Renew() override { Refresh(); }

 private:
  void WatchSweeps();
  void Prepare();
  void PaintAll();
  void PaintTags();
  void EndDrag();
  void UpdatePixels(const QRegion& pixels);
  ScopeLabels Labels() const;
  QPoint PixelAt(const QPointF& position) const;

  ZelScope* scope_ = nullptr;
  std::optional<ScopePainter> painter_;
  std::optional<CursorPainter> cursors_;
  std::optional<ScreenMouse> mouse_;
  ZelChannel* reference_ = nullptr;
  ScopeLabels labels_;
  QPixmap background_;
  QPixmap picture_;
  bool scalesShown_ = true;
  std::vector<std::optional<int>> endsPainted_;

  ScopeScreen screen_;  // kept, so that a frame allocates nothing
  std::uint64_t sweepPainted_ = 0;
  QElapsedTimer sinceRefresh_;
  qint64 age_ = 0;  // of the present sweep while it moved, milliseconds
  std::uint64_t sweepSeen_ = 0;
  int fillSeen_ = -1;
  bool slowSweeps_ = false;
};

}  // namespace torvane
