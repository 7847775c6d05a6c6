#pragma once

#include <QPixmap>
#include <QWidget>
#include <optional>

#include "plot/scope_painter.h"

namespace torvane {

/// The paint box of a scope's window: grid, traces and legend. New points are drawn onto a backing
/// picture, never more than what is new; a new screen or a changed setting paints all of it.
class ScopePaintBox : public QWidget {
  Q_OBJECT

 public:
  explicit ScopePaintBox(QWidget* parent = nullptr);

  /// The scope to show; it must outlive this widget's use of it.
  void SetScope(ZelScope& scope);

  /// The channel whose values the left axis shows.
  void SetReference(const ZelChannel* channel);

  /// Brings the picture up to date with the engine; cheap when nothing has changed.
  void Refresh();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void WatchSweeps();
  void Prepare();
  void PaintAll();

  ZelScope* scope_ = nullptr;
  std::optional<ScopePainter> painter_;
  const ZelChannel* reference_ = nullptr;
  ScopeLabels labels_;
  QPixmap background_;
  QPixmap picture_;
  double ratio_ = 0.0;  // device pixels a pixel that background_ was made for
  bool stale_ = true;   // the background must be made anew
  bool fastSweeps_ = false;
  int refreshesSinceSweep_ = 0;
};

}  // namespace torvane
