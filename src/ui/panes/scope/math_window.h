#pragma once

#include "instruments/scope/scope_math.h"
#include "ui/panes/read_out_window.h"

namespace torvane {

/// Means, extremes and step responses of a scope's displayed channels, a column each.
class MathWindow : public ReadOutWindow {
  Q_OBJECT

 public:
  MathWindow(const ZelScope& scope, QWidget* parent);

  /// Of the live traces and, beside each of them, of the kept one; `kept` is empty without any.
  void ShowMeasures(const std::vector<ChannelMeasures>& live,
                    const std::vector<ChannelMeasures>& kept);

 signals:
  void Closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QString timeUnit_;
};

}  // namespace torvane
