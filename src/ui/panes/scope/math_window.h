#pragma once

#include "instruments/scope/scope_math.h"
#include "ui/panes/read_out_window.h"

namespace torvane {

/// Means, extremes and step responses of a scope's displayed channels, a column each; below each
/// figure of a live trace stands that of the kept one.
class MathWindow : public ReadOutWindow {
  Q_OBJECT

 public:
  MathWindow(const ZelScope& scope, QWidget* parent);

  /// Of the live traces and of those kept of the same channels; `kept` is empty without any.
  void ShowMeasures(const std::vector<ChannelMeasures>& live,
                    const std::vector<ChannelMeasures>& kept);

 signals:
  void Closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void ShowNames(bool withKept);
  void FitColumns();

  QString timeUnit_;
};

}  // namespace torvane
