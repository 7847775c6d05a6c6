#pragma once

#include <QWidget>

#include "plot/scope_colours.h"
#include "ui/widgets/wheel_turn.h"

namespace torvane {

/// A widget that shows a picture of traces: made anew when its size, its colours or its font change
/// or it comes into view, and told apart from what the mouse does within it.
class PictureBox : public QWidget {
  Q_OBJECT

 public:
  explicit PictureBox(QWidget* parent);

  /// Colours and line patterns of the traces.
  void SetLook(const TraceLook& look);
  const TraceLook& Look() const { return look_; }
  ScopeColours Colours() const;

 signals:
  /// Traces have other colours than before.
  void ColoursChanged();
  /// Around the changes of a drag, of a turn of the wheel or of a key that is held.
  void GestureBegun();
  void GestureEnded();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

  /// Makes the picture anew when it is stale, or as soon as it can be seen.
  virtual void Renew() = 0;

  bool Stale() const { return stale_ || ratio_ != devicePixelRatioF(); }
  /// Device pixels a pixel that the picture was made for.
  double Ratio() const { return ratio_; }
  /// Device pixels of a picture that is now made anew.
  QSize BeginPicture();
  WheelTurn& Wheel() { return wheel_; }

 private:
  void MakeStale();

  WheelTurn wheel_{this};
  TraceLook look_;
  double ratio_ = 0.0;
  bool stale_ = true;
};

}  // namespace torvane
