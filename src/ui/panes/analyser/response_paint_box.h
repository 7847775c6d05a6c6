#pragma once

#include <QPixmap>
#include <optional>

#include "plot/response/plane_painter.h"
#include "plot/response/response_painter.h"
#include "ui/panes/analyser/plane_mouse.h"
#include "ui/widgets/picture_box.h"

namespace torvane {

/// The paint box of an analyser's window: gain and phase, or their Nyquist or Nichols plot,
/// with their legend, and the cursors over them. Traces are painted only when they have changed;
/// the cursors every time. The mouse drags the cursor that is nearer, the arrow keys move the first
/// one and with Shift the second, by ten columns with Ctrl. Beside the trace that the cursors read,
/// Nyquist and Nichols plots move with the mouse (PlaneMouse).
class ResponsePaintBox : public PictureBox {
  Q_OBJECT

 public:
  explicit ResponsePaintBox(QWidget* parent = nullptr);

  /// The analyser to show; it must outlive this widget's use of it.
  void SetAnalyser(FrequencyAnalyser& analyser);

  /// Columns of the plot, which cursors and searches count.
  int PlotWidth() const { return painter_->GainPlate().width(); }

  /// Brings the picture up to date with the engine; cheap when nothing has changed. Tells whether
  /// something has.
  bool Refresh();

  /// Of a division of a Nyquist plot, as it is shown.
  double NyquistScale() const { return plane_->Axes().Scale.x(); }
  /// Nyquist and Nichols plots show all again, as at first.
  void ShowWholePlane();

  /// What was read off the traces.
  void SetMarks(const std::vector<ResponseMark>& marks);

  /// Stands in the middle while there is nothing to be seen.
  void SetEmptyText(const QString& text);

 signals:
  void MenuAsked(const QPoint& at);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void Renew() override { Refresh(); }

 private:
  bool ShowsPlane() const { return analyser_->View().Plot != ResponsePlot::Bode; }
  void PaintAll();
  void MoveTo(int cursor, int column);
  void EndMove();
  int ColumnAt(const QMouseEvent& event) const;
  bool TakesCursor(const QMouseEvent& event) const;
  void ShowPointer(const QMouseEvent& event);

  FrequencyAnalyser* analyser_ = nullptr;
  std::optional<ResponsePainter> painter_;
  std::optional<PlanePainter> plane_;  // for the views without a frequency axis
  std::optional<PlaneMouse> mouse_;
  std::vector<ResponseMark> marks_;
  QPixmap picture_;
  std::optional<int> dragged_;  // cursor
  bool moving_ = false;
};

}  // namespace torvane
