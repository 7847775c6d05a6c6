#pragma once

#include <QPixmap>
#include <optional>

#include "plot/poles/pole_painter.h"
#include "ui/widgets/picture_box.h"

namespace torvane {

/// The paint box of poles. The mouse moves the plane, its wheel zooms about the pointer, a double
/// click or Home shows all again; the arrow keys move it too, + and - zoom.
class PoleBox : public PictureBox {
  Q_OBJECT

 public:
  explicit PoleBox(QWidget* parent = nullptr);

  void Show(PoleMap map);
  const PoleMap& Map() const { return map_; }
  const PoleView& View() const { return view_; }
  void SetView(const PoleView& view);

 signals:
  /// The mouse is on a pole, told by its place among them, or on none: -1.
  void PoleTouched(int pole);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void Renew() override;

 private:
  /// What is shown now, as a view that does not follow the poles.
  PoleView Present() const;
  void Zoom(const QPointF& about, int steps);

  PoleMap map_;
  PoleView view_;
  PolePainter painter_{map_};
  QPixmap picture_;
  std::optional<QPointF> held_;  // where the mouse took hold, as a value
};

}  // namespace torvane
